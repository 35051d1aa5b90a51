#include "distance/Compute.h"

#include "support/GermanLocale.h"

#include <QStringList>

namespace marvento {
namespace {

using F = ComputeField;

constexpr const char* kRadius = "6371,00079";
constexpr const char* kIncomplete = " Unvollständige Eingabe !";

// Six field texts joined by "|": own locator, Lg, Br, remote locator, Lg, Br.
ComputeTexts texts(const char* joined) {
  const QStringList parts = QString::fromUtf8(joined).split(u'|');
  ComputeTexts t;
  for (std::size_t i = 0; i < kComputeFieldCount; ++i) t.text[i] = parts.value(int(i));
  return t;
}

std::string joined(const ComputeTexts& t) {
  return QStringList(t.text.begin(), t.text.end()).join(u'|').toStdString();
}

std::string remembered(const ComputeMemory& m) {
  return joined(
      {{m.LastMyLoc, m.LastMyLg, m.LastMyBr, m.LastFremdLoc, m.LastFremdLg, m.LastFremdBr}});
}

// The fields a run wrote, as six characters: "x" written, "." left alone.
std::string writtenMask(const ComputeOutcome& out) {
  std::string mask;
  for (bool w : out.written) mask += w ? 'x' : '.';
  return mask;
}

// The window as far as the decision sees it: six fields, a radius and the memory, run
// after run.
struct Session {
  ComputeTexts fields;
  QString radius = QString::fromUtf8(kRadius);
  ComputeMemory memory;
  ComputePreferences prefs{true, false, false};

