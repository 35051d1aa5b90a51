#pragma once

#include "app/Module1.h"
#include "app/frmMain.h"
#include "support/IsolatedUser.h"

#include <QDir>
#include <QObject>

#include <optional>

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

// The base of a window test: each test function runs as a user of its own, in that user's
// folder (where the program writes its logs), with the program started when it asks.
class ProgramTest : public QObject {
 protected:
  frmMain* start() {
    m_program.emplace();
    return m_program->window();
  }
  // For init() and cleanup(); the program goes before its user.
  bool begin() { return QDir::setCurrent(m_user.emplace().path()); }
  void end() {
    m_program.reset();
    QDir::setCurrent(m_startDir);
    m_user.reset();
  }

  const QString m_startDir = QDir::currentPath();
  std::optional<IsolatedUser> m_user;
  std::optional<Program> m_program;
};

}  // namespace marvento::test
