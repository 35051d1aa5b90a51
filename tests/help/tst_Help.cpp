#include <QApplication>
#include <QLabel>
#include <QLocale>
#include <QPixmap>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include <functional>

#include "app/Module1.h"
#include "help/ShowHelp.h"
#include "help/frmAbout.h"
#include "platform/MsgBoxRecorder.h"
#include "support/XdgSandbox.h"

using namespace marvento;
using marvento::test::XdgSandbox;

namespace {

// A viewer that writes each argument it receives on a line of its own into `out`.
QByteArray recordingViewer(const QString& out) {
  const QByteArray name = QFile::encodeName(out);
  return "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\"; done > '" + name + ".part'\nmv '" +
         name + ".part' '" + name + "'\n";
}

QStringList readLines(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {};
  return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

// Runs `check` on the modal dialog once it is up, then closes it with OK.
void whenModalShown(std::function<void(QWidget*)> check) {
  QTimer::singleShot(0, [check] {
    QWidget* dialog = QApplication::activeModalWidget();
    if (!dialog) {
      whenModalShown(check);
      return;
    }
    check(dialog);
    if (auto* ok = dialog->findChild<QPushButton*>(QStringLiteral("cmdOK"))) ok->click();
  });
}

}  // namespace

class tst_Help : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }

  void showHelpFailures();
  void showHelpStartsViewer();
  void aboutBox();
  void sysInfo_data();
  void sysInfo();
  void showAboutRestsTimer_data();
  void showAboutRestsTimer();
};

void tst_Help::showHelpFailures() {
  const QString notFound =
      QStringLiteral("Die Datei \n%1\nist nicht vorhanden!\nBitte selbst nach der Datei suchen.");
  const QString noViewer =
      QStringLiteral("Acrobat Reader o.ä. nicht gefunden!\nHilfe finden Sie in der Datei \n%1\n");
  const struct {
    bool helpFile;
    const char* exec;  // nullptr: nothing associated
    QString title, prompt;
  } cases[] = {
      {false, nullptr, " Datei nicht gefunden", notFound},
      {true, nullptr, " Hilfe", noViewer},
      {true, "marvento-test-no-such-viewer %U", " Hilfe", noViewer},
  };
  for (const auto& c : cases) {
    XdgSandbox box;
    const QString pdf = box.at(QStringLiteral("Programm/Marvento.pdf"));
    if (c.helpFile) QVERIFY(box.write(QStringLiteral("Programm/Marvento.pdf"), "%PDF-1.4\n"));
    if (c.exec) QVERIFY(box.associatePdf(c.exec));
    MsgBoxRecorder rec;
    ShowHelp(box.at(QStringLiteral("Programm")));
    QCOMPARE(rec.count(), 1);
    QCOMPARE(rec.last().style, int(vbCritical));
    QCOMPARE(rec.last().title, c.title);
    QCOMPARE(rec.last().prompt, c.prompt.arg(pdf));
    QCOMPARE(rec.beeps(), 0);
  }
}

// The viewer records the arguments it was given: one given by a path with blanks, one found
// on PATH by its name. %V in Exec stands for the viewer's path.
void tst_Help::showHelpStartsViewer() {
  const struct {
    const char *appFolder, *viewer, *exec;
    QStringList before, after;  // arguments around the file
  } cases[] = {
      {"Eigene Dateien/Mein Marvento",
       "Viewer Programme/pdf viewer",
       "\"%V\" --page 1 %U",
       {"--page", "1"},
       {}},
      {"Programm",
       "bin/marvento-test-viewer",
       "marvento-test-viewer --open %f --quiet",
       {"--open"},
       {"--quiet"}},
  };
  for (const auto& c : cases) {
    XdgSandbox box;
    const QString pdf = box.at(QString(c.appFolder) + QStringLiteral("/Marvento.pdf"));
    QVERIFY(box.write(QString(c.appFolder) + QStringLiteral("/Marvento.pdf"), "%PDF-1.4\n"));
    const QString out = box.at("arguments.txt");
    QVERIFY(box.write(c.viewer, recordingViewer(out), true));
    QVERIFY(box.associatePdf(QString(c.exec).replace(QStringLiteral("%V"), box.at(c.viewer))));
    MsgBoxRecorder rec;
    ShowHelp(box.at(c.appFolder));
    QCOMPARE(rec.count(), 0);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(out), 10000);
    QCOMPARE(readLines(out), c.before + QStringList{pdf} + c.after);
  }
}

