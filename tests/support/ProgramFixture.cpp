#include "support/ProgramFixture.h"

#include "app/InstanceGuard.h"

#include <QCoreApplication>
#include <QFile>
#include <QSettings>

namespace marvento::test {

IsolatedUser::IsolatedUser() : m_config(qgetenv("XDG_CONFIG_HOME")), m_runtime(qgetenv("XDG_RUNTIME_DIR")) {
  QFile::setPermissions(m_dir.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                          QFileDevice::ExeOwner);
  qputenv("XDG_CONFIG_HOME", m_dir.path().toLocal8Bit());
  qputenv("XDG_RUNTIME_DIR", m_dir.path().toLocal8Bit());
  // QSettings keeps the user folder it found first; tell it the new one.
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.path());
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_dir.path());
}

IsolatedUser::~IsolatedUser() {
  qputenv("XDG_CONFIG_HOME", m_config);
  qputenv("XDG_RUNTIME_DIR", m_runtime);
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QString::fromLocal8Bit(m_config));
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, QString::fromLocal8Bit(m_config));
}

QString IsolatedUser::configFile() const {
  return m_dir.path() + QStringLiteral("/Marvento/Marvento.conf");
}

std::optional<QString> IsolatedUser::stored(const QString& key) const {
  QSettings file(configFile(), QSettings::IniFormat);
  const QString name = QStringLiteral("Settings/") + key;
  if (!file.contains(name)) return std::nullopt;
  return file.value(name).toString();
}

Program::Program() {
  // A test that runs into the second-instance guard by mistake must fail, not end quietly.
  static const bool guarded = [] {
    frmMain::exitProcess() = [] { qFatal("the second-instance guard ended the test program"); };
    return true;
  }();
  (void)guarded;
  State() = Module1{};
  m_window = Main();
}

Program::~Program() {
  delete m_window;
  ReleaseInstanceLock();
  QCoreApplication::processEvents();
}

}  // namespace marvento::test
