#pragma once

// WSJT-X datagrams built byte by byte from the published layout, independent of the code under
// test: big-endian 32-bit numbers, byte arrays as a 32-bit length and the bytes.

#include <QByteArray>

#include <cstdint>

namespace marvento::test {

inline QByteArray Be32(std::uint32_t v) {
  QByteArray b(4, '\0');
  b[0] = static_cast<char>(v >> 24);
  b[1] = static_cast<char>(v >> 16);
  b[2] = static_cast<char>(v >> 8);
  b[3] = static_cast<char>(v);
  return b;
}

inline QByteArray Utf8(const QByteArray& text) {
  return Be32(std::uint32_t(text.size())) + text;
}

inline QByteArray Header(std::uint32_t type, const QByteArray& id, std::uint32_t schema = 2,
                         std::uint32_t magic = 0xADBCCBDA) {
  return Be32(magic) + Be32(schema) + Be32(type) + Utf8(id);
}

// Heartbeat (type 0): id, maximum schema, version, revision.
inline QByteArray Heartbeat(const QByteArray& id, std::uint32_t schema = 2) {
  return Header(0, id, schema) + Be32(3) + Utf8("2.6.1") + Utf8("a1b2c3");
}

// Status (type 1) as WSJT-X 2.6 sends it; only the id matters to the reader.
inline QByteArray Status(const QByteArray& id, std::uint32_t schema = 2) {
  QByteArray d = Header(1, id, schema);
  d += Be32(0) + Be32(14074000);  // dial frequency, quint64
  d += Utf8("FT8") + Utf8("DL1ABC") + Utf8("-10") + Utf8("FT8");
  d += QByteArray("\x00\x00\x00", 3);                // Tx enabled, transmitting, decoding
  d += Be32(1500) + Be32(1200);                      // Rx DF, Tx DF
  d += Utf8("DK0XX") + Utf8("JO62") + Utf8("JN58");  // DE call, DE grid, DX grid
  d += QByteArray("\x00", 1) + Utf8("") + QByteArray("\x00\x00", 2);
  d += Be32(0xffffffff) + Be32(0xffffffff) + Utf8("Default") + Utf8("");
  return d;
}

// Location (type 11): id and locator; what the link sends.
inline QByteArray Location(const QByteArray& id, const QByteArray& locator,
                           std::uint32_t schema = 2) {
  return Header(11, id, schema) + Utf8(locator);
}

// Close (type 6): id only.
inline QByteArray Close(const QByteArray& id) {
  return Header(6, id);
}

}  // namespace marvento::test
