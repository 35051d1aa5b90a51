// Captures of real receivers (the gpsd regression logs) run through the decoder and through
// the serial exchange. The .chk file of each capture holds every sentence gpsd accepted,
// followed by the report it made from it; its positions are the reference for the decoder.

#include "PtyFeeder.h"
#include "gps/GpsOpenPort.h"
#include "gps/SentenceDecoding.h"
#include "platform/CommControl.h"
#include "support/GermanLocale.h"
#include "support/Pty.h"

#include <gtest/gtest.h>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <vector>

namespace marvento {
namespace {

QStringList corpusFiles(const QString& pattern) {
  const QDir dir(QStringLiteral(MARVENTO_NMEA_CORPUS));
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

class NmeaCorpus : public ::testing::Test {
 protected:
  void SetUp() override {
    if (corpusFiles(QStringLiteral("*.log")).isEmpty()) {
      GTEST_SKIP() << "NMEA captures not found at '" << MARVENTO_NMEA_CORPUS
                   << "'; the receiver replays are skipped";
    }
  }
};

TEST_F(NmeaCorpus, PositionsAgreeWithGpsd) {
  int compared = 0;
  for (const QString& path : corpusFiles(QStringLiteral("*.chk"))) {
    const QStringList lines = QString::fromLatin1(readAll(path)).split(u'\n');
    for (qsizetype i = 0; i + 1 < lines.size(); ++i) {
      if (!lines[i + 1].startsWith(u"{\"class\":\"TPV\"")) continue;
      const QJsonObject tpv = QJsonDocument::fromJson(lines[i + 1].toUtf8()).object();
      const DecodedSentence d = DecodeSentence(lines[i] + QStringLiteral("\r\n"), {});
      if (!tpv.contains(u"lat") || !tpv.contains(u"lon") || !d.positionGood) continue;
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
// ends in time with a whole sentence the decoder knows, or a failure text.
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
      ASSERT_NE(DecodeSentence(result, raw).kind, SentenceKind::Other) << result.toStdString();
      // Whole: the next sentence has begun behind it.
      EXPECT_TRUE(raw.isEmpty() || raw.contains(result + u'$')) << result.toStdString();
      ++found;
    }
    if (found > 0) ++filesWithSentences;
  }
  test::ClearPortDevices();
  EXPECT_GT(filesWithSentences, 30);
}

}  // namespace
}  // namespace marvento
