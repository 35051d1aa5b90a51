#pragma once

#include "app/Module1.h"
#include "app/frmMain.h"
#include "support/IsolatedUser.h"

namespace marvento::test {

// Runs Main() on a fresh state record and removes the window again at the end, without
// the closing question.
class Program {
 public:
  Program();
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  frmMain* window() const { return m_window; }
  Module1& state() const { return State(); }

 private:
  frmMain* m_window = nullptr;
};

}  // namespace marvento::test