// The program's icon, OK as the default button, and Esc or OK to close.
void tst_Help::aboutBox() {
  QPixmap pixmap(32, 32);
  pixmap.fill(Qt::red);
  QApplication::setWindowIcon(QIcon(pixmap));
  frmAbout about;
  QCOMPARE(about.windowTitle(), QStringLiteral("Info Marvento"));
  auto* ok = about.findChild<QPushButton*>(QStringLiteral("cmdOK"));
  QVERIFY(ok && ok->isDefault());
  auto* icon = about.findChild<QLabel*>(QStringLiteral("picIcon"));
  QVERIFY(icon && !icon->pixmap().isNull());
  QCOMPARE(icon->pixmap().toImage().pixelColor(icon->pixmap().width() / 2, 2), QColor(Qt::red));
  about.show();
  QVERIFY(QTest::qWaitForWindowExposed(&about));
  QTest::keyClick(&about, Qt::Key_Escape);
  QVERIFY(!about.isVisible());
  about.show();
  ok->click();
  QVERIFY(!about.isVisible());
}

void tst_Help::sysInfo_data() {
  QTest::addColumn<QStringList>("present");  // programs put on the otherwise empty PATH
  QTest::addColumn<QString>("started");      // empty: none, the message is expected
  QTest::newRow("empty PATH") << QStringList() << QString();
  QTest::newRow("profiler preferred over monitor")
      << QStringList{"lxtask", "gnome-system-monitor", "hardinfo"} << "hardinfo";
}

void tst_Help::sysInfo() {
  QFETCH(QStringList, present);
  QFETCH(QString, started);
  XdgSandbox box;
  const QString marker = box.at("started.txt");
  for (const QString& name : present) {
    QVERIFY(box.write(
        "bin/" + name,
        "#!/bin/sh\necho " + name.toUtf8() + " > '" + QFile::encodeName(marker) + "'\n", true));
  }
  qputenv("PATH", present.isEmpty() ? QByteArray() : QFile::encodeName(box.at("bin")));

  frmAbout about;
  MsgBoxRecorder rec;
  about.findChild<QPushButton*>(QStringLiteral("cmdSysInfo"))->click();
  if (started.isEmpty()) {
    QCOMPARE(rec.count(), 1);
    QCOMPARE(rec.last().prompt,
             QStringLiteral("Systeminformationsprogramm zur Zeit nicht verfügbar."));
    QCOMPARE(rec.last().style, int(vbOKOnly));
    QCOMPARE(rec.last().title, QString());
  } else {
    QCOMPARE(rec.count(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(readLines(marker), QStringList{started}, 10000);
  }
}

void tst_Help::showAboutRestsTimer_data() {
  QTest::addColumn<QString>("gpsStatus");
  QTest::addColumn<bool>("runningBefore");
  QTest::addColumn<bool>("runningDuring");
  QTest::addColumn<bool>("runningAfter");
  QTest::newRow("reception on") << kGpsAn << true << false << true;
  QTest::newRow("reception on, timer stopped before") << kGpsAn << false << false << true;
  QTest::newRow("reception off, timer left alone") << kGpsAus << true << true << true;
  QTest::newRow("reception off, stopped timer") << kGpsAus << false << false << false;
}

void tst_Help::showAboutRestsTimer() {
  QFETCH(QString, gpsStatus);
  QFETCH(bool, runningBefore);
  QFETCH(bool, runningDuring);
  QFETCH(bool, runningAfter);
  Module1 state;
  state.GpsStatus = gpsStatus;
  QWidget owner;
  QTimer timer1;
  timer1.setInterval(60000);
  if (runningBefore) timer1.start();

  QString shown;
  bool during = !runningDuring;
  whenModalShown([&](QWidget* dialog) {
    shown = dialog->objectName();
    during = timer1.isActive();
  });
  ShowAbout(&owner, &timer1, state);
  QCOMPARE(shown, QStringLiteral("frmAbout"));
  QCOMPARE(during, runningDuring);
  QCOMPARE(timer1.isActive(), runningAfter);
}

QTEST_MAIN(tst_Help)
#include "tst_Help.moc"
