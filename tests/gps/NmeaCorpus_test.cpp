// Captures of real receivers (the gpsd regression logs) run through the decoder and through
// the serial exchange. The .chk file of each capture holds every sentence gpsd accepted,
// followed by the report it made from it; its positions are the reference here.

#include "PtyFeeder.h"
#include "gps/GpsOpenPort.h"
#include "gps/SentenceDecoding.h"
#include "gps/SentenceScanner.h"
#include "platform/CommControl.h"
#include "support/GermanLocale.h"
#include "support/Pty.h"

#include <gtest/gtest.h>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <iostream>
#include <utility>
#include <vector>

namespace marvento {
namespace {

QString corpusDir() {
#ifdef MARVENTO_NMEA_CORPUS
  return QStringLiteral(MARVENTO_NMEA_CORPUS);
#else
  return {};
#endif
}

QStringList corpusFiles(const QString& pattern) {
  const QDir dir(corpusDir());
  if (corpusDir().isEmpty() || !dir.exists()) return {};
  QStringList files;
  for (const QString& name : dir.entryList({pattern}, QDir::Files, QDir::Name)) {
    files << dir.filePath(name);
  }
  return files;
}

QByteArray readAll(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// GGA, RMC or GLL of any talker.
bool knownSentence(const QString& line) {
  return line.contains(u',') && TypeOfAddress(line.section(u',', 0, 0)) != nullptr;
}

class NmeaCorpus : public ::testing::Test {
 protected:
  void SetUp() override {
    if (corpusFiles(QStringLiteral("*.log")).isEmpty()) {
      GTEST_SKIP() << "NMEA captures not found at '" << corpusDir().toStdString()
                   << "'; the receiver replays are skipped";
    }
  }
};

// Every TPV report of a .chk file that carries a position, as signed decimal degrees.
std::vector<std::pair<double, double>> reportedPositions(const QString& chkPath) {
  std::vector<std::pair<double, double>> positions;
  for (const QString& line : QString::fromLatin1(readAll(chkPath)).split(u'\n')) {
    if (!line.startsWith(u"{\"class\":\"TPV\"")) continue;
    const QJsonObject tpv = QJsonDocument::fromJson(line.toUtf8()).object();
    if (tpv.contains(u"lat") && tpv.contains(u"lon")) {
      positions.emplace_back(tpv.value(u"lat").toDouble(), tpv.value(u"lon").toDouble());
    }
  }
  return positions;
}

// Replays a capture through the sentence scanner, exchange after exchange: each takes the
// stream in 256-character chunks from where the last one's sentence ended, and its sentence
// is decoded as a poll would. True when one decoded position is one that gpsd reported.
bool positionedLikeGpsd(const QString& logPath,
                        const std::vector<std::pair<double, double>>& reported) {
  QString stream;
  for (const QByteArray& line : readAll(logPath).split('\n')) {
    if (!line.startsWith('#')) stream += QString::fromLatin1(line + '\n');
  }
  qsizetype from = 0;
  // Every exchange consumes at least one character, so the stream's length bounds the loop.
  for (qsizetype exchanges = 0; from < stream.size() && exchanges < stream.size(); ++exchanges) {
    SentenceScanner scanner;
    qsizetype taken = from;
    SentenceScanner::Step step = SentenceScanner::Step::NoKnownType;
    while (taken < stream.size() && step != SentenceScanner::Step::Found) {
      step = scanner.add(stream.mid(taken, 256));
      taken += 256;
    }
    if (step != SentenceScanner::Step::Found) break;
    const QString& sentence = scanner.sentence();
    from += scanner.received().indexOf(sentence) + sentence.size();
    const DecodedSentence d = DecodeSentence(sentence, scanner.rawBuffer());
    if (!d.positionGood) continue;
    const double lat = (d.latSign == u"-" ? -1 : 1) * d.lat.deg;
    const double lon = (d.lonSign == u"-" ? -1 : 1) * d.lon.deg;
    for (const auto& [rlat, rlon] : reported) {
      if (std::fabs(lat - rlat) < 1e-5 && std::fabs(lon - rlon) < 1e-5) return true;
    }
  }
  return false;
}

TEST_F(NmeaCorpus, CapturesPositionedLikeGpsd) {
  QStringList reportedOnly;
  int positioned = 0;
  for (const QString& chk : corpusFiles(QStringLiteral("*.chk"))) {
    const auto reported = reportedPositions(chk);
    if (reported.empty()) continue;
    const QString log = chk.chopped(4);
    if (positionedLikeGpsd(log, reported)) {
      ++positioned;
    } else {
      reportedOnly << QFileInfo(log).fileName();
    }
  }
  std::cout << "captures positioned through scanner and decoder: " << positioned << " of "
            << positioned + reportedOnly.size() << '\n';
  EXPECT_TRUE(reportedOnly.isEmpty()) << reportedOnly.join(u' ').toStdString();
}

TEST_F(NmeaCorpus, PositionsAgreeWithGpsd) {
  int compared = 0;
  for (const QString& path : corpusFiles(QStringLiteral("*.chk"))) {
    const QStringList lines = QString::fromLatin1(readAll(path)).split(u'\n');
    for (qsizetype i = 0; i + 1 < lines.size(); ++i) {
      if (!knownSentence(lines[i]) || !lines[i + 1].startsWith(u"{\"class\":\"TPV\"")) continue;
      const QJsonObject tpv = QJsonDocument::fromJson(lines[i + 1].toUtf8()).object();
      if (!tpv.contains(u"lat") || !tpv.contains(u"lon")) continue;
      const DecodedSentence d = DecodeSentence(lines[i] + QStringLiteral("\r\n"), {});
      if (!d.positionGood) continue;
      const double lat = (d.latSign == u"-" ? -1 : 1) * d.lat.deg;
      const double lon = (d.lonSign == u"-" ? -1 : 1) * d.lon.deg;
      EXPECT_NEAR(lat, tpv.value(u"lat").toDouble(), 1e-5)
          << path.toStdString() << ": " << lines[i].toStdString();
      EXPECT_NEAR(lon, tpv.value(u"lon").toDouble(), 1e-5)
          << path.toStdString() << ": " << lines[i].toStdString();
      ++compared;
    }
  }
  EXPECT_GT(compared, 300);
}

// The captures replayed through a pseudo-terminal, exchange after exchange: every exchange
// ends in time with a known sentence or a failure text.
TEST_F(NmeaCorpus, ExchangeOverAPseudoTerminal) {
  const QString settings = QStringLiteral("4000000,N,8,1");
  const double limitMs = ExchangeWaitMs(4000000) + 500;
  test::SetNoPortDevices();
  int filesWithSentences = 0;
  for (const QString& path : corpusFiles(QStringLiteral("*.log"))) {
    SCOPED_TRACE(path.toStdString());
    QByteArray data;
    for (const QByteArray& line : readAll(path).split('\n')) {
      if (!line.startsWith('#')) data += line + '\n';
    }
    test::Pty pty;
    ASSERT_TRUE(pty.ok());
    test::SetPortDevice(1, pty.path());
    CommControl comm;
    std::vector<test::Piece> pieces;
    for (qsizetype at = 0; at < data.size(); at += 512) pieces.push_back({3, data.mid(at, 512)});
    test::PtyFeeder feeder(pty, std::move(pieces));
    int found = 0;
    while (!feeder.done()) {
      QElapsedTimer timer;
      timer.start();
      const ExchangeResult exchanged = GpsOpenPort(comm, 0, nullptr, 1, settings);
      ASSERT_LT(timer.elapsed(), limitMs);
      ASSERT_FALSE(comm.portOpen());
      if (!exchanged.hasSentence()) continue;
      const QString& result = exchanged.sentence;
      const QString& raw = exchanged.rawBuffer;
      ASSERT_TRUE(knownSentence(result)) << result.toStdString();
      const QString next = raw.mid(raw.indexOf(result) + result.size(), 1);
      if (!raw.isEmpty()) {
        EXPECT_EQ(next, QStringLiteral("$"));
      }
      DecodeSentence(result, raw);
      ++found;
    }
    if (found > 0) ++filesWithSentences;
  }
  test::ClearPortDevices();
  EXPECT_GT(filesWithSentences, 30);
}

}  // namespace
}  // namespace marvento
