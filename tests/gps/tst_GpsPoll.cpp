// The whole poll on real widgets, with the receiver on a pseudo-terminal.

#include "FakeClock.h"
#include "PtyFeeder.h"
#include "gps/GpsPoll.h"
#include "platform/CommControl.h"
#include "platform/MsgBoxRecorder.h"
#include "support/Pty.h"

#include <QApplication>
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

}  // namespace

class TestGpsPoll : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase();
  void init();
  void cleanup();
  void goodData_data();
  void goodData();
  void threeFailedTriesFromStart();
  void sixFailedTriesAfterData();
  void clockSetOnlyThroughTheClockGiven();
  void cancelEndsThePollQuietly();

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

  QTemporaryDir m_config;
  std::unique_ptr<test::Pty> m_pty;
  std::unique_ptr<test::PtyFeeder> m_feeder;
  QLabel m_lbInfo, m_lbKurs, m_panel2;
  QLineEdit m_tbMyLoc, m_tbMyLg, m_tbMyBr, m_tbFremdLoc, m_tbFremdLg, m_tbFremdBr;
  QTimer m_timer;
  CommControl m_comm;
  GpsPollSettings m_settings;
  int m_receptionOffs = 0;
  test::FakeClock m_clock;
  int m_computes = 0;
  int m_unlocks = 0;
  bool m_pollingSeenInCompute = false;
  QStringList m_heights;
  std::unique_ptr<GpsPoll> m_poll;
};

void TestGpsPoll::initTestCase() {
  qputenv("XDG_CONFIG_HOME", m_config.path().toLocal8Bit());
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
}

void TestGpsPoll::init() {
  test::SetNoPortDevices();
  m_pty = std::make_unique<test::Pty>();
  QVERIFY(m_pty->ok());
  test::SetPortDevice(1, m_pty->path());
  m_settings = GpsPollSettings{};
  m_settings.comPort = QStringLiteral("Com1");
  m_settings.receptionOn = true;
  m_receptionOffs = 0;
  for (QLineEdit* e :
       {&m_tbMyLoc, &m_tbMyLg, &m_tbMyBr, &m_tbFremdLoc, &m_tbFremdLg, &m_tbFremdBr}) {
    e->clear();
  }
  m_lbInfo.clear();
  m_lbKurs.setText(QStringLiteral("old course"));
  m_panel2.clear();
  m_timer.setInterval(30000);
  m_timer.start();
  m_computes = 0;
  m_unlocks = 0;
  m_heights.clear();
  m_clock.set(QDateTime(QDate(2026, 11, 18), QTime(14, 22, 10)));
  GpsPollView view{&m_lbInfo,    &m_lbKurs,    &m_tbMyLoc, &m_tbMyLg, &m_tbMyBr, &m_tbFremdLoc,
                   &m_tbFremdLg, &m_tbFremdBr, &m_panel2, &m_timer,    &m_comm};
  GpsPollHooks hooks;
  hooks.Settings = [this] { return m_settings; };
  hooks.ReceptionOff = [this] {
    ++m_receptionOffs;
    m_settings.receptionOn = false;
  };
  hooks.Compute = [this] {
    ++m_computes;
    m_pollingSeenInCompute = m_poll->isPolling();
  };
  hooks.HeightSample = [this](const QString& alt, const QString& unit, const QString& sats) {
    m_heights << alt + u'|' + unit + u'|' + sats;
  };
  hooks.UnlockEntry = [this] { ++m_unlocks; };
  m_poll = std::make_unique<GpsPoll>(view, hooks, m_clock);
}

void TestGpsPoll::cleanup() {
  m_feeder.reset();
  m_poll.reset();
  m_pty.reset();
  test::ClearPortDevices();
}

const char* const kHeight = "GPS - Antennenhöhe: 545,4 m ü. NN (8)";
const char* const kCourse = "GPS - Geschwindigkeit: 22,4 Kn  Kurs: 84,4 ° (Stand: 12:35:19)";
const struct GoodData {
  const char* name;
  QByteArray stream;
  bool gradDezimal;
  const char* fremdLoc;
  const char* fields;  // MyLg|MyBr|FremdLoc|FremdLg|FremdBr
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
    {"GGA without position: time, no fix written", kGgaBad + kGsa + kGsv + kGsv, true, "", "||||",
     "Schlechter Empfang oder zu geringe Anzahl an Satteliten !", "12:35:20", "old course", 0,
     "12.0|M|4"},
};

void TestGpsPoll::goodData_data() {
  QTest::addColumn<int>("i");
  for (int i = 0; i < int(std::size(kGoodData)); ++i) QTest::newRow(kGoodData[i].name) << i;
}

