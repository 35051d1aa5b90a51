#include "station/WsjtxMessage.h"

#include "WsjtxDatagram.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

using test::Be32;
using test::Header;
using test::Heartbeat;
using test::Utf8;

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
      {"wrong magic", Header(0, "WSJT-X", 2, 0xDABCCBAD), WsjtxMessage::WrongMagic},
      {"schema 9", Header(0, "WSJT-X", 9), WsjtxMessage::UnknownSchema},
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
      {"heartbeat cut by one byte", good.chopped(1), WsjtxMessage::LengthTooLarge},
      {"location beyond the end", Header(11, "WSJT-X") + Be32(6) + "JO62",
       WsjtxMessage::LengthTooLarge},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(ReadWsjtxMessage(c.datagram).result, c.result);
  }
}

}  // namespace
}  // namespace marvento
