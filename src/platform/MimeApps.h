#pragma once

#include <QString>
#include <QStringList>

#include <optional>

#include "platform/DesktopEntry.h"

namespace marvento {

// The folders that the freedesktop base directory rules give, read from the environment at
// each call: $XDG_CONFIG_HOME (default ~/.config) then $XDG_CONFIG_DIRS (default /etc/xdg);
// $XDG_DATA_HOME (default ~/.local/share) then $XDG_DATA_DIRS (default
// /usr/local/share:/usr/share). Relative paths in the variables are ignored.
QStringList ConfigDirs();
QStringList DataDirs();

// The association files in the order in which they count, most important first: for the
// config folders and then the applications folders of the data folders, each folder's
// $desktop-mimeapps.list (one per name in $XDG_CURRENT_DESKTOP, lower case) before its
// mimeapps.list; after all of them the legacy defaults.list of the applications folders.
QStringList MimeAppsFiles();

// The desktop entry of the application that opens files of `mimeType`:
// 1. the first installed entry named under [Default Applications] in the files above, taken
//    in order, skipping entries that a more important file removed;
// 2. else the first installed one under [Added Associations], in the same order;
// 3. else the first installed entry whose MimeType lists the type, by folder and then name.
// "Installed" means found in an applications folder (an earlier folder hides a later one of
// the same desktop file ID), of Type=Application, not Hidden, with an Exec line, and with its
// TryExec program present if it names one.
std::optional<DesktopEntry> DefaultApplication(const QString& mimeType);

}  // namespace marvento
