#include "gps/GpsOpenPort.h"

#include "PtyFeeder.h"
#include "platform/CommControl.h"
#include "platform/MsgBoxRecorder.h"
#include "support/Pty.h"

#include <gtest/gtest.h>
#include <QElapsedTimer>
#include <QTimer>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <ctime>
#include <thread>

namespace marvento {
namespace {

using test::Piece;
using test::PtyFeeder;

const QByteArray kGga = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n";
const QByteArray kGsa = "$GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*39\r\n";
const QByteArray kGsv = "$GPGSV,2,1,08,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45*75\r\n";
const QByteArray kRmc = "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A\r\n";
const QByteArray kGll = "$GPGLL,4916.45,N,12311.12,W,225444,A*1D\r\n";

// A pseudo-terminal ignores the rate, so a high one keeps the waits short: 0.17 s, 0.36 s.
const QString kFast = QStringLiteral("4000000,N,8,1");
const QString kMedium = QStringLiteral("921600,N,8,1");
// What is written before the port is open may be dropped by the opening.
constexpr int kOpenMs = 60;
// 1.76 s and 1.02 s, longer than the 0.864 s an exchange runs on after other "$GP" sentences.
const QString kSlow = QStringLiteral("38400,N,8,1");
const QString kQuick = QStringLiteral("115200,N,8,1");

double cpuMs() {
  timespec t{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

class GpsOpenPortTest : public ::testing::Test {
 protected:
  void SetUp() override {
    test::SetNoPortDevices();
    ASSERT_TRUE(m_pty.ok());
    test::SetPortDevice(1, m_pty.path());
  }
  void TearDown() override { test::ClearPortDevices(); }

  // One exchange to its end. A 10-ms probe timer records the longest gap between its ticks:
  // how long the event loop was held.
  QString exchange(const QString& settings = kFast) {
    QTimer probe;
    QElapsedTimer sinceTick;
    QElapsedTimer wall;
    m_longestGapMs = 0;
    probe.setTimerType(Qt::PreciseTimer);
    QObject::connect(&probe, &QTimer::timeout,
                     [&] { m_longestGapMs = std::max(m_longestGapMs, sinceTick.restart()); });
    const double cpuBefore = cpuMs();
    wall.start();
    sinceTick.start();
    probe.start(10);
    m_result = GpsOpenPort(m_comm, m_busyPort, nullptr, 1, settings);
    // A wait that never let the probe tick counts as one gap.
    m_longestGapMs = std::max(m_longestGapMs, sinceTick.elapsed());
    m_elapsedMs = wall.elapsed();
    m_cpuMs = cpuMs() - cpuBefore;
    return m_result.text();
  }

  test::Pty m_pty;
  CommControl m_comm;
  std::int16_t m_busyPort = 0;
  ExchangeResult m_result;
  qint64 m_elapsedMs = 0;
  qint64 m_longestGapMs = 0;
  double m_cpuMs = 0;
};

// A chunk without a sentence start is dropped; the GGA is joined across it.
TEST_F(GpsOpenPortTest, ChunkOfLineNoiseIsDropped) {
  const QByteArray head = kGsv + kGsv + kGsa + kGsa + "$GPGGA,1235";
  const QByteArray noise = QByteArray("~~ line noise, 4800 baud on 9600 ~~ $$ 12\r\n").repeated(8);
  const QByteArray tail = kGga.mid(11) + kRmc + kGll + kGsv;
  PtyFeeder feeder(m_pty, {{kOpenMs, head}, {50, noise}, {50, tail}});
  EXPECT_EQ(exchange(kMedium), QString::fromLatin1(kGga));
  EXPECT_EQ(m_result.rawBuffer, QString::fromLatin1(head + tail));
  EXPECT_FALSE(m_comm.portOpen());
}

// Regression: the exchange blocked the event loop for the whole wait (up to 5 s). Every wait
// leaves the loop running and the core idle.
TEST_F(GpsOpenPortTest, GivesUpWhenNoSentenceComesInTime) {
  const QByteArray gsv4 = kGsv.repeated(4);
  const struct {
    const char* name;
    QString settings;
    std::vector<Piece> pieces;
    int minMs;
    int maxMs;
  } cases[] = {
      {"silence", kQuick, {}, 1000, 1500},
      {"only 150 characters", kMedium, {{kOpenMs, kGga + kRmc + kGll.left(13)}}, 355, 800},
      // Other "$GP" sentences move the deadline to 0.864 s after the chunk...
      {"one chunk of other sentences", kSlow, {{kOpenMs, gsv4}}, 900, 1500},
      // ...but never beyond the first deadline, however long the stream lasts.
      {"endless other sentences", kQuick, std::vector<Piece>(30, {100, gsv4}), 1000, 1600},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    PtyFeeder feeder(m_pty, c.pieces);
    EXPECT_EQ(exchange(c.settings), QStringLiteral("!Zurzeit kein GPS-Empfang"));
    EXPECT_TRUE(m_result.rawBuffer.isEmpty());
    EXPECT_GE(m_elapsedMs, c.minMs);
    EXPECT_LE(m_elapsedMs, c.maxMs);
    EXPECT_FALSE(m_comm.portOpen());
    // Generous for a loaded machine.
    EXPECT_LT(m_longestGapMs, 200);
    EXPECT_LT(m_cpuMs, 0.25 * static_cast<double>(m_elapsedMs));
  }
}

// Cancel leaves the port untouched; OK goes on with the exchange.
TEST_F(GpsOpenPortTest, BusyPortQuestion) {
  MsgBoxRecorder boxes;
  boxes.answer(vbCancel);
  boxes.answer(vbOK);
  m_busyPort = 1;
  ASSERT_TRUE(m_comm.setCommPort(5).ok());
  EXPECT_EQ(exchange(), QStringLiteral("!Bitte andere Schnittstelle auswählen"));
  ASSERT_EQ(boxes.count(), 1);
  EXPECT_EQ(boxes.last().prompt,
            QStringLiteral("Schnittstelle wird schon verwendet ( Mouse ? )\nTrotzdem versuchen ?"));
  EXPECT_EQ(boxes.last().style, 49);
  EXPECT_EQ(boxes.last().title, QStringLiteral(" Achtung"));
  EXPECT_EQ(m_comm.commPort(), 5);
  EXPECT_FALSE(m_comm.portOpen());
  EXPECT_LT(m_elapsedMs, 100);

  PtyFeeder feeder(m_pty, {{kOpenMs, kGga + kGsa + kGsv + kRmc}});
  EXPECT_EQ(exchange(), QString::fromLatin1(kGga));
  EXPECT_EQ(boxes.count(), 2);
}

TEST_F(GpsOpenPortTest, PortStates) {
  MsgBoxRecorder boxes;
  const QString unreadable = exchange(QStringLiteral("abc,N,8,1"));
  EXPECT_TRUE(unreadable.startsWith(QStringLiteral("!Ungültige"))) << unreadable.toStdString();
  EXPECT_FALSE(m_comm.portOpen());

  // Regression: a port held exclusively by another program was told as wrong data.
  const int held = ::open(m_pty.path().toLocal8Bit().constData(), O_RDWR | O_NOCTTY);
  ASSERT_GE(held, 0);
  ASSERT_EQ(::ioctl(held, TIOCEXCL), 0);
  const QString busy = exchange();
  ::close(held);
  EXPECT_TRUE(busy.startsWith(QStringLiteral("!Das Gerät ") + m_pty.path())) << busy.toStdString();
  EXPECT_TRUE(busy.contains(QStringLiteral("wird schon von einem anderen Programm verwendet")))
      << busy.toStdString();
  EXPECT_LT(m_elapsedMs, 150);
  EXPECT_FALSE(m_comm.portOpen());
  EXPECT_EQ(boxes.count(), 0);
}

// Regression: a device that hung up made the wait spin a core until the deadline.
TEST_F(GpsOpenPortTest, HangUpEndsTheWaitAtOnceWithoutSpinning) {
  PtyFeeder feeder(m_pty, {{kOpenMs, kGsv}});
  QTimer::singleShot(300, [this] { m_pty.close(); });
  EXPECT_EQ(exchange(QStringLiteral("4800,N,8,1")),
            QStringLiteral("!Der GPS-Empfänger an %1 wurde getrennt.").arg(m_pty.path()));
  EXPECT_EQ(m_result.kind, ExchangeResult::Kind::Disconnected);
  EXPECT_LT(m_elapsedMs, 1500);  // the deadline was 4.99 s away
  EXPECT_LT(m_cpuMs, 0.25 * static_cast<double>(m_elapsedMs));
  EXPECT_FALSE(m_comm.portOpen());
  // The next poll finds the device missing, as for any receiver that is not there.
  const QString next = exchange(kFast);
  EXPECT_TRUE(next.contains(QStringLiteral("ist nicht vorhanden"))) << next.toStdString();
}

// Regression: a sentence that was whole when the deadline came gave "Keine gültigen GPS-Daten".
TEST_F(GpsOpenPortTest, SentenceWholeAtTheDeadlineIsTaken) {
  PtyFeeder feeder(m_pty, {{kOpenMs, kGga + kGsa + kGsv + kRmc}});
  // The loop is held past the deadline while the whole sentence arrives, so the deadline and
  // the data are due together.
  QTimer::singleShot(0, [] { std::this_thread::sleep_for(std::chrono::milliseconds(500)); });
  EXPECT_EQ(exchange(kMedium), QString::fromLatin1(kGga));
  EXPECT_EQ(m_result.kind, ExchangeResult::Kind::Sentence);
}

}  // namespace
}  // namespace marvento
