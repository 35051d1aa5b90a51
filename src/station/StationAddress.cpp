#include "station/StationAddress.h"

#include "platform/Settings.h"

#include <QHostAddress>

namespace marvento {

namespace {

// Letters, digits, dots, hyphens and underscores: what a host name in a settings file can
// hold; anything else is a typing error or worse.
bool isHostName(const QString& host) {
  if (host.isEmpty() || host.size() > 253) return false;
  for (const QChar c : host) {
    const char16_t u = c.unicode();
    const bool allowed = (u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z') ||
                         (u >= u'0' && u <= u'9') || u == u'.' || u == u'-' || u == u'_';
    if (!allowed) return false;
  }
  return true;
}

bool isIpAddress(const QString& host) {
  QHostAddress address;
  return address.setAddress(host);
}

StationAddress invalid() {
  StationAddress address;
  address.status = StationAddress::Invalid;
  return address;
}

}  // namespace

SettingKey StationSettingKey(StationProgram program) {
  switch (program) {
    case StationProgram::Wsjtx: return SettingKey::Wsjtx;
    case StationProgram::Js8Call: return SettingKey::Js8Call;
    case StationProgram::Rotor: return SettingKey::Rotor;
  }
  return SettingKey::Wsjtx;
}

std::uint16_t DefaultStationPort(StationProgram program) {
  switch (program) {
    case StationProgram::Wsjtx: return 2237;
    case StationProgram::Js8Call: return 2442;
    case StationProgram::Rotor: return 4533;
  }
  return 0;
}

QString DefaultStationAddressText(StationProgram program) {
  return QStringLiteral("127.0.0.1:") + QString::number(DefaultStationPort(program));
}

StationAddress ParseStationAddress(const QString& text, StationProgram program) {
  const QString trimmed = text.trimmed();
  if (trimmed.isEmpty()) return {};

  QString host = trimmed;
  QString portText;
  if (trimmed.startsWith(u'[')) {
    const qsizetype close = trimmed.indexOf(u']');
    if (close < 0) return invalid();
    host = trimmed.mid(1, close - 1);
    const QString after = trimmed.mid(close + 1);
    if (!after.isEmpty()) {
      if (!after.startsWith(u':')) return invalid();
      portText = after.mid(1);
      if (portText.isEmpty()) return invalid();
    }
    if (!host.contains(u':') || !isIpAddress(host)) return invalid();
  } else if (trimmed.count(u':') == 1) {
    const qsizetype colon = trimmed.indexOf(u':');
    host = trimmed.left(colon);
    portText = trimmed.mid(colon + 1);
    if (portText.isEmpty()) return invalid();
  } else if (trimmed.contains(u':')) {
    // Several colons and no brackets: an IPv6 address alone.
    if (!isIpAddress(trimmed)) return invalid();
  }

  StationAddress address;
  address.status = StationAddress::Ok;
  address.host = host;
  address.port = DefaultStationPort(program);
  if (!portText.isEmpty()) {
    if (portText.size() > 5) return invalid();
    for (const QChar c : portText) {
      if (c < u'0' || c > u'9') return invalid();
    }
    const uint port = portText.toUInt();
    if (port < 1 || port > 65535) return invalid();
    address.port = static_cast<std::uint16_t>(port);
  }
  if (!isHostName(host) && !isIpAddress(host)) return invalid();
  if (program == StationProgram::Wsjtx && !isIpAddress(host) &&
      host.compare(u"localhost", Qt::CaseInsensitive) != 0) {
    return invalid();
  }
  return address;
}

QString StationAddressProblem(const QString& text, StationProgram program) {
  if (ParseStationAddress(text, program).status != StationAddress::Invalid) return {};
  const QString example = DefaultStationAddressText(program);
  if (program == StationProgram::Wsjtx) {
    return QStringLiteral(
               "Bitte eine IP-Adresse und einen Port angeben, z. B. %1 "
               "oder die Multicast-Gruppe 224.0.0.1:2237.")
        .arg(example);
  }
  return QStringLiteral("Bitte Rechner und Port angeben, z. B. %1.").arg(example);
}

QString StationAddressText(const StationAddress& address) {
  if (address.status != StationAddress::Ok) return {};
  const QString host = address.host.contains(u':') ? u'[' + address.host + u']' : address.host;
  return host + u':' + QString::number(address.port);
}

StationAddress LoadStationAddress(StationProgram program) {
  const StationAddress address =
      ParseStationAddress(GetSetting(StationSettingKey(program), QString()), program);
  return address.status == StationAddress::Ok ? address : StationAddress{};
}

void SaveStationAddress(StationProgram program, const StationAddress& address) {
  SaveSetting(StationSettingKey(program), StationAddressText(address));
}

}  // namespace marvento
