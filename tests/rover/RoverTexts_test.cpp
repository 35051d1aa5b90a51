#include "rover/RoverTexts.h"
#include "rover/RoverTrack.h"
#include "rover/SpeechQueue.h"
#include "rover/Spelling.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

TEST(SpellLocator, IcaoAndLetters) {
  struct Case {
    const char* locator;
    Spelling spelling;
    const char* spoken;
  };
  const Case cases[] = {
      {"JO62RM", Spelling::Icao, "Juliett Oscar sechs zwei Romeo Mike"},
      {"jo62rm", Spelling::Icao, "Juliett Oscar sechs zwei Romeo Mike"},
      {"JO62RM", Spelling::Letters, "J O sechs zwei R M"},
      {"AX09", Spelling::Icao, "Alfa X-Ray null neun"},
      {"RR73QX45", Spelling::Icao, "Romeo Romeo sieben drei Quebec X-Ray vier fünf"},
      {"IN58 ", Spelling::Letters, "I N fünf acht"},
      {"", Spelling::Icao, ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(SpellLocator(QString::fromUtf8(c.locator), c.spelling), QString::fromUtf8(c.spoken))
        << c.locator;
  }
}

TEST(ForGermanVoice, RespellsOnlyWholeIcaoWords) {
  struct Case {
    const char* text;
    const char* spoken;
  };
  const Case cases[] = {
      {"Neues Feld: Juliett Oscar sechs zwei Romeo Mike",
       "Neues Feld: Dschuliett Oscar sechs zwei Romeo Maik"},
      {"Quebec X-Ray Yankee Whiskey", "Kebeck Ex-Rei Jänki Wiski"},
      {"Mikes Mikrofon", "Mikes Mikrofon"},
      {"GPS-Empfang verloren.", "GPS-Empfang verloren."},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ForGermanVoice(QString::fromUtf8(c.text)), QString::fromUtf8(c.spoken)) << c.text;
  }
}

// Each row: what happens, and what is spoken at once (empty: nothing) and what waits after it.
TEST(SpeechQueue, NeverCutsOffAndStaysBounded) {
  struct Row {
    const char* action;  // "add:TEXT" or "done"
    const char* spoken;
    QStringList waiting;
  };
  const Row rows[] = {
      {"add:eins", "eins", {}},
      {"add:zwei", "", {"zwei"}},
      {"add:drei", "", {"zwei", "drei"}},
      {"add:zwei", "", {"zwei", "drei"}},  // waits already
      {"add:vier", "", {"zwei", "drei", "vier"}},
      {"add:fünf", "", {"drei", "vier", "fünf"}},  // the oldest waiting one goes
      {"done", "drei", {"vier", "fünf"}},
      {"done", "vier", {"fünf"}},
      {"done", "fünf", {}},
      {"done", "", {}},
      {"add:sechs", "sechs", {}},  // idle again: spoken at once
  };
  SpeechQueue queue(3);
  for (const Row& r : rows) {
    const QString action = QString::fromUtf8(r.action);
    const std::optional<QString> now =
        action == u"done" ? queue.finished() : queue.add(action.mid(4));
    EXPECT_EQ(now.value_or(QString()), QString::fromUtf8(r.spoken)) << r.action;
    EXPECT_EQ(queue.waiting(), r.waiting) << r.action;
  }
  EXPECT_TRUE(queue.speaking());
}

TEST(BoundaryLine, MovingAndStanding) {
  BoundaryAhead ahead;
  ahead.next = CellAt({52.52, 13.43}, SquareLevel::Six);
  ahead.distanceM = 1234;
  ahead.bearingDeg = 44;
  EXPECT_EQ(BoundaryLine(ahead, 10.0, true),
            QStringLiteral("Nächstes Feld JO62RM in 1,2 km (2 min)"));
  EXPECT_EQ(BoundaryLine(ahead, std::nullopt, true),
            QStringLiteral("Nächstes Feld JO62RM in 1,2 km"));
  ahead.distanceM = 347;
  EXPECT_EQ(BoundaryLine(ahead, 0.0, false),
            QStringLiteral("Feldrand 350 m nach Nordosten, dahinter JO62RM"));
  struct Case {
    double seconds;
    const char* text;
  };
  for (const Case& c : {Case{3, "5 s"}, Case{44, "45 s"}, Case{89, "1 min"},
                        Case{3599, "1 h 0 min"}, Case{3900, "1 h 5 min"}}) {
    EXPECT_EQ(DurationText(c.seconds), QString::fromUtf8(c.text)) << c.seconds;
  }
  EXPECT_EQ(DistanceText(12345), QStringLiteral("12 km"));
  EXPECT_EQ(CompassName(337.6), QStringLiteral("Norden"));
  EXPECT_EQ(CompassName(-90), QStringLiteral("Westen"));
}

TEST(ApproachWatch, OnceAtEachMarkPerApproach) {
  const GridCell a{SquareLevel::Six, 10, 10}, b{SquareLevel::Six, 11, 10};
  struct Row {
    GridCell ahead;
    double metres;
    double said;  // 0: nothing
  };
  const Row rows[] = {
      {a, 1500, 0},   {a, 1001, 0},   {a, 990, 1000}, {a, 1005, 0},  // GPS jitter about the mark
      {a, 600, 0},    {a, 199, 200},  {a, 150, 0},    {a, 210, 0},
      {b, 900, 1000},                  // another square ahead
      {b, 2000, 0},   {b, 950, 1000},  // turned away and back
      {a, 120, 200},                   // close at once: only 200 m
  };
  ApproachWatch watch;
  for (const Row& r : rows) {
    EXPECT_EQ(watch.next(r.ahead, r.metres).value_or(0), r.said) << r.metres;
  }
}

TEST(FixDateTime, TakesTheDayNearestTheClock) {
  const QDateTime now(QDate(2026, 11, 25), QTime(0, 0, 30), Qt::UTC);
  EXPECT_EQ(FixDateTime(QTime(23, 59, 58), now),
            QDateTime(QDate(2026, 11, 24), QTime(23, 59, 58), Qt::UTC));
  EXPECT_EQ(FixDateTime(QTime(0, 0, 29), now),
            QDateTime(QDate(2026, 11, 25), QTime(0, 0, 29), Qt::UTC));
  EXPECT_EQ(FixDateTime(std::nullopt, now), now);
}

}  // namespace
}  // namespace marvento
