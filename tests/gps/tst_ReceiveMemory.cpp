// Memory stays bounded whatever a source delivers: random bytes at full speed through a
// pseudo-terminal into the real program, and endless lines without an end from stand-ins of
// gpsd, rotctld and JS8Call (the real daemons never send such a flood).

#include "gps/GpsdExchange.h"
#include "station/Js8CallLink.h"
#include "station/RotatorLink.h"
#include "support/Pty.h"
#include "support/Sanitizers.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <random>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace marvento;
using namespace std::chrono_literals;

namespace {

// A value of /proc/<pid>/status in MB ("VmRSS", "VmHWM"); -1 when it cannot be read.
qint64 statusMb(const QString& pid, const char* field) {
  QFile file(QStringLiteral("/proc/%1/status").arg(pid));
  if (!file.open(QIODevice::ReadOnly)) return -1;
  for (const QByteArray& line : file.readAll().split('\n')) {
    if (line.startsWith(field))
      return line.mid(qstrlen(field) + 1).trimmed().split(' ')[0].toLongLong() / 1024;
  }
  return -1;
}

// One megabyte of random bytes; without line ends where a line reader is fed.
QByteArray randomBytes(bool lineEnds) {
  std::mt19937 random(24);
  QByteArray bytes(1 << 20, Qt::Uninitialized);
  for (char& c : bytes) {
    c = static_cast<char>(random());
    if (!lineEnds && c == '\n') c = 'x';
  }
  return bytes;
}

// Accepts one connection on a loopback port and sends random bytes without a line end into
// it as fast as it is taken, until stopped or the peer closes.
class FloodServer {
 public:
  FloodServer() {
    m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(m_listener, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        ::listen(m_listener, 1) != 0 ||
        ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
      return;
    }
    m_port = ntohs(address.sin_port);
    m_thread = std::jthread([this](std::stop_token stop) {
      pollfd wait{m_listener, POLLIN, 0};
      while (!stop.stop_requested() && ::poll(&wait, 1, 50) == 0) {
      }
      if (stop.stop_requested()) return;
      const int peer = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
      if (peer < 0) return;
      const QByteArray bytes = randomBytes(false);
      while (!stop.stop_requested()) {
        pollfd out{peer, POLLOUT, 0};
        if (::poll(&out, 1, 50) <= 0) continue;
        const ssize_t n = ::send(peer, bytes.constData(), 65536, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (n < 0 && errno != EAGAIN) break;
        if (n > 0) m_sent += n;
      }
      ::close(peer);
    });
  }
  ~FloodServer() {
    m_thread.request_stop();
    if (m_thread.joinable()) m_thread.join();
    ::close(m_listener);
  }
  std::uint16_t port() const { return m_port; }
  qint64 sent() const { return m_sent; }

 private:
  int m_listener = -1;
  std::uint16_t m_port = 0;
  std::atomic<qint64> m_sent = 0;
  std::jthread m_thread;
};

// AddressSanitizer keeps freed memory in quarantine, so resident sizes say nothing there; the
// floods still run, for the sanitizer's sake.
#ifdef MARVENTO_ASAN
constexpr bool kMeasured = false;
#else
constexpr bool kMeasured = true;
#endif

// Resets the peak resident memory of this process to what it holds now.
bool resetPeak() {
  QFile file(QStringLiteral("/proc/self/clear_refs"));
  return file.open(QIODevice::WriteOnly) && file.write("5") == 1;
}

// Extra memory allowed beyond the level before the flood: well above what the buffers need,
// well below what an unbounded buffer takes in seconds at full speed. Over a socket the
// system's receive buffer (several megabytes) may be taken in at one read.
constexpr qint64 kMarginMb = 12;
constexpr qint64 kSocketMarginMb = 24;

}  // namespace

class tst_ReceiveMemory : public QObject {
  Q_OBJECT

