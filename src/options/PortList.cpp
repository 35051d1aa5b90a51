#include "options/PortList.h"

#include "platform/CommControl.h"

#include <QComboBox>
#include <QGuiApplication>

namespace marvento {

namespace {

// One failing step of the scan in 20 ports with both steps failing: the control was left
// open by someone, and every port then looks busy.
constexpr int kErrorLimit = 40;

// The hourglass while the scan runs, restored on every way out.
class WaitCursor {
 public:
  WaitCursor() {
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr) {
      QGuiApplication::setOverrideCursor(Qt::WaitCursor);
      m_set = true;
    }
  }
  ~WaitCursor() {
    if (m_set) QGuiApplication::restoreOverrideCursor();
  }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;

 private:
  bool m_set = false;
};

}  // namespace

PortScanOutcome FillPortList(QComboBox& Combo1, CommControl& MSComm1, std::int16_t comNumber) {
  WaitCursor cursor;
  PortScanOutcome outcome;
  outcome.comNumber = comNumber;
  int lastError = 0;
  int selected = -1;
  std::int16_t port = 0;

  // The error step: notes the number and tells whether the scan must stop.
  auto failed = [&](const CommResult& result) {
    if (result.ok()) return false;
    lastError = result.number;
    if (result.number == comPortOpen) outcome.busyPort = port;
    ++outcome.errorCount;
    return outcome.errorCount >= kErrorLimit;
  };
  // A combo box selects its first item by itself; the scan wants its own selection kept.
  auto add = [&](int index) {
    Combo1.insertItem(index, QStringLiteral("Com%1").arg(port));
    Combo1.setItemData(index, PortDevice(port), Qt::ToolTipRole);
    Combo1.setCurrentIndex(selected);
  };

  Combo1.clear();
  int n = 0;
  for (port = 1; port <= 29; ++port) {
    if (failed(MSComm1.setCommPort(port)) || failed(MSComm1.setPortOpen(true))) {
      outcome.comNumber = comNumber;
      outcome.gaveUp = true;
      return outcome;
    }
    if (lastError == comPortOpen) {
      add(n);
      ++n;
    }
    if (lastError != comPortOpen && lastError != comInvalidPort && lastError != comNotOpen) {
      add(n);
      if (failed(MSComm1.setPortOpen(false))) {
        outcome.comNumber = comNumber;
        outcome.gaveUp = true;
        return outcome;
      }
      selected = n;
      Combo1.setCurrentIndex(selected);
      outcome.comNumber = port;
      ++n;
    }
    lastError = 0;
  }
  if (!(comNumber > outcome.comNumber)) outcome.comNumber = comNumber;
  Combo1.setCurrentIndex(Combo1.count() - 1);
  return outcome;
}

}  // namespace marvento
