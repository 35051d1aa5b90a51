// The settings file through a real start and a real exit of the window: values the program
// cannot use are replaced and named, what is written reads back unchanged, the exit writes
// the file once, and a write that fails is told while the old file stays whole.

#include "app/frmMain.h"

#include "gps/PtyFeeder.h"
#include "platform/MsgBoxRecorder.h"
#include "platform/Settings.h"
#include "support/ProgramFixture.h"
#include "support/Pty.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QScopeGuard>
#include <QtTest>

#include <optional>
#include <vector>

#include <sched.h>
#include <sys/inotify.h>
#include <sys/mount.h>
#include <unistd.h>

using namespace marvento;

class tst_SettingsFile : public test::ProgramTest {
  Q_OBJECT

  bool m_canMount = false;

  // Closes the window as the user does, with OK to the question; the boxes that follow are
  // left in `boxes`.
  void exit(MsgBoxRecorder& boxes) {
    boxes.answer(vbOK);
    m_program->window()->mnuBeenden->trigger();
    QVERIFY(!m_program->window()->isVisible());
    m_program.reset();
  }
  // The store as a user would have edited it.
  void writeStore(const QByteArray& text) {
    QVERIFY(QDir().mkpath(QFileInfo(m_user->configFile()).absolutePath()));
    QFile file(m_user->configFile());
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(text);
  }

 private slots:
  void initTestCase() {
    // Mounts of this test stay in a namespace of its own and vanish with the process.
    m_canMount = ::geteuid() == 0 && ::unshare(CLONE_NEWNS) == 0 &&
                 ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
  }
  void init() {
    QVERIFY(begin());
    test::SetNoPortDevices();
  }
  void cleanup() { end(); }

  void badValuesAreReplaced_data() {
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("used");     // the default named in lbInfo; empty when kept
    QTest::addColumn<QString>("written");  // the key after the exit
    const struct {
      const char *name, *key, *stored, *used, *written;
    } rows[] = {
        {"GPS neither on nor off", "GPS", "vielleicht", "GPS aus", "GPS aus"},
        {"rate beyond every number", "Bit-Sek", "99999999999999999999999", "4800", "4800"},
        {"negative rate", "Bit-Sek", "-9600", "4800", "4800"},
        {"rate in words", "Bit-Sek", "schnell", "4800", "4800"},
        {"empty rate", "Bit-Sek", "", "4800", "4800"},
        {"rate with line settings", "Bit-Sek", "9600,E,7,1", "4800", "4800"},
        {"rate 300, not in the list", "Bit-Sek", "300", "", "300"},
        {"rate 230400, not in the list", "Bit-Sek", "230400", "", "230400"},
        {"port with a sign", "Com", "Com-5", "Com1", "Com1"},
        {"port 30", "Com", "Com30", "Com1", "Com1"},
        {"port of another name", "Com", "Xyz7", "Com1", "Com1"},
        {"port in capitals", "Com", "COM12", "", "COM12"},
        {"gpsd as the source", "Com", "gpsd", "", "gpsd"},
        {"gpsd port negative", "Gpsd", "127.0.0.1:-2947", "localhost:2947", "localhost:2947"},
        {"gpsd port too high", "Gpsd", "gps.local:65536", "localhost:2947", "localhost:2947"},
        {"gpsd elsewhere", "Gpsd", "gps.local:2948", "", "gps.local:2948"},
        {"Boolean in words", "Loc10st", "vielleicht", "False", "False"},
        {"Boolean empty", "Grad_Dezimal", "", "False", "False"},
        {"Boolean in small letters", "Protokoll", "true", "", "True"},
        {"radius position past the list", "Radius", "12", "2", "2"},
        {"radius position typed", "Radius", "-1", "", "-1"},
        {"interval of 33 s", "GPS-Interval", "33", "", "33"},
        {"interval of 5 s", "GPS-Interval", "5", "", "5"},
        {"negative interval", "GPS-Interval", "-5", "30", "30"},
    };
    for (const auto& r : rows) {
      QTest::newRow(r.name) << QString(r.key) << QString(r.stored) << QString(r.used)
                            << QString(r.written);
    }
  }

