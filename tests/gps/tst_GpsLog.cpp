// The GPS log: which calls write a line, what a line holds, and a file that cannot be written.

#include "FakeClock.h"
#include "gps/GpsLog.h"
#include "platform/PrintZones.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <csignal>
#include <functional>

#include <sys/stat.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace marvento;

class TestGpsLog : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    m_savedDir = QDir::currentPath();
  }

  void init() {
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    QVERIFY(QDir::setCurrent(m_dir->path()));
    m_receptionOn = true;
    m_panel2.clear();
    m_lbInfo.clear();
    m_tbMyLoc.clear();
    m_timer.setInterval(30000);
    m_timer.start();
    m_log =
        std::make_unique<GpsLog>([this] { return m_receptionOn; },
                                 GpsLogView{&m_panel2, &m_tbMyLoc, &m_lbInfo, &m_timer}, m_clock);
  }

  void cleanup() {
    QDir::setCurrent(m_savedDir);
    m_dir.reset();
  }

  void whichCallsWrite_data() {
    // Calls as "time|locator" pairs, and the lines that end up in the file.
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("standing still writes once")
        << QStringList{"12:35:19|JO31AB", "12:35:49|JO31AB", "12:36:19|JO31AB"}
        << QStringList{"12:35:19|JO31AB"};
    QTest::newRow("return to an earlier locator writes")
        << QStringList{"12:35:19|JO31AB", "12:35:49|JO31AC", "12:36:19|JO31AB"}
        << QStringList{"12:35:19|JO31AB", "12:35:49|JO31AC", "12:36:19|JO31AB"};
    QTest::newRow("new locator, same time: no line, compared with the old one later")
        << QStringList{"12:35:19|JO31AB", "12:35:19|JO31AC", "12:35:49|JO31AB", "12:35:49|JO31AC"}
        << QStringList{"12:35:19|JO31AB", "12:35:49|JO31AC"};
    QTest::newRow("panel or locator still empty")
        << QStringList{"|JO31AB", "12:35:19|", "12:35:49|JO31AB"} << QStringList{"12:35:49|JO31AB"};
  }

  void whichCallsWrite() {
    QFETCH(QStringList, calls);
    QFETCH(QStringList, lines);
    for (const QString& call : calls) write(call.section(u'|', 0, 0), call.section(u'|', 1, 1));
    QByteArray expected;
    for (const QString& line : lines) {
      expected +=
          PrintZones({"18.11.2026", line.section(u'|', 0, 0), line.section(u'|', 1, 1)}).toUtf8() +
          "\r\n";
    }
    QCOMPARE(fileBytes(), expected);
    QCOMPARE(m_lbInfo.text(), QString());
  }

  void timerAroundTheWrite() {
    // Reception on: the timer runs after the write, whatever it did before.
    m_timer.stop();
    write("12:35:19", QStringLiteral("JO31ÄB"));
    QVERIFY(m_timer.isActive());
    QVERIFY(
        fileBytes().endsWith("JO31\xc3\x84"
                             "B\r\n"));  // UTF-8

    // Reception off: the timer is left alone.
    m_receptionOn = false;
    m_timer.stop();
    write("12:35:49", "JO31AC");
    QVERIFY(!m_timer.isActive());
    QCOMPARE(fileBytes().count("\r\n"), 2);
  }

  // Regression: the warning of a failed write vanished with the next poll, which clears lbInfo.
  // A directory of the log's name cannot be opened for writing, not even by root.
  void failedWriteIsToldAndRetried() {
    QVERIFY(QDir(m_dir->path()).mkdir(GpsLog::kFileName));
    write("12:35:19", "JO31AB");
    const QString warning = QStringLiteral("Protokoll nicht schreibbar: ist ein Verzeichnis (%1)")
                                .arg(m_dir->filePath(GpsLog::kFileName));
    QCOMPARE(m_lbInfo.text(), warning);
    QVERIFY(m_timer.isActive());
    QCOMPARE(m_log->LastLogLoc(), QString());
    m_lbInfo.clear();  // as the next poll does
    m_log->showWarning();
    QCOMPARE(m_lbInfo.text(), warning);

    // Once the way is free, the same line is written at the next call and the warning goes.
    QVERIFY(QDir(m_dir->path()).rmdir(GpsLog::kFileName));
    m_log->WriteGpsLog();
    QCOMPARE(fileBytes(), QByteArray("18.11.2026    12:35:19      JO31AB\r\n"));
    QCOMPARE(m_log->LastLogLoc(), QStringLiteral("JO31AB"));
    QCOMPARE(m_lbInfo.text(), QString());
    m_log->showWarning();
    QCOMPARE(m_lbInfo.text(), QString());
  }

  void linkIsNotFollowed_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("reason");
    QTest::newRow("link to a file") << "file" << QStringLiteral("ist eine symbolische Verknüpfung");
    QTest::newRow("dangling link")
        << "dangling" << QStringLiteral("ist eine symbolische Verknüpfung");
    // A pipe without a reader would block the window for good if it were opened as a file.
    QTest::newRow("pipe") << "fifo" << QStringLiteral("ist keine gewöhnliche Datei");
  }

  // Regression: each fix appended a line to the target of a link put in the log's place.
  void linkIsNotFollowed() {
    QFETCH(QString, kind);
    QFETCH(QString, reason);
    const QString target = m_dir->filePath(QStringLiteral("passwd"));
    const QByteArray bytes = "root:x:0:0:root:/root:/bin/bash\n";
    if (kind == u"file") {
      QFile file(target);
      QVERIFY(file.open(QIODevice::WriteOnly));
      file.write(bytes);
    }
    if (kind == u"fifo") {
      QCOMPARE(::mkfifo(QFile::encodeName(GpsLog::kFileName).constData(), 0644), 0);
    } else {
      QVERIFY(QFile::link(target, GpsLog::kFileName));
    }

    write("12:35:19", "JO31AB");
    QCOMPARE(m_lbInfo.text(), QStringLiteral("Protokoll nicht schreibbar: %1 (%2)")
                                  .arg(reason, m_dir->filePath(GpsLog::kFileName)));
    QCOMPARE(m_log->LastLogLoc(), QString());
    if (kind == u"file") {
      QFile file(target);
      QVERIFY(file.open(QIODevice::ReadOnly));
      QCOMPARE(file.readAll(), bytes);
    } else {
      QVERIFY(!QFileInfo::exists(target));  // a dangling link does not create its target
    }
    const QFileInfo log(m_dir->filePath(GpsLog::kFileName));
    QCOMPARE(log.isSymLink(), kind != u"fifo");
  }

  // A folder the user may not write into. Root may write anywhere, so the child gives root
  // up first.
  void missingPermissionIsNamed() {
    QVERIFY(QFile(m_dir->path()).setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    QVERIFY(inChild([] {
      if (::geteuid() == 0 && ::setuid(65534) != 0) return false;
      const auto error = AppendToFile(GpsLog::kFileName, QStringLiteral("x"));
      return error && error->startsWith(QStringLiteral("keine Schreibberechtigung"));
    }));
  }

  // Regression: a full disk left half a line, to which the next line was glued.
  void lineCutByTheSizeLimitIsTakenBack() {
    const QByteArray old = "18.11.2026    12:35:19      JO31AB\r\n";
    {
      QFile file(GpsLog::kFileName);
      QVERIFY(file.open(QIODevice::WriteOnly));
      file.write(old);
    }
    // The child may write only 10 bytes more: the disk is full in the middle of the line.
    QVERIFY(inChild([&] {
      std::signal(SIGXFSZ, SIG_IGN);
      const rlimit limit{rlim_t(old.size() + 10), rlim_t(old.size() + 10)};
      ::setrlimit(RLIMIT_FSIZE, &limit);
      const auto error = AppendToFile(GpsLog::kFileName, QStringLiteral("x").repeated(40));
      return error && error->startsWith(QStringLiteral("Datei hat die erlaubte Größe"));
    }));
    QCOMPARE(fileBytes(), old);
  }

 private:
  // Runs check in a forked child, whose limits and user this process keeps; true when it held.
  static bool inChild(const std::function<bool()>& check) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(check() ? 0 : 1);
    int status = 0;
    return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
  }
  void write(const QString& time, const QString& loc) {
    m_panel2.setText(time);
    m_tbMyLoc.setText(loc);
    m_log->WriteGpsLog();
  }
  QByteArray fileBytes() const {
    QFile file(m_dir->filePath(GpsLog::kFileName));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }

  QString m_savedDir;
  std::unique_ptr<QTemporaryDir> m_dir;
  QLabel m_panel2, m_lbInfo;
  QLineEdit m_tbMyLoc;
  QTimer m_timer;
  bool m_receptionOn = true;
  test::FakeClock m_clock;
  std::unique_ptr<GpsLog> m_log;
};

QTEST_MAIN(TestGpsLog)
#include "tst_GpsLog.moc"
