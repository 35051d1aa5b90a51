#pragma once

// Writes a schedule of pieces into the master side of a pseudo-terminal from a thread of its
// own, while the code under test blocks on the slave side.

#include "support/Pty.h"

#include <QByteArray>

#include <atomic>
#include <chrono>
#include <thread>
#include <utility>
#include <vector>

namespace marvento::test {

struct Piece {
  int afterMs;  // pause before this piece
  QByteArray bytes;
};

class PtyFeeder {
 public:
  PtyFeeder(const Pty& pty, std::vector<Piece> pieces)
      : m_thread([this, &pty, pieces = std::move(pieces)] {
          for (const Piece& piece : pieces) {
            if (m_stop) break;
            std::this_thread::sleep_for(std::chrono::milliseconds(piece.afterMs));
            pty.write(piece.bytes);
          }
          m_done = true;
        }) {}
  ~PtyFeeder() {
    m_stop = true;
    m_thread.join();
  }
  PtyFeeder(const PtyFeeder&) = delete;
  PtyFeeder& operator=(const PtyFeeder&) = delete;

  bool done() const { return m_done; }

 private:
  std::atomic<bool> m_stop = false;
  std::atomic<bool> m_done = false;
  std::thread m_thread;
};

}  // namespace marvento::test
