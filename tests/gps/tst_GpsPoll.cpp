// The whole poll on real widgets, with the receiver on a pseudo-terminal.

#include "FakeClock.h"
#include "PtyFeeder.h"
#include "gps/GpsFix.h"
#include "gps/GpsLog.h"
#include "gps/GpsPoll.h"
#include "locator/CoordsToLocator.h"
#include "platform/CommControl.h"
#include "platform/MsgBoxRecorder.h"
#include "support/Pty.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <memory>

using namespace marvento;

namespace {

const QByteArray kGga = "$GPGGA,123519.00,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*69\r\n";
const QByteArray kGgaBad = "$GPGGA,123520.00,,,,,1,04,0.9,12.0,M,46.9,M,,*65\r\n";
const QByteArray kGsa = "$GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*39\r\n";
const QByteArray kGsv = "$GPGSV,2,1,08,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45*75\r\n";
const QByteArray kRmc =
    "$GPRMC,123519.00,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*44\r\n";
const QByteArray kRmcV =
    "$GPRMC,123519.00,V,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*53\r\n";
constexpr int kOpenMs = 60;

const char* const kHeight = "GPS - Antennenhöhe: 545,4 m ü. NN (8)";
const char* const kCourse = "GPS - Geschwindigkeit: 22,4 Kn  Kurs: 84,4 ° (Stand: 12:35:19)";
const struct GoodData {
  const char* name;
  QByteArray stream;
  bool gradDezimal;
  const char* fremdLoc;
  const char* fields;  // MyLg|MyBr|FremdLoc|FremdLg|FremdBr after the poll
  const char* info;
  const char* panel2;
  const char* kurs;
  int computes;
  const char* heights = "";  // what the height report is given
} kGoodData[] = {
    {"GGA, decimal, placeholders", kGga + kGsa + kRmc + kGsv, true, "",
     " 11,5166666666667| 48,1173|AA00AA|-179,999999|-89,999999", kHeight, "12:35:19", kCourse, 1,
     "545.4|M|8"},
    {"GGA, degrees, blanks in tbFremdLoc", kGga + kGsa + kRmc + kGsv, false, "   ",
     " 11° 31' 0,0\"| 48° 07' 2,28\"|AA00AA|-179° 59' 59,999\"|-89° 59' 59,999\"", kHeight,
     "12:35:19", kCourse, 1, "545.4|M|8"},
    {"RMC rules, no height line", kRmc + kGga + kGsa + kGsv, true, "JO31AB",
     " 11,5166666666667| 48,1173|JO31AB||", "", "12:35:19", kCourse, 1},
    {"RMC status V: nothing changes", kRmcV + kGga + kGsa + kGsv, true, "", "||||", "", "",
     "old course", 0},
    // A sentence whose position is refused is not trusted for its time either.
    {"GGA without position: no time, no fix written", kGgaBad + kGsa + kGsv + kGsv, true, "",
     "||||", "Schlechter Empfang oder zu geringe Anzahl an Satelliten !", "", "old course", 0,
     "12.0|M|4"},
};

// Sentences with a right checksum whose fields no receiver can have measured, each polled
// after a good fix at 12:35:19: what they may not change stays as that fix left it. One row a
// field; which values are impossible is SentenceDecoding_test's matter.
const struct Impossible {
  const char* name;
  QByteArray sentence;
  const char* info;
  const char* panel2;  // the time of the good fix, unless this sentence has a real one
  const char* kurs;
  int fixes;      // positions taken, the good one included
  int logLines;   // lines in the GPS log
  int clockSets;  // GpsZeit is on for this poll
  int heights;    // height samples, the good one included
} kImpossible[] = {
    {"time 25:61:61", "$GPRMC,256161.00,A,5231.500,N,01324.000,E,022.4,084.4,230394,003.1,W*48\r\n",
     "", "12:35:19", "GPS - Geschwindigkeit: 22,4 Kn  Kurs: 84,4 ° (Stand: 12:35:19)", 2, 1, 0, 1},
    {"speed 99999.9, course 720",
     "$GPRMC,123600.00,A,5231.500,N,01324.000,E,99999.9,720.0,230394,003.1,W*40\r\n", "",
     "12:36:00", "", 2, 2, 1, 1},
    {"latitude 95", "$GPRMC,123600.00,A,9500.000,N,01324.000,E,022.4,084.4,230394,003.1,W*45\r\n",
     "Schlechter Empfang oder zu geringe Anzahl an Satelliten !", "12:35:19",
     "GPS - Geschwindigkeit: 22,4 Kn  Kurs: 84,4 ° (Stand: 12:35:19)", 1, 1, 0, 1},
    {"height 150 km", "$GPGGA,123600.00,5231.500,N,01324.000,E,1,08,0.9,150000.0,M,46.9,M,,*50\r\n",
     "", "12:36:00", "GPS - Geschwindigkeit: 22,4 Kn  Kurs: 84,4 ° (Stand: 12:35:19)", 2, 2, 1, 1},
};

}  // namespace

