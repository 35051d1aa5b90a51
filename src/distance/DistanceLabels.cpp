// Writing the captions into the window's labels; the numbers and captions stay widget-free.
#include "distance/GreatCircle.h"

#include <QLabel>

namespace marvento {

int ShowDistanceBearing(double MyBr, double FremdBr, double MyLg, double FremdLg,
                        const QString& radiusText, QLabel* lblEntfernung, QLabel* lblRichtung) {
  const DistanceBearing r = SolveDistanceBearing(MyBr, FremdBr, MyLg, FremdLg, radiusText);
  if (r.entfernung) lblEntfernung->setText(*r.entfernung);
  if (r.richtung) lblRichtung->setText(*r.richtung);
  return r.error;
}

}  // namespace marvento
