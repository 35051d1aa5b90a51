#include "distance/Compute.h"
#include "platform/Format.h"
#include "platform/MsgBoxRecorder.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>
#include <QtTest>

using namespace marvento;

namespace {

// The controls of the main window that the command works on, and the command itself.
struct Window {
  QWidget widget;
  QLineEdit* tbMyLoc = add<QLineEdit>("tbMyLoc");
  QLineEdit* tbFremdLoc = add<QLineEdit>("tbFremdLoc");
  QLineEdit* tbMyLg = add<QLineEdit>("tbMyLg");
  QLineEdit* tbMyBr = add<QLineEdit>("tbMyBr");
  QLineEdit* tbFremdLg = add<QLineEdit>("tbFremdLg");
  QLineEdit* tbFremdBr = add<QLineEdit>("tbFremdBr");
  QLabel* lblEntfernung = add<QLabel>("lblEntfernung");
  QLabel* lblRichtung = add<QLabel>("lblRichtung");
  QComboBox* Combo1 = add<QComboBox>("Combo1");
  ComputePreferences state;
  int logWrites = 0;
  ComputeCommand command{ComputeFields{tbMyLoc, tbFremdLoc, tbMyLg, tbMyBr, tbFremdLg, tbFremdBr,
                                       lblEntfernung, lblRichtung, Combo1},
                         [this] { return state; }, [this] { ++logWrites; }};

  explicit Window(bool gradDezimal = true) {
    Combo1->setEditable(true);
    Combo1->setEditText(Format(6371.00079));
    state.GradDezimal = gradDezimal;
  }
  template <typename T>
  T* add(const char* name) {
    if (!widget.layout()) new QVBoxLayout(&widget);
    auto* w = new T(&widget);
    w->setObjectName(QString::fromLatin1(name));
    widget.layout()->addWidget(w);
    return w;
  }
  // Own locator, Lg, Br, remote locator, Lg, Br.
  QList<QLineEdit*> fields() const {
    return {tbMyLoc, tbMyLg, tbMyBr, tbFremdLoc, tbFremdLg, tbFremdBr};
  }
  void type(const QStringList& texts) {
    for (int i = 0; i < 6; ++i) fields()[i]->setText(texts.value(i));
  }
  QStringList texts() const {
    QStringList out;
    for (const QLineEdit* f : fields()) out << f->text();
    return out;
  }
  QStringList remembered() const {
    const ComputeMemory& m = command.memory();
    return {m.LastMyLoc, m.LastMyLg, m.LastMyBr, m.LastFremdLoc, m.LastFremdLg, m.LastFremdBr};
  }
};

// Six field texts joined by "|": own locator, Lg, Br, remote locator, Lg, Br.
QStringList fields(const char* joined) {
  return QString::fromUtf8(joined).split(u'|');
}

struct Failure {
  const char* name;
  const char* entries;
  bool gradDezimal;
  const char* radius;
  const char* prompt;  // nullptr: no box
  const char* title;
  int style;
  int beeps;
  const char* focus;        // nullptr: stays where it was
  const char* fieldsAfter;  // nullptr: as typed
  const char* entfernung;   // nullptr: the label keeps its text
  bool remembered;
};

const char* const kIncomplete = " Unvollständige Eingabe !";
const char* const kR = "6371,00079";
const Failure kFailures[] = {
    {"1 own station empty", "|||jo31nk||", true, kR, "Mein Locator", kIncomplete, 48, 1, "tbMyLoc",
     nullptr, nullptr, false},
    {"2 remote station empty", "jo62qm||||7|", true, kR, "Fremdlocator", kIncomplete, 48, 1,
     "tbFremdLoc", nullptr, nullptr, false},
    // The own side is already written when the remote side is refused.
    {"3 remote locator too long", "jo62qm|||jo31nk12345||", true, kR, "JO31NK12345",
     " Falsche Eingabe !", 48, 1, nullptr, "JO62QM|13,375|52,5208333333333|JO31NK12345||", nullptr,
     false},
    {"4 small field I", "jo62qm|||ek74i||", true, kR, "EK74I", " KF falsch !", 48, 1, nullptr,
     "JO62QM|13,375|52,5208333333333|EK74I||", nullptr, false},
    {"5 subsquare above X", "jo62qm|||jo62ym||", true, kR, "JO62YM", " Falscher Locator !", 48, 1,
     nullptr, "JO62QM|13,375|52,5208333333333|JO62YM||", nullptr, false},
    {"6 decimal longitude at the limit", "|180|52|jo31nk||", true, kR, " ( max ±179,9999999°\" ) ",
     " Falsche Gradeingabe !", 48, 0, nullptr, nullptr, nullptr, false},
    {"7 positions coincide", "jo62qm|||jo62qm||", true, kR, "Entfernung: < 1 m",
     " Bitte Bandmaß benutzen ! ", 64, 1, nullptr,
     "JO62QM|13,375|52,5208333333333|JO62QM|13,375|52,5208333333333", " 0 ", true},
    // Any other run-time error: remembered, a beep, no box, labels as they were.
    {"radius overflows", "jo62qm|||jo31nk||", true, "1E999", nullptr, "", 0, 1, nullptr,
     "JO62QM|13,375|52,5208333333333|JO31NK|7,125|51,4375", nullptr, true},
};

}  // namespace

