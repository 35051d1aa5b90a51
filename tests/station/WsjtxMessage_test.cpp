#include "station/WsjtxMessage.h"

#include "WsjtxDatagram.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

using test::Be32;
using test::Header;
using test::Heartbeat;
using test::Utf8;

TEST(WsjtxMessage, ReadsHeartbeatStatusAndCloseOfEitherSchema) {
  for (const std::uint32_t schema : {2u, 3u}) {
    SCOPED_TRACE(schema);
    const WsjtxMessage heartbeat = ReadWsjtxMessage(Heartbeat("WSJT-X - IC7300", schema));
    ASSERT_EQ(heartbeat.result, WsjtxMessage::Ok);
    EXPECT_EQ(heartbeat.schema, schema);
    EXPECT_EQ(heartbeat.type, WsjtxMessage::Heartbeat);
    EXPECT_EQ(heartbeat.id, QByteArray("WSJT-X - IC7300"));
    EXPECT_EQ(heartbeat.maximumSchema, 3u);
    EXPECT_EQ(heartbeat.version, QByteArray("2.6.1"));
    EXPECT_EQ(heartbeat.revision, QByteArray("a1b2c3"));

    const WsjtxMessage status = ReadWsjtxMessage(test::Status("WSJT-X", schema));
    ASSERT_EQ(status.result, WsjtxMessage::Ok);
    EXPECT_EQ(status.type, WsjtxMessage::Status);
    EXPECT_EQ(status.id, QByteArray("WSJT-X"));
  }
  const WsjtxMessage close = ReadWsjtxMessage(test::Close("WSJT-X"));
  EXPECT_EQ(close.result, WsjtxMessage::Ok);
  EXPECT_EQ(close.type, WsjtxMessage::Close);
  // Non-ASCII ids come back as the same bytes, for the reply.
  EXPECT_EQ(ReadWsjtxMessage(Heartbeat("Funkbude Süd")).id, QByteArray("Funkbude Süd"));
}

TEST(WsjtxMessage, RefusesMalformedAndHostileDatagrams) {
  const QByteArray good = Heartbeat("WSJT-X");
  const QByteArray afterId = Header(0, "WSJT-X");
  struct Case {
    const char* what;
    QByteArray datagram;
    WsjtxMessage::Result result;
  };
  const Case cases[] = {
      {"empty", QByteArray(), WsjtxMessage::Truncated},
      {"three bytes of magic", QByteArray("\xad\xbc\xcb", 3), WsjtxMessage::Truncated},
      {"wrong magic", Header(0, "WSJT-X", 2, 0xDABCCBAD), WsjtxMessage::WrongMagic},
      {"little-endian magic", Header(0, "WSJT-X", 2, 0xDACBBCAD), WsjtxMessage::WrongMagic},
      {"schema 9", Header(0, "WSJT-X", 9), WsjtxMessage::UnknownSchema},
      {"schema 1", Header(0, "WSJT-X", 1), WsjtxMessage::UnknownSchema},
      {"no type", Be32(0xADBCCBDA) + Be32(2), WsjtxMessage::Truncated},
      {"id length cut", Be32(0xADBCCBDA) + Be32(2) + Be32(0) + QByteArray(2, '\0'),
       WsjtxMessage::Truncated},
      {"id longer than the datagram", Be32(0xADBCCBDA) + Be32(2) + Be32(0) + Be32(7) + "WSJT-X",
       WsjtxMessage::LengthTooLarge},
      {"id length near 4 GiB", Be32(0xADBCCBDA) + Be32(2) + Be32(0) + Be32(0xfffffffe) + "WSJT-X",
       WsjtxMessage::LengthTooLarge},
      {"null id", Be32(0xADBCCBDA) + Be32(2) + Be32(1) + Be32(0xffffffff), WsjtxMessage::BadId},
      {"empty id", Header(1, ""), WsjtxMessage::BadId},
      {"overlong id", Header(1, QByteArray(kWsjtxMaxIdBytes + 1, 'W')), WsjtxMessage::BadId},
      {"heartbeat without maximum schema", afterId, WsjtxMessage::Truncated},
      {"heartbeat version beyond the end", afterId + Be32(3) + Be32(100) + "2.6",
       WsjtxMessage::LengthTooLarge},
      {"heartbeat without revision", afterId + Be32(3) + Utf8("2.6.1"), WsjtxMessage::Truncated},
      {"heartbeat cut by one byte", good.chopped(1), WsjtxMessage::LengthTooLarge},
      {"location beyond the end", Header(11, "WSJT-X") + Be32(6) + "JO62",
       WsjtxMessage::LengthTooLarge},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(ReadWsjtxMessage(c.datagram).result, c.result);
  }
}

// The reply, byte for byte as WSJT-X's MessageServer would write it.
TEST(WsjtxMessage, LocationCarriesTheFirstSixCharactersInTheInstancesSchema) {
  for (const std::uint32_t schema : {2u, 3u}) {
    const QByteArray expected = Header(11, "WSJT-X - IC7300", schema) + Utf8("JO62QM");
    EXPECT_EQ(WsjtxLocationMessage(schema, "WSJT-X - IC7300", QStringLiteral("JO62QM84AT")),
              expected);
    const WsjtxMessage back = ReadWsjtxMessage(expected);
    EXPECT_EQ(back.result, WsjtxMessage::Ok);
    EXPECT_EQ(back.type, WsjtxMessage::Location);
    EXPECT_EQ(back.location, QByteArray("JO62QM"));
  }
}

}  // namespace
}  // namespace marvento
