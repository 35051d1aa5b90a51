#include "support/ProgramFixture.h"

#include "app/InstanceGuard.h"

#include <QCoreApplication>

namespace marvento::test {

Program::Program() {
  // A test that runs into the second-instance guard by mistake must fail, not end quietly.
  static const bool guarded = [] {
    frmMain::exitProcess() = [] { qFatal("the second-instance guard ended the test program"); };
    return true;
  }();
  (void)guarded;
  State() = Module1{};
  m_window = Main();
}

Program::~Program() {
  delete m_window;
  ReleaseInstanceLock();
  QCoreApplication::processEvents();
}

}  // namespace marvento::test
