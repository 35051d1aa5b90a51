#pragma once

#include <QString>

#include "platform/DesktopEntry.h"

namespace marvento {

// The program that opens a file, with the fixed arguments of its command line. Its program is
// a full path when it was found on PATH, and empty when no program is associated.
using Viewer = ExecCommand;

// The help command: opens "Marvento.pdf" in `appDir` (the program's folder) with the
// desktop's PDF viewer and returns at once. Tells the user when the file is missing or no
// viewer can be found; a viewer that fails to start is not reported.
void ShowHelp(const QString& appDir);

// True if `file` exists as a file; otherwise tells the user so and gives false.
bool FileFound(const QString& file);

// The program registered for the type of `file` (by its name, e.g. application/pdf) in the
// freedesktop MIME associations, its program looked up on PATH. A program that is not on
// PATH stays a bare name, which IsProgramFile then refuses. Empty program when none is
// associated, or when the file would be its own program.
Viewer FindViewer(const QString& file);

// Starts the viewer on `file`, passed as one argument, without waiting. False if it could not
// be started.
bool OpenWithViewer(const Viewer& viewer, const QString& file);

}  // namespace marvento
