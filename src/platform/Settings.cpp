#include "platform/Settings.h"

#include <QSettings>
#include <QStringList>

namespace marvento {

namespace {

QSettings store() {
  return QSettings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Marvento"),
                   QStringLiteral("Marvento"));
}

}  // namespace

QString GetSetting(const QString& group, const QString& key, const QString& defaultValue) {
  QSettings settings = store();
  settings.beginGroup(group);
  if (!settings.contains(key)) return defaultValue;
  const QVariant value = settings.value(key);
  // The INI reader turns an unquoted text with commas, edited in by hand, into a list.
  if (value.typeId() == QMetaType::QStringList) return value.toStringList().join(u',');
  return value.toString();
}

QString GetSetting(const QString& key, const QString& defaultValue) {
  return GetSetting(QStringLiteral("Settings"), key, defaultValue);
}

void SaveSetting(const QString& key, const QString& value) {
  QSettings settings = store();
  settings.beginGroup(QStringLiteral("Settings"));
  settings.setValue(key, value);
}

}  // namespace marvento