class TestGpsPoll : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    qputenv("XDG_CONFIG_HOME", m_config.path().toLocal8Bit());
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  }

  void init() {
    test::SetNoPortDevices();
    m_pty = std::make_unique<test::Pty>();
    QVERIFY(m_pty->ok());
    test::SetPortDevice(1, m_pty->path());
    m_settings = GpsPollSettings{};
    m_settings.comPort = QStringLiteral("Com1");
    m_settings.receptionOn = true;
    m_w = std::make_unique<Window>();
    m_w->lbKurs.setText(QStringLiteral("old course"));
    m_w->timer.setInterval(30000);
    m_w->timer.start();
    m_clock.set(QDateTime(QDate(2026, 11, 18), QTime(14, 22, 10)));
    Window& w = *m_w;
    GpsPollView view{&w.lbInfo,    &w.lbKurs,    &w.tbMyLoc, &w.tbMyLg, &w.tbMyBr, &w.tbFremdLoc,
                     &w.tbFremdLg, &w.tbFremdBr, &w.panel2,  &w.timer,  &w.comm};
    GpsPollHooks hooks;
    hooks.Settings = [this] { return m_settings; };
    hooks.ReceptionOff = [this] {
      ++m_w->receptionOffs;
      m_settings.receptionOn = false;
    };
    hooks.Compute = [this] {
      ++m_w->computes;
      m_w->pollingSeenInCompute = m_poll->isPolling();
    };
    hooks.HeightSample = [this](const QString& alt, const QString& unit, const QString& sats) {
      m_w->heights << alt + u'|' + unit + u'|' + sats;
    };
    hooks.UnlockEntry = [this] { ++m_w->unlocks; };
    hooks.FixTaken = [this](const GpsFix& fix) {
      ++m_w->fixes;
      // What Compute would write from the fields, for the log to read.
      m_w->tbMyLoc.setText(CoordsToLocator6(fix.position.lon, fix.position.lat));
    };
    m_poll = std::make_unique<GpsPoll>(view, hooks, m_clock);
  }

  void cleanup() {
    m_feeder.reset();
    m_poll.reset();
    m_w.reset();
    m_pty.reset();
    test::ClearPortDevices();
  }

  void goodData_data() {
    QTest::addColumn<int>("i");
    for (int i = 0; i < int(std::size(kGoodData)); ++i) QTest::newRow(kGoodData[i].name) << i;
  }

  void goodData() {
    QFETCH(int, i);
    const GoodData& c = kGoodData[i];
    m_settings.gradDezimal = c.gradDezimal;
    m_w->tbFremdLoc.setText(c.fremdLoc);
    feed(c.stream);
    MsgBoxRecorder boxes;
    poll();

    const QStringList fields{m_w->tbMyLg.text(), m_w->tbMyBr.text(), m_w->tbFremdLoc.text(),
                             m_w->tbFremdLg.text(), m_w->tbFremdBr.text()};
    QCOMPARE(fields.join(u'|'), QString::fromUtf8(c.fields));
    QCOMPARE(m_w->lbInfo.text(), QString::fromUtf8(c.info));
    QCOMPARE(m_w->panel2.text(), QString::fromUtf8(c.panel2));
    QCOMPARE(m_w->lbKurs.text(), QString::fromUtf8(c.kurs));
    QCOMPARE(m_w->computes, c.computes);
    QCOMPARE(m_w->unlocks, 1);
    QCOMPARE(boxes.count(), 0);
    QVERIFY(!m_w->comm.portOpen());
    if (c.computes > 0) QVERIFY(m_w->pollingSeenInCompute);
    QCOMPARE(m_clock.sets().size(), 0);  // GpsZeit is off
    QCOMPARE(m_w->heights.join(u';'), QString::fromUtf8(c.heights));
  }

  // Three tries without data, six once data has come, counted afresh from the data; the
  // last one switches reception off.
  void failedTries_data() {
    QTest::addColumn<bool>("dataFirst");
    QTest::addColumn<int>("tries");
    QTest::addColumn<QString>("myBr");  // the field stays as it was
    QTest::newRow("from the start") << false << 3 << QStringLiteral("typed");
    QTest::newRow("after data") << true << 6 << QStringLiteral(" 48° 07' 2,28\"");
  }

  void failedTries() {
    QFETCH(bool, dataFirst);
    QFETCH(int, tries);
    QFETCH(QString, myBr);
    MsgBoxRecorder boxes;
    m_w->tbMyBr.setText(QStringLiteral("typed"));
    if (dataFirst) {
      // A failure before the data: the data starts the count afresh.
      poll();
      QCOMPARE(m_w->lbInfo.text(), QStringLiteral("1. Versuch/3 : Zurzeit kein GPS-Empfang"));
      feed(kGga + kGsa + kGsv + kGsv);
      poll();
      QVERIFY(m_poll->dataSeen());
      m_feeder.reset();
    }
    for (int tryNo = 1; tryNo < tries; ++tryNo) {
      // Two hourglasses stacked by locks in a row: the poll removes both.
      QApplication::setOverrideCursor(Qt::WaitCursor);
      QApplication::setOverrideCursor(Qt::WaitCursor);
      poll();
      QVERIFY(!QApplication::overrideCursor());
      QCOMPARE(m_w->lbInfo.text(),
               QStringLiteral("%1. Versuch/%2 : Zurzeit kein GPS-Empfang").arg(tryNo).arg(tries));
      QCOMPARE(boxes.count(), 0);
      QVERIFY(m_w->timer.isActive());
    }
    poll();
    QCOMPARE(m_w->lbInfo.text(), QString());
    QCOMPARE(m_w->receptionOffs, 1);
    QVERIFY(!m_w->timer.isActive());
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().prompt, QStringLiteral("GPS-Datenübertragungsfehler:\nZurzeit kein "
                                                 "GPS-Empfang\nGPS-Empfang wurde deaktiviert !"));
    QCOMPARE(boxes.last().style, 48);
    QCOMPARE(boxes.last().title, QStringLiteral(" Fehler"));
    QVERIFY(!m_poll->dataSeen());
    // A failed poll leaves the fields and the course line alone.
    QCOMPARE(m_w->tbMyBr.text(), myBr);
    QCOMPARE(m_w->lbKurs.text(), QStringLiteral("old course"));

    // Switched on again with the count not reset: the first failure is one too many and
    // ends reception at once.
    m_settings.receptionOn = true;
    m_w->timer.start();
    poll();
    QCOMPARE(m_poll->GpsTries(), std::int16_t(tries + 1));
    QCOMPARE(boxes.count(), 2);
    QCOMPARE(m_w->receptionOffs, 2);
    QVERIFY(!m_w->timer.isActive());
  }

  // The system may refuse the new time: lbInfo says so, once per run; the panel is written all
  // the same.
  void clockSetOnlyThroughTheClockGiven() {
    const QString refused = QStringLiteral(
        "Uhr nicht nach GPS gestellt: keine Berechtigung zum Stellen der Systemuhr (Hilfe: "
        "Uhrzeit mit gpsd und chrony)");
    const struct {
      bool refuse;
      QString info;
    } cases[] = {
        {false, QString::fromUtf8(kHeight)}, {true, refused}, {true, QString::fromUtf8(kHeight)}};
    for (const auto& c : cases) {
      m_clock.set(QDateTime(QDate(2026, 11, 18), QTime(14, 22, 10)));
      m_clock.refuse(c.refuse);
      m_settings.gpsZeit = true;
      feed(kGga + kGsa + kGsv + kGsv);
      MsgBoxRecorder boxes;
      poll();
      QCOMPARE(m_clock.sets().last(), QTime(14, 35, 19));
      QCOMPARE(m_clock.time(), c.refuse ? QTime(14, 22, 10) : QTime(14, 35, 19));
      QCOMPARE(m_w->panel2.text(), QStringLiteral("12:35:19"));
      QCOMPARE(m_w->lbInfo.text(), c.info);
      QCOMPARE(boxes.count(), 0);
      m_feeder.reset();
    }
  }

  void impossibleValuesAreNotTaken_data() {
    QTest::addColumn<int>("i");
    for (int i = 0; i < int(std::size(kImpossible)); ++i) QTest::newRow(kImpossible[i].name) << i;
  }

  void impossibleValuesAreNotTaken() {
    QFETCH(int, i);
    const Impossible& c = kImpossible[i];
    QTemporaryDir folder;
    const InFolder in(folder.path());
    QVERIFY(in.entered);
    GpsLog log([] { return true; },
               GpsLogView{&m_w->panel2, &m_w->tbMyLoc, &m_w->lbInfo, &m_w->timer}, m_clock);
    MsgBoxRecorder boxes;
    feed(kGga + kGsa + kRmc + kGsv);
    poll();
    log.WriteGpsLog();
    QCOMPARE(m_w->panel2.text(), QStringLiteral("12:35:19"));
    const QStringList fields{m_w->tbMyLg.text(), m_w->tbMyBr.text(), m_w->tbMyLoc.text()};
    m_feeder.reset();

    m_clock.set(QDateTime(QDate(2026, 11, 18), QTime(14, 22, 10)));
    m_clock.refuse(false);
    const qsizetype setsBefore = m_clock.sets().size();
    m_settings.gpsZeit = true;
    feed(c.sentence + kGsa + kGsv + kGsv);  // more than the exchange's least chunk
    poll();
    log.WriteGpsLog();

    QCOMPARE(m_w->lbInfo.text(), QString::fromUtf8(c.info));
    QCOMPARE(m_w->panel2.text(), QString::fromUtf8(c.panel2));
    QCOMPARE(m_w->lbKurs.text(), QString::fromUtf8(c.kurs));
    QCOMPARE(m_w->fixes, c.fixes);
    if (c.fixes == 1) {
      QCOMPARE(QStringList({m_w->tbMyLg.text(), m_w->tbMyBr.text(), m_w->tbMyLoc.text()}), fields);
    }
    QCOMPARE(m_clock.sets().size() - setsBefore, c.clockSets);
    QCOMPARE(m_w->heights.size(), c.heights);
    QFile file(GpsLog::kFileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QStringList lines =
        QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), c.logLines);
    QVERIFY2(lines.last().contains(QString::fromUtf8(c.panel2) + u' '), qPrintable(lines.last()));
    QCOMPARE(boxes.count(), 0);
  }

  void cancelEndsThePollQuietly() {
    bool thenCalled = false;
    m_poll->poll(1, QStringLiteral("4800,N,8,1"), [&] { thenCalled = true; });
    QVERIFY(m_poll->isPolling());
    QVERIFY(m_w->comm.portOpen());
    m_poll->cancel();
    QVERIFY(!m_poll->isPolling());
    QVERIFY(!m_w->comm.portOpen());
    QCOMPARE(m_w->unlocks, 1);
    QCOMPARE(m_poll->GpsTries(), std::int16_t(0));
    QTest::qWait(50);
    QVERIFY(!thenCalled);
    QCOMPARE(m_w->lbInfo.text(), QString());
  }

 private:
  // Starts a poll and lets the event loop run until it has ended.
  void poll() {
    m_poll->poll(1, QStringLiteral("4000000,N,8,1"));
    QTRY_VERIFY_WITH_TIMEOUT(!m_poll->isPolling(), 5000);
  }
  void feed(const QByteArray& bytes) {
    m_feeder =
        std::make_unique<test::PtyFeeder>(*m_pty, std::vector<test::Piece>{{kOpenMs, bytes}});
  }

  // The log goes into the current folder: a test works in its own, and a failed check does
  // not leave it there.
  struct InFolder {
    explicit InFolder(const QString& path) : entered(QDir::setCurrent(path)) {}
    ~InFolder() { QDir::setCurrent(before); }
    QString before = QDir::currentPath();
    bool entered;
  };

  // The controls and counters of one test, new for each.
  struct Window {
    QLabel lbInfo, lbKurs, panel2;
    QLineEdit tbMyLoc, tbMyLg, tbMyBr, tbFremdLoc, tbFremdLg, tbFremdBr;
    QTimer timer;
    CommControl comm;
    int receptionOffs = 0;
    int computes = 0;
    int unlocks = 0;
    int fixes = 0;
    bool pollingSeenInCompute = false;
    QStringList heights;
  };

  QTemporaryDir m_config;
  std::unique_ptr<test::Pty> m_pty;
  std::unique_ptr<test::PtyFeeder> m_feeder;
  GpsPollSettings m_settings;
  test::FakeClock m_clock;
  std::unique_ptr<Window> m_w;
  std::unique_ptr<GpsPoll> m_poll;
};

QTEST_MAIN(TestGpsPoll)
#include "tst_GpsPoll.moc"
