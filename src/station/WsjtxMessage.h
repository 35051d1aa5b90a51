#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <cstdint>

namespace marvento {

// WSJT-X's UDP messages as its NetworkMessage.hpp publishes them: a Qt QDataStream, big-endian,
// starting with the magic number, the schema and the message type, then the sender's id.
// Byte arrays (and UTF-8 texts) are a 32-bit length and the bytes; 0xffffffff is the null
// array.
inline constexpr std::uint32_t kWsjtxMagic = 0xADBCCBDA;
// The schemas whose layout of the fields read here is known (Qt 5.2 and Qt 5.4 streams).
inline constexpr std::uint32_t kWsjtxSchemaMin = 2;
inline constexpr std::uint32_t kWsjtxSchemaMax = 3;
// An id longer than this is no program's name; WSJT-X's own are like "WSJT-X - IC7300".
inline constexpr qsizetype kWsjtxMaxIdBytes = 256;

struct WsjtxMessage {
  enum Type : std::uint32_t { Heartbeat = 0, Status = 1, Close = 6, Location = 11 };
  enum Result {
    Ok,
    WrongMagic,
    UnknownSchema,
    Truncated,       // a fixed-size field runs past the end of the datagram
    LengthTooLarge,  // a byte array claims more bytes than the datagram has left
    BadId            // null, empty or overlong id
  };
  Result result = Ok;
  std::uint32_t schema = 0;
  std::uint32_t type = 0;
  QByteArray id;  // as sent: it goes back unchanged in a reply
  // Heartbeat: the highest schema the sender understands, its version and revision.
  std::uint32_t maximumSchema = 0;
  QByteArray version;
  QByteArray revision;
  // Location: the locator as sent.
  QByteArray location;
};

// Reads the header and id of any message, and the fields above for Heartbeat and Location.
// Status is read only as far as the id: the rest is of no use here. Nothing of the datagram
// is trusted: every length is checked against what is left.
WsjtxMessage ReadWsjtxMessage(QByteArrayView datagram);

// The Location message (type 11) that tells the instance id the own locator; only the first
// six characters of the locator are sent, which is what WSJT-X's AutoGrid takes.
QByteArray WsjtxLocationMessage(std::uint32_t schema, const QByteArray& id, const QString& locator);

}  // namespace marvento
