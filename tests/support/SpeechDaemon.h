#pragma once

// A real speech-dispatcher with espeak-ng for one test: its own configuration, socket and
// log in a temporary folder, found by the program through SPEECHD_ADDRESS. Its log at the
// most detailed level shows every text that reaches it.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace marvento::test {

class SpeechDaemon {
 public:
  static QString program() {
    return QStandardPaths::findExecutable(QStringLiteral("speech-dispatcher"));
  }

  // Starts the daemon and points SPEECHD_ADDRESS at it; false when it does not come up.
  bool start() {
    if (program().isEmpty() || !m_dir.isValid()) return false;
    const QDir dir(m_dir.path());
    dir.mkpath(QStringLiteral("conf/modules"));
    dir.mkpath(QStringLiteral("log"));
    QFile::copy(QStringLiteral("/etc/speech-dispatcher/modules/espeak-ng.conf"),
                dir.filePath(QStringLiteral("conf/modules/espeak-ng.conf")));
    QFile conf(dir.filePath(QStringLiteral("conf/speechd.conf")));
    if (!conf.open(QIODevice::WriteOnly)) return false;
    conf.write(QStringLiteral("LogLevel 5\nLogDir \"%1\"\n"
                              "AddModule \"espeak-ng\" \"sd_espeak-ng\" \"espeak-ng.conf\"\n"
                              "DefaultModule espeak-ng\nDefaultLanguage \"de\"\n"
                              // libao falls back to its null device where there is no sound
                              // card, so messages end as on a desktop.
                              "AudioOutputMethod \"libao\"\n")
                   .arg(dir.filePath(QStringLiteral("log")))
                   .toUtf8());
    conf.close();
    m_socket = dir.filePath(QStringLiteral("speechd.sock"));
    m_daemon.setProcessChannelMode(QProcess::MergedChannels);
    m_daemon.start(program(),
                   {"-s", "-t", "60", "-C", dir.filePath(QStringLiteral("conf")), "-c",
                    "unix_socket", "-S", m_socket, "-P", dir.filePath(QStringLiteral("pid"))});
    if (!m_daemon.waitForStarted(5000)) return false;
    if (!QTest::qWaitFor([this] { return QFile::exists(m_socket); }, 10000)) return false;
    qputenv("SPEECHD_ADDRESS", "unix_socket:" + m_socket.toLocal8Bit());
    return true;
  }

  ~SpeechDaemon() {
    qunsetenv("SPEECHD_ADDRESS");
    if (m_daemon.state() != QProcess::NotRunning) {
      m_daemon.terminate();
      if (!m_daemon.waitForFinished(5000)) m_daemon.kill();
      m_daemon.waitForFinished(2000);
    }
  }

  QString log() const {
    QFile file(QDir(m_dir.path()).filePath(QStringLiteral("log/speech-dispatcher.log")));
    if (!file.open(QIODevice::ReadOnly)) return {};
    return QString::fromUtf8(file.readAll());
  }

  // The texts the daemon queued for speaking, in order.
  QStringList queued() const {
    QStringList texts;
    static const QRegularExpression line(
        QStringLiteral("Queueing message \\|(.*)\\| with priority"));
    for (auto it = line.globalMatch(log()); it.hasNext();) texts << it.next().captured(1);
    return texts;
  }

 private:
  QTemporaryDir m_dir;
  QString m_socket;
  QProcess m_daemon;
};

}  // namespace marvento::test