class tst_Compute : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
  void workedExample();
  void failures_data();
  void failures();
  void plusRemoteLocator();
  void allCoordinatesTypedFirst();
  void typedCoordinatesThroughLocator();
  void gpsLog();
  void oldLocatorStaysAsTyped();
  void zeroIsAPosition();
};

// A fresh start with two locators, then the user edits one thing after another.
void tst_Compute::workedExample() {
  const struct {
    const char* name;
    int field1;  // index into Window::fields(), -1: none
    const char* text1;
    int field2;
    const char* text2;
    const char* expected;
    const char* entfernung;
    const char* richtung;
  } steps[] = {
      {"1 route A", 0, "jo62qm", 3, "jo31nk", "JO62QM|13,375|52,5208333333333|JO31NK|7,125|51,4375",
       " 444,53 km", "256,761 °"},
      {"2 route F", -1, "", -1, "", "JO62QM|13,375|52,5208333333333|JO31NK|7,125|51,4375",
       " 444,53 km", "256,761 °"},
      {"3 route C", 3, "JN58TD", -1, "",
       "JO62QM|13,375|52,5208333333333|JN58TD|11,625|48,1458333333333", " 502,04 km", "195,002 °"},
      {"4 route D", 4, "11,5", 5, "48,2", "JO62QM|13,375|52,5208333333333|JN58SE|11,5|48,2",
       " 498,48 km", "196,201 °"},
      {"5 route B", 1, "13,4", 2, "52,52", "JO62QM|13,4|52,52|JN58SE|11,5|48,2", " 498,87 km",
       "196,41 °"},
      {"6 route A", 5, "", -1, "", "JO62QM|13,375|52,5208333333333|JN58SE|11,5416666666667|48,1875",
       " 499,05 km", "195,817 °"},
  };
  Window w;
  MsgBoxRecorder rec;
  for (const auto& s : steps) {
    if (s.field1 >= 0) w.fields()[s.field1]->setText(s.text1);
    if (s.field2 >= 0) w.fields()[s.field2]->setText(s.text2);
    // Cleared so that a run that does nothing cannot pass for one that solves again.
    w.lblEntfernung->clear();
    w.lblRichtung->clear();
    w.command.Compute();
    QVERIFY2(rec.count() == 0, s.name);
    QCOMPARE(w.texts(), fields(s.expected));
    QCOMPARE(w.lblEntfernung->text(), QString::fromUtf8(s.entfernung));
    QCOMPARE(w.lblRichtung->text(), QString::fromUtf8(s.richtung));
    QCOMPARE(w.remembered(), fields(s.expected));
  }
  QCOMPARE(rec.beeps(), 0);
}

void tst_Compute::failures_data() {
  QTest::addColumn<int>("i");
  for (int i = 0; i < int(std::size(kFailures)); ++i) QTest::newRow(kFailures[i].name) << i;
}