  ComputeOutcome run() {
    ComputeOutcome out = DecideCompute(fields, radius, memory, prefs);
    fields = out.fields;
    memory = out.memory;
    return out;
  }
  void set(F f, const char* text) { fields[f] = QString::fromUtf8(text); }
  // Six texts as for texts(); "=" leaves a field as it stands.
  void type(const char* joined) {
    const ComputeTexts typed = texts(joined);
    for (std::size_t i = 0; i < kComputeFieldCount; ++i) {
      if (typed.text[i] != u"=") fields.text[i] = typed.text[i];
    }
  }
};

// A fresh start with two locators, then the user edits one thing after another. A log line
// comes from both locators, the own locator, and the own coordinates when the own locator
// field was changed by hand.
TEST(Compute, WorkedExample) {
  const struct {
    const char* name;
    const char* typed;
    Route route;
    const char* fields;
    const char* written;
    const char* entfernung;
    const char* richtung;
    bool logs;
  } steps[] = {
      {"both locators typed", "jo62qm||| jo31nk ||", Route::BothLocators,
       "JO62QM|13,375|52,5208333333333|JO31NK|7,125|51,4375", "xxxxxx", " 444,53 km", "256,761 °",
       true},
      {"nothing changed", "=|=|=|=|=|=", Route::Unchanged,
       "JO62QM|13,375|52,5208333333333|JO31NK|7,125|51,4375", "......", " 444,53 km", "256,761 °",
       false},
      {"remote locator", "=|=|=|JN58TD|=|=", Route::RemoteLocator,
       "JO62QM|13,375|52,5208333333333|JN58TD|11,625|48,1458333333333", "...xxx", " 502,04 km",
       "195,002 °", false},
      {"remote coordinates", "=|=|=|=|11,5|48,2", Route::RemoteCoordinates,
       "JO62QM|13,375|52,5208333333333|JN58SE|11,5|48,2", "...x..", " 498,48 km", "196,201 °",
       false},
      {"own coordinates", "=|13,4|52,52|=|=|=", Route::OwnCoordinates,
       "JO62QM|13,4|52,52|JN58SE|11,5|48,2", "x.....", " 498,87 km", "196,41 °", false},
      {"a coordinate emptied", "=|=|=|=|=|", Route::BothLocators,
       "JO62QM|13,375|52,5208333333333|JN58SE|11,5416666666667|48,1875", "xxxxxx", " 499,05 km",
       "195,817 °", true},
      {"own locator", "jo62ql|=|=|=|=|=", Route::OwnLocator,
       "JO62QL|13,375|52,4791666666667|JN58SE|11,5416666666667|48,1875", "xxx...", " 494,59 km",
       "195,963 °", true},
      {"own coordinates, locator typed", "JO62PM|13,3|=|=|=|=", Route::OwnCoordinates,
       "JO62PL|13,3|52,4791666666667|JN58SE|11,5416666666667|48,1875", "x.....", " 493,22 km",
       "195,338 °", true},
  };
  Session s;
  s.prefs.logOn = true;
  for (const auto& step : steps) {
    SCOPED_TRACE(step.name);
    s.type(step.typed);
    const ComputeOutcome out = s.run();
    EXPECT_EQ(out.route, step.route);
    EXPECT_FALSE(out.refusal.has_value());
    EXPECT_FALSE(out.beep);
    EXPECT_EQ(joined(out.fields), step.fields);
    EXPECT_EQ(writtenMask(out), step.written);
    EXPECT_EQ(out.entfernung.value_or("<kept>").toStdString(), step.entfernung);
    EXPECT_EQ(out.richtung.value_or("<kept>").toStdString(), step.richtung);
    EXPECT_EQ(remembered(out.memory), step.fields);
    EXPECT_EQ(out.writeLog, step.logs);
  }
}

TEST(Compute, Refusals) {
  const struct {
    const char* name;
    const char* entries;
    const char* radius;
    const char* prompt;  // nullptr: no box
    const char* title;
    int style;
    bool beep;
    std::optional<F> focus;
    const char* fieldsAfter;  // nullptr: as typed
    const char* entfernung;   // nullptr: the label keeps its text
    bool remembered;
  } cases[] = {
      {"own station empty", "|||jo31nk||", kRadius, "Mein Locator", kIncomplete, 48, true, F::MyLoc,
       nullptr, nullptr, false},
      {"remote station empty", "jo62qm||||7|", kRadius, "Fremdlocator", kIncomplete, 48, true,
       F::FremdLoc, nullptr, nullptr, false},
      // The own side is already written when the remote side is refused.
      {"remote locator too long", "jo62qm|||jo31nk12345||", kRadius, "JO31NK12345",
       " Falsche Eingabe !", 48, true, std::nullopt, "JO62QM|13,375|52,5208333333333|JO31NK12345||",
       nullptr, false},
      {"own locator too short", "jo6|||jo31nk||", kRadius, "jo6", " Falsche Eingabe !", 48, true,
       std::nullopt, nullptr, nullptr, false},
      {"QRA small field I", "jo62qm|||ek74i||", kRadius, "EK74I", " KF falsch !", 48, true,
       std::nullopt, "JO62QM|13,375|52,5208333333333|EK74I||", nullptr, false},
      {"subsquare above X", "jo62qm|||jo62ym||", kRadius, "JO62YM", " Falscher Locator !", 48, true,
       std::nullopt, "JO62QM|13,375|52,5208333333333|JO62YM||", nullptr, false},
      {"decimal longitude at the limit", "|180|52|jo31nk||", kRadius, " ( max ±179,9999999°\" ) ",
       " Falsche Gradeingabe !", 48, false, std::nullopt, nullptr, nullptr, false},
      {"positions coincide", "jo62qm|||jo62qm||", kRadius, "Entfernung: < 1 m",
       " Bitte Bandmaß benutzen ! ", 64, true, std::nullopt,
       "JO62QM|13,375|52,5208333333333|JO62QM|13,375|52,5208333333333", " 0 ", true},
      // Any other run-time error: remembered, a beep, no box, labels as they were.
      {"radius overflows", "jo62qm|||jo31nk||", "1E999", nullptr, "", 0, true, std::nullopt,
       "JO62QM|13,375|52,5208333333333|JO31NK|7,125|51,4375", nullptr, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Session s;
    s.radius = QString::fromUtf8(c.radius);
    s.fields = texts(c.entries);
    const ComputeOutcome out = s.run();
    ASSERT_EQ(out.refusal.has_value(), c.prompt != nullptr);
    if (c.prompt) {
      EXPECT_EQ(out.refusal->prompt.toStdString(), c.prompt);
      EXPECT_EQ(out.refusal->title.toStdString(), c.title);
      EXPECT_EQ(out.refusal->style, c.style);
      EXPECT_EQ(out.refusal->focus, c.focus);
    }
    EXPECT_EQ(out.beep, c.beep);
    EXPECT_EQ(joined(out.fields), c.fieldsAfter ? c.fieldsAfter : c.entries);
    EXPECT_EQ(out.entfernung.value_or("<kept>").toStdString(),
              c.entfernung ? c.entfernung : "<kept>");
    EXPECT_FALSE(out.richtung.has_value());
    // Remembered without capitals, exactly as the fields stand.
    EXPECT_EQ(remembered(out.memory), c.remembered ? joined(out.fields) : "|||||");
    // Nothing was remembered after a refusal, so the same entry is refused again.
    if (!c.remembered) {
      const ComputeOutcome again = s.run();
      ASSERT_TRUE(again.refusal.has_value());
      EXPECT_EQ(again.refusal->title, out.refusal->title);
    }
  }
}

TEST(Compute, PlusStandsForNoRemoteStation) {
  Session s;
  // Both locators wanted: the own side is resolved, then the run stops without a word.
  s.fields = texts("jo62qm|||+||");
  ComputeOutcome out = s.run();
  EXPECT_EQ(joined(out.fields), "JO62QM|13,375|52,5208333333333|+||");
  EXPECT_FALSE(out.entfernung || out.refusal || out.beep);
  EXPECT_EQ(remembered(out.memory), "|||||");
  // After a good run the remote locator becomes "+" again: the memory stays as it was.
  s.set(F::FremdLoc, "jo31nk");
  s.run();
  s.set(F::FremdLoc, "+");
  out = s.run();
  EXPECT_EQ(out.route, Route::RemoteLocator);
  EXPECT_EQ(out.memory.LastFremdLoc, QStringLiteral("JO31NK"));
  // New own coordinates remember the "+" as any text; new remote coordinates replace it.
  s.set(F::MyLg, "13,4");
  out = s.run();
  EXPECT_EQ(out.memory.LastFremdLoc, QStringLiteral("+"));
  EXPECT_EQ(out.entfernung, QStringLiteral(" 446,17 km"));
  s.set(F::FremdLg, "7,2");
  out = s.run();
  EXPECT_EQ(out.fields[F::FremdLoc], QStringLiteral("JO31OK"));
  EXPECT_FALSE(out.refusal || out.beep);
}

// All four coordinates typed on a fresh start: the own coordinates' route compares both
// positions before anything is solved and replaces neither pair by a decoded point. Either
// way the fields are remembered, so a second run repeats it.
TEST(Compute, AllCoordinatesTypedFirst) {
  const struct {
    const char* typed;
    const char* entfernung;
    const char* richtung;  // nullptr: positions coincide, the label keeps its text
  } cases[] = {
      {"|8|50||8|50,00000126", " 0 ", nullptr},
      {"|8|50||8|50,0000013", "   0,13 m", "0,0 °"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.typed);
    Session s;
    s.fields = texts(c.typed);
    for (int run = 0; run < 2; ++run) {
      const ComputeOutcome out = s.run();
      EXPECT_EQ(out.refusal.has_value(), c.richtung == nullptr);
      EXPECT_EQ(out.entfernung.value_or("<kept>").toStdString(), c.entfernung);
      EXPECT_EQ(out.richtung.value_or("<kept>").toStdString(), c.richtung ? c.richtung : "<kept>");
      const ComputeTexts typed = texts(c.typed);
      for (F f : {F::MyLg, F::MyBr, F::FremdLg, F::FremdBr}) EXPECT_EQ(out.fields[f], typed[f]);
    }
  }
}

// Single runs from a fresh start, in every form of the preferences.
TEST(Compute, FormsOfTheFields) {
  const struct {
    const char* name;
    bool loc10st, gradDezimal;
    const char* entries;
    const char* fields;
    const char* entfernung;
  } cases[] = {
      // With the own locator empty, the typed point gives way to the decoded one.
      {"typed point, 6 characters", false, true, "|13,4|52,52|jo31nk||",
       "JO62QM|13,375|52,5208333333333|JO31NK|7,125|51,4375", " 444,53 km"},
      {"typed point, 10 characters", true, true, "|13,4|52,52|jo31nk||",
       "JO62QM84AT|13,4|52,5199652777778|JO31NK|7,125|51,4375", " 446,15 km"},
      {"typed point in degrees", false, false, "|13° 24' 0\"|52° 31' 12\"|jo31nk||",
       "JO62QM| 13° 22' 30\"| 52° 31' 15\"|JO31NK| 7° 7' 30\"| 51° 26' 15\"", " 444,53 km"},
      // The corner's 13.4 leaves 1,278977E-12 seconds of noise, written as the 0 it is.
      {"10 characters in degrees", true, false, "jo62qm84at|||jo31nk||",
       "JO62QM84AT| 13° 24' 0\"| 52° 31' 11,875\"|JO31NK| 7° 7' 30\"| 51° 26' 15\"", " 446,15 km"},
      {"old QRA locator stays as typed", false, true, "jo62qm|||ek74h||",
       "JO62QM|13,375|52,5208333333333|EK74H|8,63333333333333|50,1041666666667", " 425,09 km"},
      // Regression: a longitude of exactly 0 counted as "not known yet", so the own position
      // was read again from the empty coordinate fields.
      {"prime meridian", true, true, "JO00AA00AA|||JN00AA00AA||", "JO00AA00AA|0|50|JN00AA00AA|0|40",
       " 1111,95 km"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Session s;
    s.prefs = {c.gradDezimal, c.loc10st, false};
    s.fields = texts(c.entries);
    const ComputeOutcome out = s.run();
    EXPECT_FALSE(out.refusal.has_value());
    EXPECT_FALSE(out.writeLog);  // the log is off
    EXPECT_EQ(joined(out.fields), c.fields);
    EXPECT_EQ(out.entfernung.value_or("<kept>").toStdString(), c.entfernung);
  }
}

}  // namespace
}  // namespace marvento
