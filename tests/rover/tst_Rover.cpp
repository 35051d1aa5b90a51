// On the road with the whole window: a drive through a pseudo-terminal along a square edge
// with GPS noise and a loss of reception, and the track read back by gpsbabel.

#include "app/frmMain.h"
#include "options/frmOptions.h"

#include "../gps/PtyFeeder.h"
#include "platform/MsgBoxRecorder.h"
#include "platform/Settings.h"
#include "rover/RoverLink.h"
#include "rover/RoverSettings.h"
#include "support/GpsdDaemon.h"
#include "support/ProgramFixture.h"
#include "support/Pty.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QSpinBox>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTimer>
#include <QtTest>

#include <cmath>
#include <memory>
#include <numbers>

using namespace marvento;

namespace {

// The column edge between JO62QM and JO62RM, and metres per degree of longitude there.
constexpr double kEdgeLon = 13.0 + 5.0 / 12.0;
constexpr double kLat0 = 52.505;
const double kMetresPerDegreeLon =
    kRoverEarthRadiusM * std::numbers::pi / 180.0 * std::cos(52.52 * std::numbers::pi / 180.0);

QString minutes(double degrees, int width) {
  const int whole = int(degrees);
  return QStringLiteral("%1%2")
      .arg(whole, width, 10, QChar('0'))
      .arg((degrees - whole) * 60, 6, 'f', 4, QChar('0'));
}

// A fix heading north at 10 knots, or (lat NaN) a sentence without one.
QByteArray rmc(int second, double lat, double lon) {
  const QString time = QStringLiteral("1200%1.00").arg(second % 60, 2, 10, QChar('0'));
  if (std::isnan(lat)) return test::sentence(("GPRMC," + time + ",V,,,,,,,241126,,,N").toLatin1());
  return test::sentence(QStringLiteral("GPRMC,%1,A,%2,N,%3,E,010.0,000.0,241126,003.1,W")
                            .arg(time, minutes(lat, 2), minutes(lon, 3))
                            .toLatin1());
}

}  // namespace

class tst_Rover : public test::ProgramTest {
  Q_OBJECT

 private slots:
  void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
  void init() { QVERIFY(begin()); }
  void cleanup() { end(); }