void tst_Compute::failures() {
  QFETCH(int, i);
  const Failure& f = kFailures[i];
  Window w(f.gradDezimal);
  w.Combo1->setEditText(f.radius);
  w.widget.show();
  w.widget.activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(&w.widget));
  w.tbFremdBr->setFocus();
  w.lblEntfernung->setText("alt");
  w.lblRichtung->setText("alt °");
  w.type(fields(f.entries));

  MsgBoxRecorder rec;
  w.command.Compute();
  QCOMPARE(rec.count(), f.prompt ? 1 : 0);
  QCOMPARE(rec.beeps(), f.beeps);
  if (f.prompt) {
    QCOMPARE(rec.last().prompt, QString::fromUtf8(f.prompt));
    QCOMPARE(rec.last().title, QString::fromUtf8(f.title));
    QCOMPARE(rec.last().style, f.style);
    QCOMPARE(rec.entries().front().beepsBefore, f.beeps);
  }
  QCOMPARE(w.texts(), fields(f.fieldsAfter ? f.fieldsAfter : f.entries));
  QCOMPARE(w.lblEntfernung->text(), QString::fromUtf8(f.entfernung ? f.entfernung : "alt"));
  QCOMPARE(w.lblRichtung->text(), QString("alt °"));
  // Remembered without capitals, exactly as the fields stand.
  QCOMPARE(w.remembered(), f.remembered ? w.texts() : QStringList(6, QString()));
  QCOMPARE(QApplication::focusWidget()->objectName(), QString(f.focus ? f.focus : "tbFremdBr"));
  // Nothing was remembered after a refusal, so the same command sees the same differences.
  if (!f.remembered) {
    rec.clear();
    w.command.Compute();
    QCOMPARE(rec.count(), 1);
  }
}

void tst_Compute::plusRemoteLocator() {
  Window w;
  MsgBoxRecorder rec;
  w.lblEntfernung->setText("alt");
  // Route A: the own side is resolved, then the command stops without a word.
  w.type({"jo62qm", "", "", "+", "", ""});
  w.command.Compute();
  QCOMPARE(w.texts(), fields("JO62QM|13,375|52,5208333333333|+||"));
  QCOMPARE(w.lblEntfernung->text(), QString("alt"));
  QCOMPARE(w.remembered(), QStringList(6, QString()));
  // Route C after a good run ends likewise and leaves the memory as it was.
  w.tbFremdLoc->setText("jo31nk");
  w.command.Compute();
  w.tbFremdLoc->setText("+");
  w.command.Compute();
  QCOMPARE(w.command.memory().LastFremdLoc, QString("JO31NK"));

  // Route B remembers the "+" as any text; route D then replaces it by a real locator.
  w.tbMyLg->setText("13,4");
  w.command.Compute();
  QCOMPARE(w.command.memory().LastFremdLoc, QString("+"));
  QCOMPARE(w.lblEntfernung->text(), QString(" 446,17 km"));
  w.tbFremdLg->setText("7,2");
  w.command.Compute();
  QCOMPARE(w.tbFremdLoc->text(), QString("JO31OK"));
  QCOMPARE(rec.count() + rec.beeps(), 0);
}

// All four coordinates typed on a fresh start: route B compares both positions before
// anything is solved and replaces neither pair by a decoded point. Either way the fields are
// remembered, so a second run repeats it.
void tst_Compute::allCoordinatesTypedFirst() {
  const struct {
    const char* typed;       // own Lg, Br, remote Lg, Br
    const char* entfernung;  // nullptr: coincide
    const char* richtung;
  } cases[] = {
      {"8|50|8|50,00000126", nullptr, nullptr},
      {"8|50|8|50,0000013", "   0,13 m", "0,0 °"},
      {"13,4|52,52|11,5|48,2", " 498,87 km", "196,41 °"},
  };
  for (const auto& c : cases) {
    Window w;
    MsgBoxRecorder rec;
    w.lblRichtung->setText("alt °");
    const QStringList t = fields(c.typed);
    w.type({"", t[0], t[1], "", t[2], t[3]});
    for (int run = 0; run < 2; ++run) {
      w.command.Compute();
      QCOMPARE(rec.count(), c.entfernung ? 0 : run + 1);
    }
    QCOMPARE(w.lblEntfernung->text(), QString::fromUtf8(c.entfernung ? c.entfernung : " 0 "));
    QCOMPARE(w.lblRichtung->text(), QString::fromUtf8(c.richtung ? c.richtung : "alt °"));
    const QStringList after = w.texts();
    QCOMPARE(QStringList({after[1], after[2], after[4], after[5]}), t);
  }
}

