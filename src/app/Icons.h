#pragma once

#include <QIcon>
#include <QString>

namespace marvento {

// The tool bar images: "Neu", "Rechnen", "Rotor", "Beenden", "Grundeinstellungen", "Info", "Hilfe",
// at 16, 24, 32 and 48 pixels. An unknown key gives an empty icon.
QIcon ToolbarIcon(const QString& key);

// The program's own icon: a globe with a great-circle path between two stations, at 16 to
// 256 pixels.
QIcon AppIcon();

}  // namespace marvento
