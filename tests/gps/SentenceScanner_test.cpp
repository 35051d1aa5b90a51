#include "gps/SentenceScanner.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace marvento {
namespace {

using Step = SentenceScanner::Step;

const QString kGngga =
    QStringLiteral("$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*59\r\n");
// kGngga with one digit of the latitude flipped.
const QString kGnggaBad =
    QStringLiteral("$GNGGA,123519,4817.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*59\r\n");
const QString kGnrmc =
    QStringLiteral("$GNRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*74\r\n");
const QString kBdgll = QStringLiteral("$BDGLL,4916.45,N,12311.12,W,225444,A,A\r\n");
const QString kGsa = QStringLiteral("$GNGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*27\r\n");
const QString kGarminError = QStringLiteral("$PGRME,15.0,M,45.0,M,25.0,M*1C\r\n");

TEST(SentenceScanner, TakesTheFirstIntactSentenceOfAnyTalker) {
  const struct {
    const char* name;
    QString stream;
    Step step;
    QString sentence;  // after Found
    bool rawKept;      // rawBuffer() is the whole text
  } cases[] = {
      {"GN receiver", kGsa + kGngga + kGnrmc, Step::Found, kGngga, true},
      {"opened in the middle of a GGA", kGngga.mid(30) + kGsa + kGnrmc + kBdgll, Step::Found,
       kGnrmc, true},
      {"BeiDou GLL", kBdgll + kGsa, Step::Found, kBdgll, false},
      {"any $ ends a sentence", kGnrmc + kGarminError, Step::Found, kGnrmc, true},
      {"bad GGA, then a good RMC", kGnggaBad + kGsa + kGnrmc + kGsa, Step::Found, kGnrmc, true},
      {"cut-off GGA passed over", QStringLiteral("$GPGGA,030130\r\n") + kGnrmc + u'$', Step::Found,
       kGnrmc, true},
      {"a bad GGA alone has not arrived", kGnggaBad + kGsa, Step::NoKnownType, {}, false},
      {"a bad GGA and a begun RMC", kGnggaBad + kGnrmc, Step::Incomplete, {}, true},
      {"last sentence never taken", kGsa + kGngga, Step::Incomplete, {}, false},
      {"other types only", kGsa + kGarminError + kGsa, Step::NoKnownType, {}, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    // Whole, and one character at a time: the cuts must not matter.
    SentenceScanner whole;
    const Step step = whole.add(c.stream);
    SentenceScanner bytes;
    Step last = Step::NoKnownType;
    for (const QChar ch : c.stream) {
      if (last == Step::Found) break;
      last = bytes.add(QStringView(&ch, 1));
    }
    EXPECT_EQ(step, c.step);
    EXPECT_EQ(last, c.step);
    if (step != Step::Found) continue;
    EXPECT_EQ(whole.sentence(), c.sentence);
    EXPECT_EQ(bytes.sentence(), c.sentence);
    EXPECT_EQ(whole.rawBuffer(), c.rawKept ? c.stream : QString());
  }
}

TEST(SentenceScanner, ChunksWithASentenceStart) {
  const std::pair<const char*, bool> cases[] = {
      {"$GPGSV,2,1", true}, {"0*47\r\n$GN", true},    {"xx$BDGSA", true},
      {"$PGRME", true},     {"12,E*47\r\n$G", false}, {"$gpGGA", false},
      {"$1PGGA", false},    {"no start", false},      {"", false},
  };
  for (const auto& [chunk, holds] : cases) {
    EXPECT_EQ(HoldsSentenceStart(QString::fromLatin1(chunk)), holds) << chunk;
  }
}

// Garbage of the same letters a receiver sends, but without "$": no sentence can begin in it.
QString garbage(qsizetype size) {
  QString text(size, u'x');
  for (qsizetype i = 0; i < size; ++i) text[i] = QChar(static_cast<char16_t>(u'A' + (i * 7919) % 26));
  return text;
}

// Regression: the receive text of one exchange grew with everything a port delivered
// (hundreds of megabytes from a port sending garbage at full speed).
TEST(SentenceScanner, KeepsOnlyTheTailOfALongText) {
  const struct {
    const char* name;
    std::vector<QString> chunks;
    Step step;
    QString sentence;
  } cases[] = {
      {"megabytes of garbage in small chunks, then a sentence",
       [] {
         std::vector<QString> chunks(1000, garbage(4000));
         chunks.push_back(kGngga + kGsa);
         return chunks;
       }(),
       Step::Found, kGngga},
      {"a sentence inside one chunk of a megabyte",
       {garbage(500000) + kGnrmc + kGsa + garbage(500000)},
       Step::Found,
       kGnrmc},
      {"a sentence begun before the garbage that follows it exceeds the bound",
       {garbage(100), kGngga.left(40), garbage(SentenceScanner::kMaxReceived),
        kGngga.mid(40) + u'$'},
       Step::NoKnownType,
       {}},
      {"a sentence begun at the end of a long chunk, finished in the next",
       {garbage(3 * SentenceScanner::kMaxReceived) + kGnrmc.left(20), kGnrmc.mid(20) + kGsa},
       Step::Found,
       kGnrmc},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    SentenceScanner scanner;
    Step step = Step::NoKnownType;
    for (const QString& chunk : c.chunks) {
      step = scanner.add(chunk);
      if (step == Step::Found) break;
      EXPECT_LE(scanner.received().size(), SentenceScanner::kMaxReceived);
    }
    EXPECT_EQ(step, c.step);
    if (step == Step::Found) {
      EXPECT_EQ(scanner.sentence(), c.sentence);
    }
  }
}

}  // namespace
}  // namespace marvento
