#pragma once

#include <QIcon>
#include <QString>

namespace marvento {

// The tool bar images, painted anew at each size: "Neu", "Rechnen", "Beenden",
// "Grundeinstellungen", "Info", "Hilfe". An unknown key gives an empty icon.
QIcon ToolbarIcon(const QString& key);

// The program's own icon: a globe with a great-circle path between two stations.
QIcon AppIcon();
// One rendering of it, for the icon theme files.
QImage AppIconImage(int size);

}  // namespace marvento
