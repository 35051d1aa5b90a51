// The receiver on a pseudo-terminal, read by the real main window: the locator it shows and
// logs is the square the station is in, and a sentence with impossible values changes neither
// the GPS time nor the log.

#include "app/frmMain.h"

#include "gps/GpsLog.h"
#include "gps/PtyFeeder.h"
#include "platform/MsgBoxRecorder.h"
#include "platform/Settings.h"
#include "support/ProgramFixture.h"
#include "support/Pty.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <memory>
#include <optional>

using namespace marvento;

namespace {

const QByteArray kGsa = "$GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*39\r\n";
const QByteArray kGsv = "$GPGSV,2,1,08,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45*75\r\n";
// 52.533° N in JO62QM, then 52.545° N 13.375° E, 370 m north of the row edge between JO62QM
// and JO62QN.
const QByteArray kSouthOfTheEdge =
    "$GPGGA,123510.00,5232.000,N,01322.500,E,1,08,0.9,45.4,M,46.9,M,,*56\r\n";
const QByteArray kNorthOfTheEdge =
    "$GPGGA,123519.00,5232.700,N,01322.500,E,1,08,0.9,45.4,M,46.9,M,,*58\r\n";
// A square further east, at the time 25:61:61.
const QByteArray kImpossibleTime =
    "$GPGGA,256161.00,5232.700,N,01327.500,E,1,08,0.9,45.4,M,46.9,M,,*57\r\n";
const QByteArray kLatitude95 =
    "$GPGGA,123600.00,9500.000,N,01327.500,E,1,08,0.9,45.4,M,46.9,M,,*5B\r\n";

}  // namespace

class tst_ReceiverInWindow : public QObject {
  Q_OBJECT

  std::optional<test::IsolatedUser> m_user;
  std::optional<test::Program> m_program;
  std::unique_ptr<test::Pty> m_pty;
  std::unique_ptr<test::PtyFeeder> m_feeder;
  QTemporaryDir m_folder;
  QString m_before;

  // One poll of the window on what the receiver sends now.
  void pollOn(frmMain* w, const QByteArray& sentence) {
    m_feeder.reset();
    // More than the exchange's least chunk, so that the sentence is taken at once.
    m_feeder = std::make_unique<test::PtyFeeder>(
        *m_pty, std::vector<test::Piece>{{60, sentence + kGsa + kGsv + kGsv}});
    w->Timer1_Timer();
    QTRY_VERIFY_WITH_TIMEOUT(!w->isPolling(), 5000);
  }

  static QStringList logLines() {
    QFile file(GpsLog::kFileName);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
  }

 private slots:
  void initTestCase() {
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    m_before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_folder.path()));  // where the GPS log goes
  }
  void cleanupTestCase() { QDir::setCurrent(m_before); }

  void init() {
    m_user.emplace();
    m_pty = std::make_unique<test::Pty>();
    QVERIFY(m_pty->ok());
    test::SetNoPortDevices();
    test::SetPortDevice(1, m_pty->path());
    SaveSetting(SettingKey::Com, QStringLiteral("Com1"));
    SaveSetting(SettingKey::BitSek, QStringLiteral("115200"));
    SaveSetting(SettingKey::Gps, QStringLiteral("GPS an"));
    SaveSetting(SettingKey::Protokoll, QStringLiteral("True"));
    // The real clock is never set from a test.
    SaveSetting(SettingKey::GpsZeit, QStringLiteral("False"));
    QFile::remove(GpsLog::kFileName);
  }
  void cleanup() {
    m_feeder.reset();
    m_program.reset();
    m_pty.reset();
    m_user.reset();
  }

  void trueSquareShownAndLoggedImpossibleValuesNot() {
    MsgBoxRecorder boxes;
    m_program.emplace();
    frmMain* w = m_program->window();
    w->Timer1->stop();  // the polls below are the test's own
    // A poll the start may have begun on the silent receiver ends first.
    QTRY_VERIFY_WITH_TIMEOUT(!w->isPolling(), 5000);

    pollOn(w, kSouthOfTheEdge);
    QCOMPARE(w->tbMyLoc->text(), QStringLiteral("JO62QM"));
    // Entering the true square is a crossing, and every crossing is logged.
    pollOn(w, kNorthOfTheEdge);
    QCOMPARE(w->tbMyLoc->text(), QStringLiteral("JO62QN"));
    QCOMPARE(w->Panel2->text(), QStringLiteral("12:35:19"));
    QStringList lines = logLines();
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines.first().contains(QStringLiteral("12:35:19")) &&
                 lines.first().endsWith(QStringLiteral("JO62QN")),
             qPrintable(lines.first()));

    // A good position with an impossible time: the square moves, the time and the log do not.
    pollOn(w, kImpossibleTime);
    QCOMPARE(w->tbMyLoc->text(), QStringLiteral("JO62RN"));
    QCOMPARE(w->Panel2->text(), QStringLiteral("12:35:19"));
    QCOMPARE(logLines(), lines);

    // An impossible position brings nothing of its sentence.
    pollOn(w, kLatitude95);
    QCOMPARE(w->lbInfo->text(),
             QStringLiteral("Schlechter Empfang oder zu geringe Anzahl an Satelliten !"));
    QCOMPARE(w->tbMyLoc->text(), QStringLiteral("JO62RN"));
    QCOMPARE(w->Panel2->text(), QStringLiteral("12:35:19"));
    QCOMPARE(logLines(), lines);
    QCOMPARE(boxes.count(), 0);
  }
};

QTEST_MAIN(tst_ReceiverInWindow)
#include "tst_ReceiverInWindow.moc"
