#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <functional>

#include "app/Module1.h"
#include "help/ShowHelp.h"
#include "help/frmAbout.h"
#include "platform/MsgBoxRecorder.h"

using namespace marvento;

namespace {

void writeFile(const QString& path, const QByteArray& content, bool executable = false) {
  QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
  QFile file(path);
  QVERIFY2(file.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(path));
  file.write(content);
  file.close();
  if (executable) {
    file.setPermissions(file.permissions() | QFileDevice::ExeOwner | QFileDevice::ExeGroup |
                        QFileDevice::ExeOther);
  }
}

// Restores an environment variable when it goes out of scope.
class EnvGuard {
 public:
  explicit EnvGuard(const char* name)
      : m_name(name), m_had(qEnvironmentVariableIsSet(name)), m_value(qgetenv(name)) {}
  ~EnvGuard() { m_had ? qputenv(m_name, m_value) : qunsetenv(m_name); }

 private:
  const char* m_name;
  bool m_had;
  QByteArray m_value;
};

// A private set of XDG folders, so that the machine's own associations play no part.
struct Sandbox {
  QTemporaryDir dir;
  EnvGuard configHome{"XDG_CONFIG_HOME"}, configDirs{"XDG_CONFIG_DIRS"}, dataHome{"XDG_DATA_HOME"},
      dataDirs{"XDG_DATA_DIRS"}, desktop{"XDG_CURRENT_DESKTOP"}, path{"PATH"};

  Sandbox() {
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(at("config")));
    qputenv("XDG_CONFIG_DIRS", QFile::encodeName(at("etc-xdg")));
    qputenv("XDG_DATA_HOME", QFile::encodeName(at("data")));
    qputenv("XDG_DATA_DIRS", QFile::encodeName(at("usr-share")));
    qunsetenv("XDG_CURRENT_DESKTOP");
    qputenv("PATH", QFile::encodeName(at("bin")) + ':' + qgetenv("PATH"));
  }
  QString at(const QString& relative) const { return dir.filePath(relative); }

  // Makes `exec` the desktop's PDF viewer.
  void associatePdf(const QString& exec) const {
    writeFile(at("config/mimeapps.list"),
              "[Default Applications]\napplication/pdf=marvento-test-viewer.desktop;\n");
    writeFile(at("data/applications/marvento-test-viewer.desktop"),
              "[Desktop Entry]\nType=Application\nName=Test viewer\nExec=" + exec.toUtf8() +
                  "\nMimeType=application/pdf;\n");
  }
};

// A viewer that writes each argument it receives on a line of its own into `out`.
void writeRecordingViewer(const QString& path, const QString& out) {
  writeFile(path,
            "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\"; done > '" +
                QFile::encodeName(out) + ".part'\nmv '" + QFile::encodeName(out) + ".part' '" +
                QFile::encodeName(out) + "'\n",
            true);
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
  void aboutTexts();
  void aboutForm();
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
    Sandbox box;
    const QString appDir = box.at("Programm");
    const QString pdf = appDir + QStringLiteral("/Marvento.pdf");
    if (c.helpFile) writeFile(pdf, "%PDF-1.4\n");
    if (c.exec) box.associatePdf(c.exec);
    MsgBoxRecorder rec;
    ShowHelp(appDir);
    QCOMPARE(rec.count(), 1);
    QCOMPARE(rec.last().style, int(vbCritical));
    QCOMPARE(rec.last().title, c.title);
    QCOMPARE(rec.last().prompt, c.prompt.arg(pdf));
    QCOMPARE(rec.beeps(), 0);
  }
}

