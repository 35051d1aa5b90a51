#pragma once

#include <QByteArrayView>

namespace marvento {

// The two rotctld commands Marvento sends, in hamlib's default (not extended) protocol.
enum class RotctldCommand {
  SetPosition,  // "P <az> <el>": answered "RPRT 0", or "RPRT <negative hamlib error>"
  GetPosition   // "p": answered with two lines, azimuth and elevation in degrees, or "RPRT <n>"
};

// What the bytes received so far say about the reply to one command.
struct RotctldReply {
  enum Kind {
    Incomplete,  // wait for more bytes
    Done,        // "RPRT 0" to P
    Position,    // azimuth and elevation to p
    Error,       // "RPRT <n>" with n not 0 (n itself may be any number)
    Malformed    // anything else: the connection no longer makes sense
  };
  Kind kind = Incomplete;
  qsizetype consumed = 0;  // bytes of the buffer that belong to this reply
  int code = 0;            // hamlib's error number, for Error
  double azimuth = 0;      // degrees, for Position
  double elevation = 0;
};

// The longest line rotctld sends here; a longer one without a line end is Malformed, so a
// peer that never ends its line cannot make the buffer grow without bound.
inline constexpr qsizetype kRotctldMaxLine = 128;

// Reads the reply to command at the start of buffer. Lines end with LF, a CR before it is
// dropped. Angles are C-locale numbers ("123.40"); they must be finite, the azimuth within
// -360..720 and the elevation within -90..180, wide enough for any rotator hamlib drives.
RotctldReply ReadRotctldReply(RotctldCommand command, QByteArrayView buffer);

}  // namespace marvento
