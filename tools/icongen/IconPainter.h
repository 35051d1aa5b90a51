#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

#include <span>

namespace marvento::icongen {

// The tool bar's images by the key of their button, in the order of the bar.
QStringList ToolbarKeys();
// The pixel sizes each tool bar image is drawn at.
std::span<const int> ToolbarSizes();
// The pixel sizes of the program's own icon, for the window and the About box.
std::span<const int> AppIconSizes();

// One tool bar image, SIZE x SIZE pixels, drawn on a 16 x 16 grid scaled to the size, in
// premultiplied ARGB. An unknown key gives a null image.
QImage PaintToolbarIcon(const QString& key, int size);

// The program's own icon at SIZE x SIZE pixels: a globe with a great-circle path between two
// stations.
QImage PaintAppIcon(int size);

// Writes every image above as DIR/toolbar/<key>/<size>.png and DIR/app/<size>.png, and
// DIR/icons.qrc listing them under the prefix /icons. False with a message when a file
// cannot be written.
bool WriteIconResources(const QString& dir, QString* error);

}  // namespace marvento::icongen
