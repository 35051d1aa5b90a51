// The readers of what other programs send: WSJT-X datagrams and rotctld replies.
#include "FuzzSupport.h"
#include "station/RotctldReply.h"
#include "station/WsjtxMessage.h"

#include <QByteArray>

#include <algorithm>
#include <cmath>

using namespace marvento;
using marvento::fuzz::Check;

namespace {

QString hex(QByteArrayView bytes) {
  return QString::fromLatin1(
      bytes.first(std::min<qsizetype>(bytes.size(), 200)).toByteArray().toHex(' '));
}

// Bytes a byte array of the stream takes: its length field and, unless null, its content.
qsizetype arrayBytes(const QByteArray& a) {
  return 4 + a.size();
}

void checkWsjtx(QByteArrayView data) {
  const WsjtxMessage m = ReadWsjtxMessage(data);
  if (m.result != WsjtxMessage::Ok) return;
  const QString where = hex(data);
  Check(m.schema >= kWsjtxSchemaMin && m.schema <= kWsjtxSchemaMax, "only known schemas", where);
  Check(!m.id.isEmpty() && m.id.size() <= kWsjtxMaxIdBytes, "an id of 1 to 256 bytes", where);

  // The id goes back unchanged in the reply, whatever bytes it holds.
  const QString locator = QString::fromUtf8(m.version);
  const WsjtxMessage reply = ReadWsjtxMessage(WsjtxLocationMessage(m.schema, m.id, locator));
  Check(reply.result == WsjtxMessage::Ok && reply.type == WsjtxMessage::Location &&
            reply.schema == m.schema && reply.id == m.id,
        "the Location reply reads back with the sender's id and schema", where);
  Check(reply.location == locator.left(6).toUtf8(),
        "the Location reply carries the first six characters", where);

  // Where the reader took every field, the bytes it needed are exactly these: one fewer is
  // refused, and what follows them changes nothing.
  qsizetype used = 0;
  if (m.type == WsjtxMessage::Heartbeat) {
    used = 12 + arrayBytes(m.id) + 4 + arrayBytes(m.version) + arrayBytes(m.revision);
  } else if (m.type == WsjtxMessage::Location) {
    used = 12 + arrayBytes(m.id) + arrayBytes(m.location);
  } else {
    used = 12 + arrayBytes(m.id);
  }
  Check(used <= data.size(), "nothing is read past the end", where);
  Check(ReadWsjtxMessage(data.first(used - 1)).result != WsjtxMessage::Ok,
        "a datagram cut short is refused", where);
  const WsjtxMessage exact = ReadWsjtxMessage(data.first(used));
  Check(exact.result == WsjtxMessage::Ok && exact.id == m.id && exact.version == m.version &&
            exact.revision == m.revision && exact.location == m.location,
        "bytes after the fields change nothing", where);
}

void checkRotctld(RotctldCommand command, QByteArrayView data) {
  const RotctldReply r = ReadRotctldReply(command, data);
  const QString where = hex(data);
  if (r.kind == RotctldReply::Incomplete || r.kind == RotctldReply::Malformed) {
    Check(r.consumed == 0, "no bytes are taken without a reply", where);
    // Waiting is right only while the reply's lines have not all come.
    if (r.kind == RotctldReply::Incomplete) {
      const qsizetype lines = data.count('\n');
      Check(lines == 0 || (lines == 1 && command == RotctldCommand::GetPosition),
            "a reply whose lines have all come is not waited for", where);
    }
    return;
  }
  Check(r.consumed > 0 && r.consumed <= data.size() && data[r.consumed - 1] == '\n',
        "a reply ends with its line end", where);
  if (r.kind == RotctldReply::Position) {
    Check(command == RotctldCommand::GetPosition, "positions answer only p", where);
    Check(std::isfinite(r.azimuth) && r.azimuth >= -360 && r.azimuth <= 720 &&
              std::isfinite(r.elevation) && r.elevation >= -90 && r.elevation <= 180,
          "angles are finite and in range", where);
  }
  if (r.kind == RotctldReply::Done) {
    Check(command == RotctldCommand::SetPosition, "only P is answered with RPRT 0", where);
  }
  if (r.kind == RotctldReply::Error) Check(r.code != 0, "an error has its number", where);
  // TCP may cut the reply anywhere: the bytes before its end are not yet a reply, and the
  // reply itself reads the same alone.
  Check(ReadRotctldReply(command, data.first(r.consumed - 1)).kind == RotctldReply::Incomplete,
        "a reply cut short waits for more", where);
  const RotctldReply alone = ReadRotctldReply(command, data.first(r.consumed));
  Check(alone.kind == r.kind && alone.consumed == r.consumed && alone.code == r.code &&
            alone.azimuth == r.azimuth && alone.elevation == r.elevation,
        "bytes after a reply change nothing", where);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QByteArrayView bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  checkWsjtx(bytes);
  checkRotctld(RotctldCommand::SetPosition, bytes);
  checkRotctld(RotctldCommand::GetPosition, bytes);
  return 0;
}