// Route A with the own locator empty: the typed point gives way to the decoded one.
void tst_Compute::typedCoordinatesThroughLocator() {
  const struct {
    bool loc10st, gradDezimal;
    QStringList own;
  } cases[] = {
      {false, true, {"JO62QM", "13,375", "52,5208333333333"}},
      {true, true, {"JO62QM84AT", "13,4", "52,5199652777778"}},
      {false, false, {"JO62QM", " 13° 22' 30\"", " 52° 31' 15\""}},
  };
  for (const auto& c : cases) {
    Window w(c.gradDezimal);
    MsgBoxRecorder rec;
    w.state.Loc10st = c.loc10st;
    w.type({"", c.gradDezimal ? "13,4" : "13° 24' 0\"", c.gradDezimal ? "52,52" : "52° 31' 12\"",
            "jo31nk", "", ""});
    w.command.Compute();
    QCOMPARE(rec.count(), 0);
    QCOMPARE(w.texts().mid(0, 3), c.own);
  }
}

// The routes that log: A, E, and B when the own locator field was changed by hand; and
// only with reception and the log both on.
void tst_Compute::gpsLog() {
  const struct {
    bool logOn;
    QList<int> writes;  // after each step below
  } cases[] = {
      {true, {1, 1, 1, 2, 2, 3, 4}},
      {false, {0, 0, 0, 0, 0, 0, 0}},
  };
  for (const auto& c : cases) {
    Window w;
    MsgBoxRecorder rec;
    w.state.logOn = c.logOn;
    const std::function<void()> steps[] = {
        [&] {
          w.type({"jo62qm", "", "", "jo31nk", "", ""});
        },                                         // A
        [] {},                                     // F
        [&] { w.tbFremdLoc->setText("JN58TD"); },  // C
        [&] { w.tbMyLoc->setText("JO62QL"); },     // E
        [&] { w.tbMyLg->setText("13,4"); },        // B, locator as remembered
        [&] { w.tbMyLg->setText("13,3"), w.tbMyLoc->setText("JO62PM"); },  // B, locator typed
        [&] { w.tbFremdBr->clear(); },                                     // A
    };
    for (int i = 0; i < c.writes.size(); ++i) {
      steps[i]();
      w.command.Compute();
      QCOMPARE(w.logWrites, c.writes[i]);
    }
    QCOMPARE(rec.count(), 0);
  }
}

void tst_Compute::oldLocatorStaysAsTyped() {
  Window w;
  MsgBoxRecorder rec;
  w.type({"jo62qm", "", "", "ek74h", "", ""});
  w.command.Compute();
  QCOMPARE(rec.count(), 0);
  QCOMPARE(w.texts().mid(3), QStringList({"EK74H", "8,63333333333333", "50,1041666666667"}));
}

// Regression: a longitude of exactly 0 counted as "not known yet", so the own position of
// JO00AA00AA was read again from the empty coordinate fields: (0, 0) in decimal form, a
// refusal box in degree form.
void tst_Compute::zeroIsAPosition() {
  const struct {
    bool gradDezimal;
    QStringList own;
  } cases[] = {
      {true, {"JO00AA00AA", "0", "50"}},
      {false, {"JO00AA00AA", " 0° 0' 0\"", " 50° 0' 0\""}},
  };
  for (const auto& c : cases) {
    Window w(c.gradDezimal);
    MsgBoxRecorder rec;
    w.state.Loc10st = true;
    // Both on the prime meridian, ten degrees of latitude apart: due south, a ninth of a
    // quadrant of the sphere.
    w.type({"JO00AA00AA", "", "", "JN00AA00AA", "", ""});
    w.command.Compute();
    QCOMPARE(rec.count(), 0);
    QCOMPARE(w.texts().mid(0, 3), c.own);
    QCOMPARE(w.lblEntfernung->text(), QString(" 1111,95 km"));
    QCOMPARE(w.lblRichtung->text(), QString("180,0 °"));
  }
}

QTEST_MAIN(tst_Compute)
#include "tst_Compute.moc"
