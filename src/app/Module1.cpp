#include "app/Module1.h"

#include <QWidget>

namespace marvento {

Module1& State() {
  static Module1 state;
  return state;
}

void Main() {
  // The window arrives with the main window unit; until then an empty frame stands in.
  auto* window = new QWidget;
  window->setObjectName(QStringLiteral("frmMain"));
  window->setWindowTitle(QStringLiteral("Marvento"));
  window->setAttribute(Qt::WA_DeleteOnClose);
  window->show();
}

}  // namespace marvento
