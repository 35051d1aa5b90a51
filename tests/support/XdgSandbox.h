#pragma once

// A private set of XDG folders and a bin/ folder in front of PATH, so that the machine's own
// MIME associations and programs play no part. Restores the environment when it goes.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <array>
#include <utility>

namespace marvento::test {

class XdgSandbox {
 public:
  XdgSandbox() {
    for (std::size_t i = 0; i < kNames.size(); ++i) {
      m_saved[i] = {qEnvironmentVariableIsSet(kNames[i]), qgetenv(kNames[i])};
    }
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(at("home/.config")));
    qputenv("XDG_CONFIG_DIRS", QFile::encodeName(at("etc/xdg")));
    qputenv("XDG_DATA_HOME", QFile::encodeName(at("home/.local/share")));
    qputenv("XDG_DATA_DIRS", QFile::encodeName(at("usr/local/share") + ':' + at("usr/share")));
    qunsetenv("XDG_CURRENT_DESKTOP");
    qputenv("PATH", QFile::encodeName(at("bin")) + ':' + m_saved.back().second);
  }
  ~XdgSandbox() {
    for (std::size_t i = 0; i < kNames.size(); ++i) {
      m_saved[i].first ? qputenv(kNames[i], m_saved[i].second) : qunsetenv(kNames[i]);
    }
  }
  XdgSandbox(const XdgSandbox&) = delete;
  XdgSandbox& operator=(const XdgSandbox&) = delete;

  QString root() const { return m_dir.path(); }
  QString at(const QString& relative) const { return m_dir.filePath(relative); }

  // Writes a file below the root, with its folders; an executable one for programs.
  bool write(const QString& relative, const QByteArray& content, bool executable = false) const {
    const QString path = at(relative);
    QFile file(path);
    if (!QDir().mkpath(QFileInfo(path).absolutePath()) ||
        !file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(content) < 0) {
      return false;
    }
    file.close();
    return !executable || file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
  }

  // Makes `exec` the user's default application for PDF files.
  bool associatePdf(const QString& exec) const {
    return write("home/.config/mimeapps.list",
                 "[Default Applications]\napplication/pdf=marvento-test-viewer.desktop;\n") &&
           write("home/.local/share/applications/marvento-test-viewer.desktop",
                 "[Desktop Entry]\nType=Application\nName=Test viewer\nExec=" + exec.toUtf8() +
                     "\nMimeType=application/pdf;\n");
  }

 private:
  static constexpr std::array<const char*, 6> kNames = {
      "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS",     "XDG_DATA_HOME",
      "XDG_DATA_DIRS",   "XDG_CURRENT_DESKTOP", "PATH"};  // PATH last: the new one is built on it
  QTemporaryDir m_dir;
  std::array<std::pair<bool, QByteArray>, kNames.size()> m_saved;
};

}  // namespace marvento::test