  // North along the edge, the fixes wandering across it by up to 20 m: only the two real
  // crossings (100 m into JO62RM, then 70 m back into JO62QM) beep, go to the status bar and
  // become waypoints. Then reception fails for longer than three poll intervals and comes back:
  // the window says so, and the track has two segments, which gpsbabel reads back point for
  // point.
  void driveAlongAnEdgeWithNoiseAndADropout() {
    test::Pty pty;
    QVERIFY(pty.ok());
    test::SetPortDevice(1, pty.path());
    SaveSetting(SettingKey::Gps, QStringLiteral("GPS an"));
    SaveSetting(SettingKey::Com, QStringLiteral("Com1"));
    SaveSetting(SettingKey::GradDezimal, QStringLiteral("True"));
    SaveSetting(SettingKey::GpsInterval, QStringLiteral("10"));
    RoverSettings rover;
    rover.marginM = 25;
    SaveRoverSettings(rover);

    // Metres east of the edge, one fix each, 55 m further north every time.
    const double east[] = {-80, -70, -5, 8,   12, -3,  15, 6, -10, 20, 4,  // jitter on the edge
                           60,  100,                                       // into JO62RM
                           10,  -8,  5,  -12, 18, -20,                     // jitter again
                           -70, -80};                                      // back into JO62QM
    std::unique_ptr<test::PtyFeeder> feeder;
    const auto transmit = [&](const QByteArray& sentence) {
      feeder.reset();
      feeder =
          std::make_unique<test::PtyFeeder>(pty, std::vector<test::Piece>(300, {30, sentence}));
    };
    const auto point = [&](int i) {
      return GeoPoint{kLat0 + i * 0.0005, kEdgeLon + east[i] / kMetresPerDegreeLon};
    };
    transmit(rmc(0, point(0).lat, point(0).lon));
    MsgBoxRecorder boxes;
    m_program.emplace();
    frmMain* w = m_program->window();
    RoverLink& link = w->rover();
    const auto lastFix = [&]() -> std::optional<GeoPoint> {
      if (link.track().segments().isEmpty()) return std::nullopt;
      return link.track().segments().last().last().position;
    };
    const auto driveTo = [&](const GeoPoint& to, int second) {
      transmit(rmc(second, to.lat, to.lon));
      const auto reached = [&] {
        if (!w->isPolling()) w->Timer1_Timer();
        const auto at = lastFix();
        return at && std::fabs(at->lat - to.lat) < 2e-6 && std::fabs(at->lon - to.lon) < 2e-6;
      };
      return QTest::qWaitFor(reached, 5000) && QTest::qWaitFor([&] { return !w->isPolling(); });
    };
    for (int i = 0; i < int(std::size(east)); ++i) {
      QVERIFY2(driveTo(point(i), i), qPrintable(QStringLiteral("fix %1 not taken").arg(i)));
      if (i == 5)
        QVERIFY2(w->lbFeldrand->text().startsWith(u"Nächstes Feld"),
                 qPrintable(w->lbFeldrand->text()));
    }
    QCOMPARE(boxes.beeps(), 2);
    QCOMPARE(w->sbStatusBar->currentMessage(), QStringLiteral("Neues Feld: JO62QM"));
    QStringList marked;
    for (const TrackWaypoint& p : link.track().waypoints()) marked << p.name;
    QCOMPARE(marked, QStringList({"JO62RM", "JO62QM"}));
    // The locator field follows the true square all the time.
    QCOMPARE(w->tbMyLoc->text().left(6), QStringLiteral("JO62QM"));

    // No fix for more than three intervals (here one second each, to keep the test short).
    w->Timer1->setInterval(1000);
    transmit(rmc(30, NAN, NAN));
    QTRY_VERIFY_WITH_TIMEOUT(w->lbFeldrand->text().startsWith(u"Kein GPS-Empfang"), 8000);
    QVERIFY2(w->Label4->text().endsWith(u" alt)"), qPrintable(w->Label4->text()));
    QVERIFY(GpsOn(m_program->state()));
    const GeoPoint last = point(int(std::size(east)) - 1);
    QVERIFY(driveTo({last.lat + 0.0005, last.lon}, 40));
    QVERIFY2(w->lbFeldrand->text().startsWith(u"Nächstes Feld"), qPrintable(w->lbFeldrand->text()));
    QVERIFY(!w->Label4->text().endsWith(u" alt)"));
    feeder.reset();
    QCOMPARE(link.track().segments().size(), 2);
    QCOMPARE(boxes.count(), 0);

    // Read back by a real GPX client.
    const QString gpsbabel = QStandardPaths::findExecutable(QStringLiteral("gpsbabel"));
    QVERIFY2(!gpsbabel.isEmpty(), "gpsbabel is missing: sh tools/deps.sh installs it");
    const QString file = QDir(m_user->path()).filePath(QStringLiteral("track.gpx"));
    QCOMPARE(link.saveTrackTo(file), QString());
    const auto run = [&](const QStringList& args) {
      QProcess p;
      p.start(gpsbabel, args);
      if (!p.waitForFinished(20000) || p.exitCode() != 0) return QString();
      return QString::fromUtf8(p.readAllStandardOutput());
    };
    const QString csv = run({"-i", "gpx", "-f", file, "-o", "unicsv", "-F", "-"});
    const QString tracks = run({"-t", "-i", "gpx", "-f", file, "-o", "unicsv", "-F", "-"});
    QVERIFY2(!csv.isEmpty() && !tracks.isEmpty(), "gpsbabel did not read the file");
    // Waypoints: "No,Latitude,Longitude,Name,..." with the locator as the name.
    QStringList waypointRows = csv.split(u'\n', Qt::SkipEmptyParts).mid(1);
    QCOMPARE(waypointRows.size(), 2);
    for (int i = 0; i < 2; ++i) {
      const QStringList cells = waypointRows[i].split(u',');
      QVERIFY(cells.size() >= 4);
      const TrackWaypoint& wp = link.track().waypoints()[i];
      QCOMPARE(cells[3].trimmed().remove(u'"'), wp.name);
      QVERIFY(std::fabs(cells[1].toDouble() - wp.position.lat) < 1e-6);
      QVERIFY(std::fabs(cells[2].toDouble() - wp.position.lon) < 1e-6);
    }
    QStringList pointRows = tracks.split(u'\n', Qt::SkipEmptyParts);
    const QStringList header = pointRows.takeFirst().split(u',');
    const int timeColumn = header.indexOf(QStringLiteral("Time"));
    int index = 0;
    for (const auto& segment : link.track().segments()) {
      for (const TrackPoint& p : segment) {
        QVERIFY(index < pointRows.size());
        const QStringList cells = pointRows[index++].split(u',');
        QVERIFY(std::fabs(cells[1].toDouble() - p.position.lat) < 1e-6);
        QVERIFY(std::fabs(cells[2].toDouble() - p.position.lon) < 1e-6);
        if (timeColumn >= 0) QCOMPARE(cells[timeColumn], p.utc.time().toString(u"HH:mm:ss"));
      }
    }
    QCOMPARE(index, pointRows.size());
    // And the segments survive a round trip through gpsbabel's own GPX writer.
    const QString again = run({"-t", "-i", "gpx", "-f", file, "-o", "gpx", "-F", "-"});
    QCOMPARE(again.count(QStringLiteral("<trkseg>")), 2);
  }

