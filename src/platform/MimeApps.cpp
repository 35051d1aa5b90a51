#include "platform/MimeApps.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QHash>
#include <QSet>

#include "platform/Programs.h"

namespace marvento {

namespace {

QString homeDir() {
  return QDir::homePath();
}

QString baseDir(const char* variable, const QString& fallback) {
  const QString value = qEnvironmentVariable(variable);
  return QDir::isAbsolutePath(value) ? value : fallback;
}

QStringList dirList(const char* variable, const QString& fallback) {
  QStringList dirs;
  const QString value = qEnvironmentVariable(variable);
  for (const QString& dir : value.split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
    if (QDir::isAbsolutePath(dir)) dirs.append(dir);
  }
  return dirs.isEmpty() ? fallback.split(QLatin1Char(':')) : dirs;
}

QStringList applicationDirs() {
  QStringList dirs;
  for (const QString& dir : DataDirs()) dirs.append(dir + QStringLiteral("/applications"));
  return dirs;
}

QStringList desktopNames() {
  QStringList names;
  for (const QString& name :
       qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
    names.append(name.toLower());
  }
  return names;
}

// Desktop file ID to file, the first applications folder winning. A file in a subfolder
// has the subfolder in its ID: kde4/okular.desktop is kde4-okular.desktop.
QHash<QString, QString> desktopFileIndex(QStringList* orderedIds) {
  QHash<QString, QString> index;
  for (const QString& dir : applicationDirs()) {
    QStringList idsHere;
    QDirIterator it(dir, {QStringLiteral("*.desktop")}, QDir::Files,
                    QDirIterator::Subdirectories | QDirIterator::FollowSymlinks);
    while (it.hasNext()) {
      const QString path = it.next();
      QString id = QDir(dir).relativeFilePath(path);
      id.replace(QLatin1Char('/'), QLatin1Char('-'));
      if (index.contains(id)) continue;
      index.insert(id, path);
      idsHere.append(id);
    }
    idsHere.sort();
    orderedIds->append(idsHere);
  }
  return index;
}

bool tryExecPresent(const QString& tryExec) {
  if (tryExec.isEmpty()) return true;
  return QDir::isAbsolutePath(tryExec) ? IsProgramFile(tryExec) : !FindOnPath(tryExec).isEmpty();
}

class Installed {
 public:
  Installed() { m_index = desktopFileIndex(&m_orderedIds); }

  std::optional<DesktopEntry> entry(const QString& id) const {
    const auto path = m_index.constFind(id);
    if (path == m_index.constEnd()) return std::nullopt;
    auto entry = ReadDesktopEntry(*path);
    if (!entry || !entry->application || entry->hidden || entry->exec.trimmed().isEmpty() ||
        !tryExecPresent(entry->tryExec)) {
      return std::nullopt;
    }
    return entry;
  }

  const QStringList& orderedIds() const { return m_orderedIds; }

 private:
  QHash<QString, QString> m_index;
  QStringList m_orderedIds;
};

}  // namespace

QStringList ConfigDirs() {
  return QStringList{baseDir("XDG_CONFIG_HOME", homeDir() + QStringLiteral("/.config"))} +
         dirList("XDG_CONFIG_DIRS", QStringLiteral("/etc/xdg"));
}

QStringList DataDirs() {
  return QStringList{baseDir("XDG_DATA_HOME", homeDir() + QStringLiteral("/.local/share"))} +
         dirList("XDG_DATA_DIRS", QStringLiteral("/usr/local/share:/usr/share"));
}

QStringList MimeAppsFiles() {
  QStringList folders = ConfigDirs() + applicationDirs();
  const QStringList desktops = desktopNames();
  QStringList files;
  for (const QString& folder : folders) {
    for (const QString& desktop : desktops) {
      files.append(folder + QLatin1Char('/') + desktop + QStringLiteral("-mimeapps.list"));
    }
    files.append(folder + QStringLiteral("/mimeapps.list"));
  }
  for (const QString& folder : applicationDirs()) {
    files.append(folder + QStringLiteral("/defaults.list"));
  }
  return files;
}

std::optional<DesktopEntry> DefaultApplication(const QString& mimeType) {
  const Installed installed;
  QSet<QString> removed;
  QStringList added;
  for (const QString& path : MimeAppsFiles()) {
    if (!QFileInfo::exists(path)) continue;
    const KeyFile file = ReadKeyFile(path);
    const auto ids = [&](const char* group) {
      return SplitList(KeyValue(file.value(QString::fromLatin1(group)), mimeType));
    };
    for (const QString& id : ids("Default Applications")) {
      if (removed.contains(id)) continue;
      if (auto entry = installed.entry(id)) return entry;
    }
    // Only the plain mimeapps.list may add or remove associations.
    if (QFileInfo(path).fileName() != QLatin1String("mimeapps.list")) continue;
    for (const QString& id : ids("Added Associations")) {
      if (!removed.contains(id) && !added.contains(id)) added.append(id);
    }
    for (const QString& id : ids("Removed Associations")) removed.insert(id);
  }
  for (const QString& id : added) {
    if (auto entry = installed.entry(id)) return entry;
  }
  for (const QString& id : installed.orderedIds()) {
    if (removed.contains(id)) continue;
    auto entry = installed.entry(id);
    if (entry && entry->mimeTypes.contains(mimeType)) return entry;
  }
  return std::nullopt;
}

}  // namespace marvento
