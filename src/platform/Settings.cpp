#include "platform/Settings.h"

#include "platform/Numbers.h"

#include <QSettings>
#include <QStringList>

#include <cmath>

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

float GetTwipsSetting(const QString& key) {
  const QString text = GetSetting(key, QStringLiteral("1000")).trimmed();
  if (!IsNumeric(text)) return 1000;
  const double value = Val(ToDotDecimal(text));
  // A position far off any screen is no position a window was closed at.
  return std::fabs(value) <= 1e7 ? static_cast<float>(value) : 1000.0f;
}

void SaveSetting(const QString& key, const QString& value) {
  QSettings settings = store();
  settings.beginGroup(QStringLiteral("Settings"));
  settings.setValue(key, value);
}

}  // namespace marvento
