#pragma once

#include <QByteArray>
#include <QIODevice>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace marvento::fuzz {

// Hands out at most `maxPiece` bytes per read, as a pipe or a slow disk may: the readers must
// give the same result whatever the pieces. The seed chooses the sizes.
class Trickle : public QIODevice {
 public:
  Trickle(const QByteArray& bytes, std::uint8_t seed, int maxPiece)
      : m_bytes(bytes), m_seed(seed | 1), m_maxPiece(maxPiece) {
    open(QIODevice::ReadOnly);
  }
  bool isSequential() const override { return true; }

 protected:
  qint64 readData(char* data, qint64 max) override {
    m_seed = static_cast<std::uint8_t>(m_seed * 37 + 11);
    const qint64 n = std::min<qint64>({max, m_bytes.size() - m_pos, 1 + m_seed % m_maxPiece});
    std::memcpy(data, m_bytes.constData() + m_pos, n);
    m_pos += n;
    return n;
  }
  qint64 writeData(const char*, qint64) override { return -1; }

 private:
  QByteArray m_bytes;
  qint64 m_pos = 0;
  std::uint8_t m_seed;
  int m_maxPiece;
};

}  // namespace marvento::fuzz
