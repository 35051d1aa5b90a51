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
      : m_thread([this, &pty, pieces = std::move(pieces)](std::stop_token stop) {
          for (const Piece& piece : pieces) {
            if (stop.stop_requested()) break;
            std::this_thread::sleep_for(std::chrono::milliseconds(piece.afterMs));
            pty.write(piece.bytes);
          }
          m_done = true;
        }) {}

  bool done() const { return m_done; }

 private:
  std::atomic<bool> m_done = false;
  std::jthread m_thread;  // asked to stop and joined when the feeder goes
};

}  // namespace marvento::test
