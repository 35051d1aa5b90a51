#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace marvento {

// Reading conversions of the stored texts. Each gives nothing when the text breaks the
// key's limits (the caller then takes the key's default), so that a store edited by hand
// cannot leave the start-up in a state the program never produces itself.
std::optional<bool> ReadBoolean(const QString& text);
// Seconds and milliseconds of the poll interval: Val, half to even, at most 65 s.
struct PollInterval {
  std::int32_t seconds = 30;
  std::int32_t milliseconds = 30000;
};
std::optional<PollInterval> ReadInterval(const QString& text);
std::optional<std::int16_t> ReadRadiusPosition(const QString& text);
// A baud rate a serial port can be set to: a whole number from 50 to 4,000,000 (the range of
// Linux's rate constants), written in digits alone; blanks around it are ignored.
std::optional<std::int32_t> ReadBaudRate(const QString& text);
// The number of a port name "Com1" to "Com29" (any case; digits alone after "Com").
std::optional<std::int16_t> ReadPortNumber(const QString& text);

// The texts written at exit. A window position reads back as the same single.
QString BooleanText(bool value);
QString TwipsText(float twips);

}  // namespace marvento
