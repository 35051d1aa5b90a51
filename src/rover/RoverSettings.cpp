#include "rover/RoverSettings.h"

#include "platform/Settings.h"

#include <algorithm>

namespace marvento {

RoverSettings LoadRoverSettings() {
  RoverSettings s;
  s.announce = GetSetting(SettingKey::Ansagen, QString())
                   .trimmed()
                   .compare(QStringLiteral("True"), Qt::CaseInsensitive) == 0;
  if (GetSetting(SettingKey::Buchstabieren, QString()).trimmed() == u"Buchstaben") {
    s.spelling = Spelling::Letters;
  }
  if (GetSetting(SettingKey::FeldStufe, QString()).trimmed() == u"4") s.level = SquareLevel::Four;
  bool ok = false;
  const int margin = GetSetting(SettingKey::Feldrand, QString()).trimmed().toInt(&ok);
  if (ok) s.marginM = std::clamp(margin, 0, kMaxMarginM);
  return s;
}

void SaveRoverSettings(const RoverSettings& s) {
  SaveSetting(SettingKey::Ansagen, s.announce ? QStringLiteral("True") : QStringLiteral("False"));
  SaveSetting(SettingKey::Buchstabieren,
              s.spelling == Spelling::Icao ? QStringLiteral("ICAO") : QStringLiteral("Buchstaben"));
  SaveSetting(SettingKey::FeldStufe, QString::number(int(s.level)));
  SaveSetting(SettingKey::Feldrand, QString::number(s.marginM));
}

}  // namespace marvento