  // Regression: such values were shown ("Status: vielleicht") and written back at exit, and
  // "Bit-Sek=schnell" came back empty.
  void badValuesAreReplaced() {
    QFETCH(QString, key);
    QFETCH(QString, stored);
    QFETCH(QString, used);
    QFETCH(QString, written);
    writeStore("[Settings]\n" + key.toUtf8() + '=' + stored.toUtf8() + '\n');

    frmMain* w = start();
    const QString notice =
        used.isEmpty() ? QString()
                       : QStringLiteral("Einstellung %1 ungültig, %2 verwendet").arg(key, used);
    QCOMPARE(w->lbInfo->text(), notice);
    if (key == u"GPS") QCOMPARE(w->Panel1->text(), QStringLiteral("Status: GPS aus (Com1)"));
    MsgBoxRecorder boxes;
    exit(boxes);
    QCOMPARE(boxes.count(), 1);  // the question only
    QCOMPARE(m_user->stored(key), std::optional<QString>(written));

    // What was written is taken as it is: no notice, and the same text again.
    w = start();
    QCOMPARE(w->lbInfo->text(), QString());
    exit(boxes);
    QCOMPARE(m_user->stored(key), std::optional<QString>(written));
  }

  // Several replaced values are named together, once.
  void severalReplacedValuesInOneLine() {
    writeStore("[Settings]\nGPS=vielleicht\nBit-Sek=schnell\nCom=Com-5\n");
    frmMain* w = start();
    QCOMPARE(w->lbInfo->text(), QStringLiteral("Einstellungen ungültig, verwendet: GPS = GPS aus, "
                                               "Bit-Sek = 4800, Com = Com1"));
  }

  // With reception on, the first poll clears lbInfo at once; the notice comes back when that
  // poll has brought a fix, and the next poll's report takes its place.
  void noticeOutlastsTheFirstPoll() {
    test::Pty pty;
    QVERIFY(pty.ok());
    writeStore("[Settings]\nGPS=GPS an\nCom=Com1\nBit-Sek=schnell\n[Ports]\nCom1=" +
               QFile::encodeName(pty.path()) + '\n');
    const QByteArray fix =
        "$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*59\r\n"
        "$GNRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*74\r\n";
    std::vector<test::Piece> pieces(200, test::Piece{50, fix + fix + fix});
    test::PtyFeeder feeder(pty, std::move(pieces));
    const QString notice = QStringLiteral("Einstellung Bit-Sek ungültig, 4800 verwendet");
    frmMain* w = start();
    QTRY_VERIFY_WITH_TIMEOUT(!w->isPolling() && !w->tbMyLg->text().isEmpty(), 10000);
    QCOMPARE(w->lbInfo->text(), notice);
    w->Timer1_Timer();
    QTRY_VERIFY_WITH_TIMEOUT(!w->isPolling(), 10000);
    QVERIFY(!w->lbInfo->text().isEmpty());  // the height line of the new fix
    QVERIFY(w->lbInfo->text() != notice);
  }