 private slots:
  // Regression: random bytes at full speed made the resident memory of the program grow by
  // tens of megabytes during one exchange, and stay up after it.
  void randomBytesIntoTheProgram() {
    const QString program = QStringLiteral(MARVENTO_BUILD_DIR "/src/marvento");
    QVERIFY2(QFileInfo::exists(program), qPrintable(program));
    // The receiver's side, written without blocking: between two exchanges nobody reads.
    const test::Pty pty(O_NONBLOCK);
    QVERIFY(pty.ok());
    const int master = pty.master();
    const QByteArray device = pty.path().toLocal8Bit();
    QTemporaryDir home;
    QVERIFY(QDir().mkpath(home.filePath(QStringLiteral("Marvento"))));
    {
      QFile conf(home.filePath(QStringLiteral("Marvento/Marvento.conf")));
      QVERIFY(conf.open(QIODevice::WriteOnly));
      // An interval of 1 s: the exchanges of 4.99 s at 4800 baud follow each other closely.
      conf.write("[Settings]\nGPS=GPS an\nCom=Com1\nBit-Sek=4800\nGPS-Interval=1\n[Ports]\nCom1=" +
                 device + "\n");
    }
    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path());
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), home.path());
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    child.setProcessEnvironment(env);
    child.setWorkingDirectory(home.path());
    child.start(program, {});
    QVERIFY(child.waitForStarted(5000));
    const auto stop = qScopeGuard([&] {
      child.kill();
      child.waitForFinished(5000);
    });
    const QString pid = QString::number(child.processId());
    QTest::qWait(1500);
    const qint64 before = statusMb(pid, "VmRSS");
    QVERIFY(before > 0);

    // Full speed for 8 s, through the first exchange and into the next ones.
    const QByteArray bytes = randomBytes(true);
    qint64 sent = 0;
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 8000 && child.state() == QProcess::Running) {
      const qsizetype at = sent % bytes.size();
      const ssize_t n = ::write(master, bytes.constData() + at,
                                static_cast<size_t>(std::min<qsizetype>(65536, bytes.size() - at)));
      if (n > 0) {
        sent += n;
      } else {
        QThread::usleep(200);
        char echo[4096];
        [[maybe_unused]] const ssize_t ignored = ::read(master, echo, sizeof echo);
      }
    }
    const qint64 peak = statusMb(pid, "VmHWM");
    // The exchange under way ends within its 4.99 s; then the memory is back.
    QTest::qWait(6000);
    const qint64 after = statusMb(pid, "VmRSS");
    QVERIFY2(child.state() == QProcess::Running, "the program ended");
    QVERIFY2(sent >= (4 << 20), "the program took in too little to tell anything");
    if (!kMeasured) QSKIP("resident sizes mean nothing under AddressSanitizer");
    QCOMPARE_LE(peak, before + kMarginMb);
    QCOMPARE_LE(after, before + kMarginMb / 2);  // back after the exchange
  }

  void linesWithoutEnd_data() {
    QTest::addColumn<QString>("reader");
    QTest::newRow("gpsd") << "gpsd";
    QTest::newRow("rotctld") << "rotctld";
    QTest::newRow("JS8Call") << "js8call";
  }

  // gpsd's line reader, the rotctld reply reader and the JS8Call link each hold a bound: a
  // peer that sends without a line end for seconds costs no memory.
  void linesWithoutEnd() {
    QFETCH(QString, reader);
    const QString self = QString::number(QCoreApplication::applicationPid());
    FloodServer server;
    QVERIFY(server.port() != 0);
    const qint64 before = statusMb(self, "VmRSS");
    QVERIFY(resetPeak());

    GpsdExchange gpsd;
    RotatorLink rotor;
    Js8CallLink js8call;
    QSignalSpy rotorFailed(&rotor, &RotatorLink::positionFailed);
    if (reader == u"gpsd") {
      gpsd.start({1, {}, 0, QStringLiteral("127.0.0.1:%1").arg(server.port())},
                 [](const ExchangeResult&) {});
    } else if (reader == u"rotctld") {
      rotor.setAddress(QStringLiteral("127.0.0.1"), server.port());
      rotor.requestPosition();
    } else {
      js8call.start(QStringLiteral("127.0.0.1"), server.port());
    }
    QTest::qWait(3000);
    const qint64 peak = statusMb(self, "VmHWM");
    if (reader == u"rotctld") {
      // The reply reader gives up on a line longer than any answer and drops the connection.
      QCOMPARE(rotorFailed.count(), 1);
    } else {
      // Far more than the margin: kept, it would show.
      QVERIFY2(server.sent() >= (kMeasured ? 64 << 20 : 1 << 20),
               "the reader took in too little to tell anything");
    }
    if (!kMeasured) QSKIP("resident sizes mean nothing under AddressSanitizer");
    QCOMPARE_LE(peak, before + kSocketMarginMb);
  }
};

QTEST_GUILESS_MAIN(tst_ReceiveMemory)
#include "tst_ReceiveMemory.moc"