  // What the store holds comes back as the dialog's values; a hand-edited value out of range
  // falls back to the default or is held at the limit.
  void settingsFromTheStore_data() {
    QTest::addColumn<QStringList>("stored");  // Ansagen, Buchstabieren, FeldStufe, Feldrand
    QTest::addColumn<bool>("announce");
    QTest::addColumn<bool>("letters");
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("margin");
    QTest::newRow("nothing stored") << QStringList() << false << false << 6 << 25;
    QTest::newRow("all set") << QStringList({"True", "Buchstaben", "4", "40"}) << true << true << 4
                             << 40;
    QTest::newRow("nonsense") << QStringList({"ja", "Morse", "5", "-3"}) << false << false << 6
                              << 0;
    QTest::newRow("too far") << QStringList({"true", "ICAO", "6", "9000"}) << true << false << 6
                             << kMaxMarginM;
  }
  void settingsFromTheStore() {
    QFETCH(QStringList, stored);
    QFETCH(bool, announce);
    QFETCH(bool, letters);
    QFETCH(int, level);
    QFETCH(int, margin);
    const SettingKey keys[] = {SettingKey::Ansagen, SettingKey::Buchstabieren,
                               SettingKey::FeldStufe, SettingKey::Feldrand};
    for (int i = 0; i < stored.size(); ++i) SaveSetting(keys[i], stored[i]);
    const RoverSettings loaded = LoadRoverSettings();
    QCOMPARE(loaded.announce, announce);
    QCOMPARE(loaded.spelling == Spelling::Letters, letters);
    QCOMPARE(int(loaded.level), level);
    QCOMPARE(loaded.marginM, margin);
    SaveRoverSettings(loaded);
    QCOMPARE(LoadRoverSettings(), loaded);
  }

  // The dialog's group "Unterwegs" shows the settings it is given and returns what the user
  // chose with the keyboard (Alt+N toggles the announcements).
  void settingsDialogGroup() {
    Preferences given;
    given.rover = {true, Spelling::Letters, SquareLevel::Four, 40};
    MsgBoxRecorder boxes;
    frmOptions dialog(given, nullptr);
    dialog.show();
    dialog.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    auto* announce = dialog.findChild<QCheckBox*>(QStringLiteral("chkAnsagen"));
    auto* spelling = dialog.findChild<QComboBox*>(QStringLiteral("cbBuchstabieren"));
    auto* level = dialog.findChild<QComboBox*>(QStringLiteral("cbFeldStufe"));
    auto* margin = dialog.findChild<QSpinBox*>(QStringLiteral("sbFeldrand"));
    QVERIFY(announce && spelling && level && margin);
    QVERIFY(announce->isChecked());
    QCOMPARE(spelling->currentText(), QStringLiteral("Buchstaben"));
    QCOMPARE(level->currentText(), QStringLiteral("4 Zeichen (JO62)"));
    QCOMPARE(margin->value(), 40);
    QTest::keyClick(&dialog, Qt::Key_N, Qt::AltModifier);
    QTRY_VERIFY(!announce->isChecked());  // a mnemonic clicks the box a moment later
    QTest::keyClick(&dialog, Qt::Key_I, Qt::AltModifier);  // to the margin
    QVERIFY(margin->hasFocus());
    margin->selectAll();
    QTest::keyClicks(margin, QStringLiteral("10"));
    level->setCurrentIndex(1);
    QTest::keyClick(&dialog, Qt::Key_O, Qt::AltModifier);
    QTRY_COMPARE(dialog.result(), int(QDialog::Accepted));
    const RoverSettings chosen{false, Spelling::Letters, SquareLevel::Six, 10};
    QCOMPARE(dialog.chosen().rover, chosen);
  }

  // A file that cannot be written leaves nothing behind and says why.
  void trackWrittenWholeOrNotAtAll() {
    RoverLink link(RoverView{}, RoverHooks{});
    GpsFix fix;
    fix.position = {52.52, 13.40};
    link.takeFix(fix);
    const QString folder = QDir(m_user->path()).filePath(QStringLiteral("nicht-da"));
    const QString error = link.saveTrackTo(QDir(folder).filePath(QStringLiteral("t.gpx")));
    QVERIFY(!error.isEmpty());
    QVERIFY(!QDir(folder).exists());
    const QString good = QDir(m_user->path()).filePath(QStringLiteral("t.gpx"));
    QCOMPARE(link.saveTrackTo(good), QString());
    QFile written(good);
    QVERIFY(written.open(QIODevice::ReadOnly));
    const QByteArray text = written.readAll();
    QVERIFY(text.contains("<trkpt lat=\"52.5200000\" lon=\"13.4000000\">"));
    QVERIFY(text.trimmed().endsWith("</gpx>"));
  }
};

QTEST_MAIN(tst_Rover)
#include "tst_Rover.moc"
