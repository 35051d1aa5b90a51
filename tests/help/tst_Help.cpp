#include <QApplication>
#include <QLocale>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include <functional>

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

  void showHelpFailures() {
    const QString notFound =
        QStringLiteral("Die Datei \n%1\nist nicht vorhanden!\nBitte selbst nach der Datei suchen.");
    const QString noViewer = QStringLiteral(
        "Acrobat Reader o. Ä. nicht gefunden!\nHilfe finden Sie in der Datei \n%1\n");
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
    }
  }

  // The viewer records the arguments it was given; blanks in its path and in the program's
  // folder must survive the Exec line.
  void showHelpStartsViewer() {
    XdgSandbox box;
    const QString folder = QStringLiteral("Eigene Dateien/Mein Marvento");
    const QString viewer = QStringLiteral("Viewer Programme/pdf viewer");
    const QString out = box.at("arguments.txt");
    QVERIFY(box.write(folder + QStringLiteral("/Marvento.pdf"), "%PDF-1.4\n"));
    QVERIFY(box.write(viewer, recordingViewer(out), true));
    QVERIFY(box.associatePdf(QStringLiteral("\"%1\" --page 1 %U").arg(box.at(viewer))));
    MsgBoxRecorder rec;
    ShowHelp(box.at(folder));
    QCOMPARE(rec.count(), 0);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(out), 10000);
    QCOMPARE(readLines(out), QStringList({"--page", "1", box.at(folder + "/Marvento.pdf")}));
  }

  void sysInfoWithoutProgramTells() {
    XdgSandbox box;
    qputenv("PATH", QByteArray());
    frmAbout about;
    MsgBoxRecorder rec;
    about.findChild<QPushButton*>(QStringLiteral("cmdSysInfo"))->click();
    QCOMPARE(rec.count(), 1);
    QCOMPARE(rec.last().prompt,
             QStringLiteral("Systeminformationsprogramm zurzeit nicht verfügbar."));
  }

  // With reception on the timer rests while the box is up and runs afterwards; else it is
  // left as it was.
  void showAboutRestsTimer() {
    const struct {
      bool gpsOn;
      bool before, during, after;
    } cases[] = {
        {true, true, false, true},
        {true, false, false, true},
        {false, true, true, true},
        {false, false, false, false},
    };
    for (const auto& c : cases) {
      QWidget owner;
      QTimer timer1;
      timer1.setInterval(60000);
      if (c.before) timer1.start();
      QString shown;
      bool during = !c.during;
      whenModalShown([&](QWidget* dialog) {
        shown = dialog->objectName();
        during = timer1.isActive();
      });
      ShowAbout(&owner, &timer1, c.gpsOn);
      QCOMPARE(shown, QStringLiteral("frmAbout"));
      QCOMPARE(during, c.during);
      QCOMPARE(timer1.isActive(), c.after);
    }
  }
};

QTEST_MAIN(tst_Help)
#include "tst_Help.moc"