void TestGpsPoll::goodData() {
  QFETCH(int, i);
  const GoodData& c = kGoodData[i];
  m_settings.gradDezimal = c.gradDezimal;
  m_tbFremdLoc.setText(c.fremdLoc);
  feed(c.stream);
  MsgBoxRecorder boxes;
  poll();

  const QStringList fields = QString::fromUtf8(c.fields).split(u'|');
  QCOMPARE(m_tbMyLg.text(), fields[0]);
  QCOMPARE(m_tbMyBr.text(), fields[1]);
  QCOMPARE(m_tbFremdLoc.text(), fields[2].isEmpty() ? QString(c.fremdLoc) : fields[2]);
  QCOMPARE(m_tbFremdLg.text(), fields[3]);
  QCOMPARE(m_tbFremdBr.text(), fields[4]);
  QCOMPARE(m_lbInfo.text(), QString::fromUtf8(c.info));
  QCOMPARE(m_panel2.text(), QString::fromUtf8(c.panel2));
  QCOMPARE(m_lbKurs.text(), QString::fromUtf8(c.kurs));
  QCOMPARE(m_computes, c.computes);
  QCOMPARE(m_unlocks, 1);
  QCOMPARE(boxes.count(), 0);
  QCOMPARE(m_poll->GpsTries(), std::int16_t(0));
  QVERIFY(m_poll->dataSeen());
  QVERIFY(!m_comm.portOpen());
  QVERIFY(!m_poll->isPolling());
  if (c.computes > 0) QVERIFY(m_pollingSeenInCompute);
  QCOMPARE(m_clock.sets().size(), 0);  // GpsZeit is off
  QCOMPARE(m_heights.join(u';'), QString::fromUtf8(c.heights));
}

void TestGpsPoll::threeFailedTriesFromStart() {
  MsgBoxRecorder boxes;
  m_tbMyLg.setText(QStringLiteral("typed"));
  for (int tryNo = 1; tryNo <= 2; ++tryNo) {
    // Two hourglasses stacked by locks in a row: the poll removes both.
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    poll();
    QVERIFY(!QApplication::overrideCursor());
    QCOMPARE(m_lbInfo.text(),
             QStringLiteral("%1. Versuch/3 : Zur Zeit kein GPS-Empfang").arg(tryNo));
    QCOMPARE(boxes.count(), 0);
    QVERIFY(m_timer.isActive());
  }
  poll();
  QCOMPARE(m_lbInfo.text(), QString());
  QCOMPARE(m_receptionOffs, 1);
  QVERIFY(!m_timer.isActive());
  QCOMPARE(boxes.count(), 1);
  QCOMPARE(boxes.last().prompt, QStringLiteral("GPS-Datenübertragungsfehler:\nZur Zeit kein "
                                               "GPS-Empfang\nGPS-Empfang wurde deaktiviert !"));
  QCOMPARE(boxes.last().style, 48);
  QCOMPARE(boxes.last().title, QStringLiteral(" Fehler"));
  QVERIFY(!m_poll->dataSeen());
  QVERIFY(!m_comm.portOpen());
  QCOMPARE(m_unlocks, 3);
  // A failed poll leaves the fields and the course line alone.
  QCOMPARE(m_tbMyLg.text(), QStringLiteral("typed"));
  QCOMPARE(m_lbKurs.text(), QStringLiteral("old course"));

  // Switched on again with the count still at 3: the first failure is the 4th of 3 and
  // ends reception at once.
  m_settings.receptionOn = true;
  m_timer.start();
  poll();
  QCOMPARE(m_poll->GpsTries(), std::int16_t(4));
  QCOMPARE(boxes.count(), 2);
  QCOMPARE(m_receptionOffs, 2);
  QVERIFY(!m_timer.isActive());
}

void TestGpsPoll::sixFailedTriesAfterData() {
  MsgBoxRecorder boxes;
  feed(kGga + kGsa + kGsv + kGsv);
  poll();
  QVERIFY(m_poll->dataSeen());
  m_feeder.reset();
  for (int tryNo = 1; tryNo <= 5; ++tryNo) {
    poll();
    QCOMPARE(m_lbInfo.text(),
             QStringLiteral("%1. Versuch/6 : Zur Zeit kein GPS-Empfang").arg(tryNo));
  }
  QCOMPARE(boxes.count(), 0);
  poll();
  QCOMPARE(boxes.count(), 1);
  QCOMPARE(m_receptionOffs, 1);
  QVERIFY(!m_poll->dataSeen());
  // The last fix stays in the fields.
  QCOMPARE(m_tbMyBr.text(), QStringLiteral(" 48° 07' 2,28\""));
}

// The system may refuse the new time: lbInfo says so, once per run; the panel is written all
// the same.
void TestGpsPoll::clockSetOnlyThroughTheClockGiven() {
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
    QCOMPARE(m_panel2.text(), QStringLiteral("12:35:19"));
    QCOMPARE(m_lbInfo.text(), c.info);
    QCOMPARE(boxes.count(), 0);
    m_feeder.reset();
  }
}

void TestGpsPoll::cancelEndsThePollQuietly() {
  bool thenCalled = false;
  m_poll->poll(1, QStringLiteral("4800,N,8,1"), [&] { thenCalled = true; });
  QVERIFY(m_poll->isPolling());
  QVERIFY(m_comm.portOpen());
  m_poll->cancel();
  QVERIFY(!m_poll->isPolling());
  QVERIFY(!m_comm.portOpen());
  QCOMPARE(m_unlocks, 1);
  QCOMPARE(m_poll->GpsTries(), std::int16_t(0));
  QTest::qWait(50);
  QVERIFY(!thenCalled);
  QCOMPARE(m_lbInfo.text(), QString());
}

QTEST_MAIN(TestGpsPoll)
#include "tst_GpsPoll.moc"
