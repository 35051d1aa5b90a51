#pragma once

#include <QGuiApplication>
#include <QScreen>

#include <cmath>

namespace marvento {

// Window layouts are drawn on a grid of twips (1440 to the inch): 15 twips to a pixel at
// 96 logical dots per inch.
inline double LogicalDpi() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen ? screen->logicalDotsPerInchY() : 96.0;
}

inline int TwipsToPx(double twips) {
  return static_cast<int>(std::lround(twips * LogicalDpi() / 1440.0));
}

inline double PxToTwips(int px) {
  return px * 1440.0 / LogicalDpi();
}

}  // namespace marvento
