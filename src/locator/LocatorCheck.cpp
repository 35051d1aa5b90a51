// The message side of the locator check: the decoding itself stays free of widgets.
#include "locator/LocatorToCoords.h"
#include "platform/MsgBox.h"

namespace marvento {

bool LocatorToCoords(const QString& text, double& Lg, double& Br) {
  const LocatorDecode d = DecodeLocator(text);
  if (d.status != LocatorDecode::BadHead) {
    Br = d.Br;
    Lg = d.Lg;
  }
  if (d.status == LocatorDecode::Ok) return true;
  Beep();
  MsgBox(d.shown, vbExclamation, QStringLiteral(" Falscher Locator !"));
  return false;
}

}  // namespace marvento
