#include "station/WsjtxMessage.h"

#include <QDataStream>
#include <QIODevice>

#include <optional>

namespace marvento {

namespace {

// A forward reader over the datagram that never reads past its end.
class Cursor {
 public:
  explicit Cursor(QByteArrayView data) : m_data(data) {}

  std::optional<std::uint32_t> u32() {
    if (m_data.size() - m_pos < 4) return std::nullopt;
    const auto* p = reinterpret_cast<const unsigned char*>(m_data.data() + m_pos);
    m_pos += 4;
    return std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 |
           std::uint32_t{p[3]};
  }

  // A byte array; a null array comes back as a null QByteArray.
  std::optional<QByteArray> bytes(WsjtxMessage::Result& failure) {
    const std::optional<std::uint32_t> length = u32();
    if (!length) {
      failure = WsjtxMessage::Truncated;
      return std::nullopt;
    }
    if (*length == 0xffffffffu) return QByteArray();
    if (*length > static_cast<std::uint64_t>(m_data.size() - m_pos)) {
      failure = WsjtxMessage::LengthTooLarge;
      return std::nullopt;
    }
    const qsizetype n = static_cast<qsizetype>(*length);
    QByteArray value(m_data.data() + m_pos, n);
    if (value.isNull()) value = QByteArray("");  // empty, but not the null array
    m_pos += n;
    return value;
  }

 private:
  QByteArrayView m_data;
  qsizetype m_pos = 0;
};

WsjtxMessage failed(WsjtxMessage message, WsjtxMessage::Result result) {
  message.result = result;
  return message;
}

}  // namespace

WsjtxMessage ReadWsjtxMessage(QByteArrayView datagram) {
  WsjtxMessage message;
  Cursor in(datagram);
  const std::optional<std::uint32_t> magic = in.u32();
  if (!magic) return failed(message, WsjtxMessage::Truncated);
  if (*magic != kWsjtxMagic) return failed(message, WsjtxMessage::WrongMagic);
  const std::optional<std::uint32_t> schema = in.u32();
  if (!schema) return failed(message, WsjtxMessage::Truncated);
  message.schema = *schema;
  if (*schema < kWsjtxSchemaMin || *schema > kWsjtxSchemaMax) {
    return failed(message, WsjtxMessage::UnknownSchema);
  }
  const std::optional<std::uint32_t> type = in.u32();
  if (!type) return failed(message, WsjtxMessage::Truncated);
  message.type = *type;

  WsjtxMessage::Result failure = WsjtxMessage::Ok;
  const std::optional<QByteArray> id = in.bytes(failure);
  if (!id) return failed(message, failure);
  if (id->isEmpty() || id->size() > kWsjtxMaxIdBytes) return failed(message, WsjtxMessage::BadId);
  message.id = *id;

  if (*type == WsjtxMessage::Heartbeat) {
    // Heartbeat: id, maximum schema number (quint32), version (utf8), revision (utf8).
    const std::optional<std::uint32_t> maximum = in.u32();
    if (!maximum) return failed(message, WsjtxMessage::Truncated);
    message.maximumSchema = *maximum;
    const std::optional<QByteArray> version = in.bytes(failure);
    if (!version) return failed(message, failure);
    const std::optional<QByteArray> revision = in.bytes(failure);
    if (!revision) return failed(message, failure);
    message.version = *version;
    message.revision = *revision;
  } else if (*type == WsjtxMessage::Location) {
    // Location: id, location (utf8).
    const std::optional<QByteArray> location = in.bytes(failure);
    if (!location) return failed(message, failure);
    message.location = *location;
  }
  return message;
}

QByteArray WsjtxLocationMessage(std::uint32_t schema, const QByteArray& id,
                                const QString& locator) {
  QByteArray datagram;
  QDataStream out(&datagram, QIODevice::WriteOnly);
  out.setVersion(schema >= 3 ? QDataStream::Qt_5_4 : QDataStream::Qt_5_2);
  out.setByteOrder(QDataStream::BigEndian);
  out << kWsjtxMagic << schema << static_cast<std::uint32_t>(WsjtxMessage::Location) << id
      << locator.left(6).toUtf8();
  return datagram;
}

}  // namespace marvento
