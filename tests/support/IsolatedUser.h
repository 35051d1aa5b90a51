#pragma once

// A private settings store and runtime folder for one test; restores the environment.

#include <QByteArray>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#include <optional>

namespace marvento::test {

class IsolatedUser {
 public:
  IsolatedUser() : m_config(qgetenv("XDG_CONFIG_HOME")), m_runtime(qgetenv("XDG_RUNTIME_DIR")) {
    QFile::setPermissions(m_dir.path(),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    use(m_dir.path().toLocal8Bit(), m_dir.path().toLocal8Bit());
  }
  ~IsolatedUser() { use(m_config, m_runtime); }
  IsolatedUser(const IsolatedUser&) = delete;
  IsolatedUser& operator=(const IsolatedUser&) = delete;

  QString configFile() const { return m_dir.path() + QStringLiteral("/Marvento/Marvento.conf"); }
  // A stored key as the file holds it, or nothing when it is missing.
  std::optional<QString> stored(const QString& key) const {
    QSettings file(configFile(), QSettings::IniFormat);
    const QString name = QStringLiteral("Settings/") + key;
    if (!file.contains(name)) return std::nullopt;
    return file.value(name).toString();
  }
  QString path() const { return m_dir.path(); }

 private:
  // QSettings keeps the user folder it found first; it is told the new one.
  static void use(const QByteArray& config, const QByteArray& runtime) {
    qputenv("XDG_CONFIG_HOME", config);
    qputenv("XDG_RUNTIME_DIR", runtime);
    for (const auto format : {QSettings::NativeFormat, QSettings::IniFormat}) {
      QSettings::setPath(format, QSettings::UserScope, QString::fromLocal8Bit(config));
    }
  }

  QTemporaryDir m_dir;
  QByteArray m_config;
  QByteArray m_runtime;
};

}  // namespace marvento::test