  // Regression: each key was written on its own, the whole file each time (4.7 s at exit
  // with a large file).
  void exitWritesTheFileOnce() {
    QByteArray text = "[Extra]\n";
    for (int i = 0; i < 2000; ++i) text += "Key" + QByteArray::number(i) + "=x\n";
    writeStore(text);
    start();
    const int watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    QVERIFY(watch >= 0);
    const auto closeWatch = qScopeGuard([watch] { ::close(watch); });
    QVERIFY(::inotify_add_watch(watch,
                                QFile::encodeName(QFileInfo(m_user->configFile()).absolutePath()),
                                IN_MOVED_TO | IN_MODIFY) >= 0);
    MsgBoxRecorder boxes;
    exit(boxes);

    int writes = 0;
    alignas(inotify_event) char buffer[64 * 1024];
    for (ssize_t n; (n = ::read(watch, buffer, sizeof buffer)) > 0;) {
      for (char* at = buffer; at < buffer + n;) {
        const auto* event = reinterpret_cast<const inotify_event*>(at);
        // The file comes into place by a rename, or is written where it is. (QSettings also
        // opens it for writing to lock it, which writes nothing.)
        if (event->len > 0 && qstrcmp(event->name, "Marvento.conf") == 0) ++writes;
        at += sizeof(inotify_event) + event->len;
      }
    }
    QCOMPARE(writes, 1);
    QCOMPARE(m_user->stored(QStringLiteral("GPS")), QStringLiteral("GPS aus"));
    QCOMPARE(m_user->stored(QStringLiteral("MainTop")).has_value(), true);
    QSettings file(m_user->configFile(), QSettings::IniFormat);
    QCOMPARE(file.value(QStringLiteral("Extra/Key1999")).toString(), QStringLiteral("x"));
  }

  void failedWriteIsTold_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("reason");
    QTest::newRow("read-only folder")
        << "read-only"
        << (m_canMount ? QStringLiteral("Das Dateisystem ist schreibgeschützt.")
                       : QStringLiteral("Keine Schreibberechtigung im Ordner."));
    QTest::newRow("full disk") << "full" << QStringLiteral("Der Datenträger ist voll.");
  }

  // Regression: on a full disk the new settings were lost without a word.
  void failedWriteIsTold() {
    QFETCH(QString, kind);
    QFETCH(QString, reason);
    const QString folder = QFileInfo(m_user->configFile()).absolutePath();
    const QByteArray folderName = QFile::encodeName(folder);
    QVERIFY(QDir().mkpath(folder));
    auto unmount = qScopeGuard([&] {
      if (m_canMount) ::umount2(folderName.constData(), MNT_DETACH);
      QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    });
    if (m_canMount) {
      // A file system of four pages: room for the old file and, when full, for nothing more.
      QCOMPARE(::mount("tmpfs", folderName.constData(), "tmpfs", 0, "size=16k,mode=0700"), 0);
    } else if (kind == u"full" || ::geteuid() == 0) {
      // Root writes into any folder; without a mount of its own the case cannot be made.
      QSKIP("needs a mount namespace of its own (root with CAP_SYS_ADMIN)");
    }
    const QByteArray old = "[Settings]\nGPS=GPS aus\nGrad_Dezimal=False\n";
    writeStore(old);
    if (kind == u"full") {
      QFile filler(folder + QStringLiteral("/filler"));
      QVERIFY(filler.open(QIODevice::WriteOnly));
      while (filler.write(QByteArray(4096, 'x')) > 0 && filler.flush()) {
      }
    } else if (m_canMount) {
      QCOMPARE(::mount(nullptr, folderName.constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr),
               0);
    } else {
      QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
    }

    frmMain* w = start();
    w->mnuGrundeinstellungen->setEnabled(true);
    m_program->state().GradDezimal = true;  // a change that is now lost
    MsgBoxRecorder boxes;
    exit(boxes);
    QCOMPARE(boxes.count(), 2);
    QCOMPARE(boxes.last().prompt, QStringLiteral("Die Einstellungen konnten nicht gespeichert "
                                                 "werden:\n%1\n%2\nDie Datei behält die "
                                                 "Einstellungen des letzten Programmendes.")
                                      .arg(m_user->configFile(), reason));
    QCOMPARE(boxes.last().style, vbExclamation);
    QFile store(m_user->configFile());
    QVERIFY(store.open(QIODevice::ReadOnly));
    QCOMPARE(store.readAll(), old);
    QStringList left = QDir(folder).entryList(QDir::Files | QDir::Hidden);
    left.removeAll(QStringLiteral("filler"));
    QCOMPARE(left, QStringList{QStringLiteral("Marvento.conf")});
  }
};

QTEST_MAIN(tst_SettingsFile)
#include "tst_SettingsFile.moc"