// The viewer records the arguments it was given; %V in Exec stands for its path.
void tst_Help::showHelpStartsViewer() {
  const struct {
    const char *appFolder, *viewerPath, *exec;
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
    Sandbox box;
    const QString appDir = box.at(c.appFolder);
    const QString pdf = appDir + QStringLiteral("/Marvento.pdf");
    writeFile(pdf, "%PDF-1.4\n");
    const QString out = box.at("arguments.txt");
    writeRecordingViewer(box.at(c.viewerPath), out);
    box.associatePdf(QString(c.exec).replace(QStringLiteral("%V"), box.at(c.viewerPath)));
    MsgBoxRecorder rec;
    ShowHelp(appDir);
    QCOMPARE(rec.count(), 0);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(out), 10000);
    QCOMPARE(readLines(out), c.before + QStringList{pdf} + c.after);
  }
}

void tst_Help::aboutTexts() {
  const std::pair<const char*, const char*> texts[] = {
      {"cmdOK", "OK"},
      {"cmdSysInfo", "&Systeminfo..."},
      {"lblDisclaimer",
       "Bei Fehlern in der Beschaltung der Schnittstelle (Anschlusskabel) kann es zeitweise zum "
       "Hängenbleiben des Betriebssystems kommen !"},
      {"lblVersion", "Version 4.4.0"},
      {"lblTitle", "Marvento"},
      {"lblDescription",
       "Copyright © 2026 Marvento-Entwickler. Lizenz: GNU GPL, Version 3 oder später. Ohne jede "
       "Gewährleistung."},
      {"lblBeschreibung",
       "Locator- Programm zur Entfernungs-  und Richtungs-Bestimmung mit oder ohne GPS"},
      {"lblAchtung", "Achtung:"},
  };
  frmAbout about;
  for (const auto& [name, text] : texts) {
    QWidget* control = about.findChild<QWidget*>(name);
    QVERIFY2(control, name);
    const auto* label = qobject_cast<QLabel*>(control);
    const auto* button = qobject_cast<QPushButton*>(control);
    QCOMPARE(label ? label->text() : button->text(), QString::fromUtf8(text));
  }
}

void tst_Help::aboutForm() {
  QPixmap pixmap(32, 32);
  pixmap.fill(Qt::red);
  QApplication::setWindowIcon(QIcon(pixmap));
  frmAbout about;
  QCOMPARE(about.objectName(), QStringLiteral("frmAbout"));
  QCOMPARE(about.windowTitle(), QStringLiteral("Info Marvento"));
  QVERIFY(!(about.windowFlags() & (Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint)));
  auto* ok = about.findChild<QPushButton*>(QStringLiteral("cmdOK"));
  auto* sysInfo = about.findChild<QPushButton*>(QStringLiteral("cmdSysInfo"));
  QVERIFY(ok && sysInfo);
  QVERIFY(ok->isDefault());
  QVERIFY(!sysInfo->isDefault());
  auto* icon = about.findChild<QLabel*>(QStringLiteral("picIcon"));
  QVERIFY(icon);
  QVERIFY(!icon->pixmap().isNull());
  QCOMPARE(icon->pixmap().toImage().pixelColor(icon->pixmap().width() / 2, 2), QColor(Qt::red));
  auto* title = about.findChild<QLabel*>(QStringLiteral("lblTitle"));
  auto* version = about.findChild<QLabel*>(QStringLiteral("lblVersion"));
  QVERIFY(title->font().bold());
  QVERIFY(title->font().pointSizeF() > version->font().pointSizeF());

  // Esc and OK both close the box.
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
  QTemporaryDir dir;
  const QString marker = dir.filePath("started.txt");
  for (const QString& name : present) {
    writeFile(dir.filePath("bin/" + name),
              "#!/bin/sh\necho " + name.toUtf8() + " > '" + QFile::encodeName(marker) + "'\n",
              true);
  }
  EnvGuard path("PATH");
  qputenv("PATH", present.isEmpty() ? QByteArray() : QFile::encodeName(dir.filePath("bin")));

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
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(marker), 10000);
    QTRY_COMPARE_WITH_TIMEOUT(readLines(marker), QStringList{started}, 5000);
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
