#pragma once

#include <QString>

namespace marvento {

// The per-user store of named texts: QSettings in native format, organisation and
// application "Marvento", group "Settings" ($XDG_CONFIG_HOME/Marvento/Marvento.conf).
// A missing key gives the default; an existing empty value gives the empty text.
QString GetSetting(const QString& key, const QString& defaultValue);
void SaveSetting(const QString& key, const QString& value);

// A window position in twips as stored under key; 1000 when missing or no number.
float GetTwipsSetting(const QString& key);

// The same for another group of the store, such as "Ports".
QString GetSetting(const QString& group, const QString& key, const QString& defaultValue);

}  // namespace marvento
