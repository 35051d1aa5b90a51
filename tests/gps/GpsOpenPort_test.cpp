#include "gps/GpsOpenPort.h"

#include "PtyFeeder.h"
#include "gps/SentenceDecoding.h"
#include "platform/CommControl.h"
#include "platform/MsgBoxRecorder.h"
#include "support/Pty.h"

#include <gtest/gtest.h>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <ctime>
#include <optional>
#include <thread>

namespace marvento {
namespace {

using test::Piece;
using test::Pty;
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

class GpsOpenPortTest : public ::testing::Test {
 protected:
  void SetUp() override {
    test::SetNoPortDevices();
    ASSERT_TRUE(m_pty.ok());
    test::SetPortDevice(1, m_pty.path());
  }
  void TearDown() override { test::ClearPortDevices(); }

  QString exchange(const QString& settings = kFast, std::int16_t port = 1) {
    QElapsedTimer timer;
    timer.start();
    m_raw = QStringLiteral("left over");
    m_result = GpsOpenPort(m_comm, m_busyPort, nullptr, port, settings);
    m_elapsedMs = timer.elapsed();
    m_raw = m_result.rawBuffer;
    return m_result.text();
  }

  Pty m_pty;
  CommControl m_comm;
  std::int16_t m_busyPort = 0;
  ExchangeResult m_result;
  QString m_raw;
  qint64 m_elapsedMs = 0;
};

struct StreamCase {
  const char* name;
  std::vector<Piece> pieces;
  QByteArray result;
  QByteArray raw;
};

TEST_F(GpsOpenPortTest, TakesTheFirstWholeSentenceOfAKnownType) {
  const QByteArray midGga = kGga.mid(30) + kGsa + kRmc + kGll + kGsv;
  const QByteArray head = kGsv + kGsv + kGsa + kGsa + "$GPGGA,1235";
  const QByteArray noise = QByteArray("~~ line noise, 4800 baud on 9600 ~~ $$ 12\r\n").repeated(8);
  const QByteArray tail = kGga.mid(11) + kRmc + kGll + kGsv;
  // A multi-system receiver: "$GN", "$GL" and "$BD" talkers only.
  const QByteArray gnGsa = "$GNGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*27\r\n";
  const QByteArray glGsv =
      "$GLGSV,2,1,08,65,40,083,46,66,17,308,41,72,07,344,39,74,22,228,45*69\r\n";
  const QByteArray gnRmc =
      "$GNRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*74\r\n";
  const QByteArray bdGga = "$BDGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*56\r\n";
  const QByteArray multi = gnGsa + glGsv + glGsv + gnGsa + gnRmc + bdGga;
  const StreamCase cases[] = {
      {"opened in the middle of a GGA", {{kOpenMs, midGga}}, kRmc, midGga},
      // The middle chunk holds no sentence start and is dropped; the GGA is joined across it.
      {"chunk of line noise", {{kOpenMs, head}, {50, noise}, {50, tail}}, kGga, head + tail},
      {"multi-system receiver", {{kOpenMs, multi}}, gnRmc, multi},
  };
  for (const StreamCase& c : cases) {
    SCOPED_TRACE(c.name);
    PtyFeeder feeder(m_pty, c.pieces);
    EXPECT_EQ(exchange(kMedium), QString::fromLatin1(c.result));
    EXPECT_EQ(m_raw, QString::fromLatin1(c.raw));
    EXPECT_FALSE(m_comm.portOpen());
  }
}

struct TimeoutCase {
  const char* name;
  QString settings;
  std::vector<Piece> pieces;
  int minMs;
  int maxMs;
};

TEST_F(GpsOpenPortTest, GivesUpWhenNoSentenceComesInTime) {
  const QByteArray gsv4 = kGsv.repeated(4);
  const TimeoutCase cases[] = {
      {"silence", kFast, {}, 165, 600},
      {"only 150 characters", kMedium, {{kOpenMs, kGga + kRmc + kGll.left(13)}}, 355, 800},
      // Other "$GP" sentences move the deadline to 0.864 s after the chunk...
      {"one chunk of other sentences", kSlow, {{kOpenMs, gsv4}}, 900, 1500},
      // ...but never beyond the first deadline, however long the stream lasts.
      {"endless other sentences", kQuick, std::vector<Piece>(30, {100, gsv4}), 1000, 1600},
  };
  for (const TimeoutCase& c : cases) {
    SCOPED_TRACE(c.name);
    PtyFeeder feeder(m_pty, c.pieces);
    EXPECT_EQ(exchange(c.settings), QStringLiteral("!Zur Zeit kein GPS-Empfang"));
    EXPECT_TRUE(m_raw.isEmpty());
    EXPECT_GE(m_elapsedMs, c.minMs);
    EXPECT_LE(m_elapsedMs, c.maxMs);
    EXPECT_FALSE(m_comm.portOpen());
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
  {
    SCOPED_TRACE("no such device: the control's own text");
    test::SetPortDevice(2, QStringLiteral("/nonexistent/marvento-test/gps"));
    const QString result = exchange(kFast, 2);
    EXPECT_TRUE(result.startsWith(QStringLiteral("!Das Gerät"))) << result.toStdString();
    EXPECT_LT(m_elapsedMs, 100);
  }
  {
    SCOPED_TRACE("settings that cannot be read");
    const QString result = exchange(QStringLiteral("abc,N,8,1"));
    EXPECT_TRUE(result.startsWith(QStringLiteral("!Ungültige"))) << result.toStdString();
    EXPECT_FALSE(m_comm.portOpen());
  }
  {
    // Regression: a port held exclusively by another program was told as wrong data.
    SCOPED_TRACE("held exclusively by another program (TIOCEXCL)");
    const int held = ::open(m_pty.path().toLocal8Bit().constData(), O_RDWR | O_NOCTTY);
    ASSERT_GE(held, 0);
    ASSERT_EQ(::ioctl(held, TIOCEXCL), 0);
    const QString result = exchange();
    ::close(held);
    EXPECT_TRUE(result.startsWith(QStringLiteral("!Das Gerät ") + m_pty.path()))
        << result.toStdString();
    EXPECT_TRUE(result.contains(QStringLiteral("wird schon von einem anderen Programm verwendet")))
        << result.toStdString();
    EXPECT_LT(m_elapsedMs, 150);
    EXPECT_FALSE(m_comm.portOpen());
  }
  EXPECT_EQ(boxes.count(), 0);
}

double cpuMs() {
  timespec t{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

// Runs a SerialExchange until it reports, bounded by limitMs, with a 10-ms probe timer
// that records the longest gap between its ticks.
struct ExchangeRun {
  std::optional<ExchangeResult> result;
  qint64 wallMs = 0;
  double cpuMs = 0;
  qint64 longestGapMs = 0;
};

ExchangeRun runExchange(CommControl& comm, const QString& settings,
                        std::function<void()> during = {}, int limitMs = 8000) {
  ExchangeRun run;
  SerialExchange exchange(comm);
  QEventLoop loop;
  QTimer probe;
  QElapsedTimer sinceTick;
  probe.setTimerType(Qt::PreciseTimer);
  QObject::connect(&probe, &QTimer::timeout,
                   [&] { run.longestGapMs = std::max(run.longestGapMs, sinceTick.restart()); });
  QTimer::singleShot(limitMs, &loop, &QEventLoop::quit);
  QElapsedTimer wall;
  const double cpuBefore = cpuMs();
  wall.start();
  sinceTick.start();
  probe.start(10);
  exchange.start({1, settings, 0, {}}, [&](const ExchangeResult& r) {
    run.result = r;
    loop.quit();
  });
  if (during) during();
  if (!run.result) loop.exec();
  run.wallMs = wall.elapsed();
  run.cpuMs = cpuMs() - cpuBefore;
  return run;
}

// Regression: the exchange blocked the event loop for the whole wait (up to 5 s).
TEST_F(GpsOpenPortTest, SilentExchangeKeepsTheEventLoopRunning) {
  const ExchangeRun run = runExchange(m_comm, kQuick);  // 1.02 s
  ASSERT_TRUE(run.result);
  EXPECT_EQ(run.result->kind, ExchangeResult::Kind::NoReception);
  EXPECT_GE(run.wallMs, 1000);
  // Generous for a loaded machine: the old wait froze the loop for the full second.
  EXPECT_LT(run.longestGapMs, 200);
  EXPECT_LT(run.cpuMs, 0.25 * static_cast<double>(run.wallMs));
}

// Regression: a device that hung up made the wait spin a core until the deadline.
TEST_F(GpsOpenPortTest, HangUpEndsTheWaitAtOnceWithoutSpinning) {
  PtyFeeder feeder(m_pty, {{kOpenMs, kGsv}});
  const ExchangeRun run = runExchange(m_comm, QStringLiteral("4800,N,8,1"), [this] {
    QTimer::singleShot(300, [this] { m_pty.close(); });
  });
  ASSERT_TRUE(run.result);
  EXPECT_EQ(run.result->kind, ExchangeResult::Kind::Disconnected);
  EXPECT_EQ(run.result->reason,
            QStringLiteral("Der GPS-Empfänger an %1 wurde getrennt.").arg(m_pty.path()));
  EXPECT_LT(run.wallMs, 1500);  // the deadline was 4.99 s away
  EXPECT_LT(run.cpuMs, 0.25 * static_cast<double>(run.wallMs));
  EXPECT_FALSE(m_comm.portOpen());
  // The next poll finds the device missing, as for any receiver that is not there.
  const QString next = exchange(kFast);
  EXPECT_TRUE(next.contains(QStringLiteral("ist nicht vorhanden"))) << next.toStdString();
}

// Regression: a sentence that was whole when the deadline came gave "Keine gültigen GPS-Daten".
TEST_F(GpsOpenPortTest, SentenceWholeAtTheDeadlineIsTaken) {
  PtyFeeder feeder(m_pty, {{kOpenMs, kGga + kGsa + kGsv + kRmc}});
  const ExchangeRun run = runExchange(m_comm, kMedium, [] {
    // The loop is held past the deadline while the whole sentence arrives, so the deadline
    // and the data are due together.
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
  });
  ASSERT_TRUE(run.result);
  EXPECT_EQ(run.result->kind, ExchangeResult::Kind::Sentence);
  EXPECT_EQ(run.result->sentence, QString::fromLatin1(kGga));
}

}  // namespace
}  // namespace marvento
