#pragma once

#include "platform/Settings.h"

#include <QString>

#include <cstdint>

namespace marvento {

// The three programs beside Marvento that it talks to, each stored as one "host:port" text
// in the group "Settings" under the key of the same name; the empty text switches it off.
enum class StationProgram { Wsjtx, Js8Call, Rotor };

// Where the program's address is stored.
SettingKey StationSettingKey(StationProgram program);

// Where each program is found when the user switches it on without naming an address:
// WSJT-X's UDP server 127.0.0.1:2237, JS8Call's TCP API 127.0.0.1:2442, rotctld 127.0.0.1:4533.
std::uint16_t DefaultStationPort(StationProgram program);
QString DefaultStationAddressText(StationProgram program);

struct StationAddress {
  enum Status { Off, Ok, Invalid };
  Status status = Off;
  QString host;  // a name or an IP address, IPv6 without its brackets
  std::uint16_t port = 0;
};

// Reads "host:port", "[v6]:port", or a host alone (the program's default port). Blanks around
// the text are ignored; the empty text is Off. Refused as Invalid: a port that is no number in
// 1..65535, an empty host, blanks or control characters inside. WSJT-X's address is one to
// listen on, so there the host must be an IP address (or "localhost").
StationAddress ParseStationAddress(const QString& text, StationProgram program);

// The German reason why a text is refused, for the settings dialog; empty when accepted.
QString StationAddressProblem(const QString& text, StationProgram program);

// The text that reads back as the same address ("host:port", IPv6 in brackets); empty when
// off or invalid.
QString StationAddressText(const StationAddress& address);

// The stored address; a text that is no valid address, edited in by hand, counts as off.
StationAddress LoadStationAddress(StationProgram program);
// Stores the address as text (the empty text when off).
void SaveStationAddress(StationProgram program, const StationAddress& address);

}  // namespace marvento
