// Compiled with the core's include path only: it must not find a widget header. The ctest
// "core_has_no_widgets" passes only when this fails for exactly that reason.
#include <QWidget>

int probe() {
  return QWidget().width();
}
