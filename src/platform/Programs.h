#pragma once

#include <QString>
#include <QStringList>

namespace marvento {

// Full path of an executable file called `name` in one of the folders of $PATH, searched in
// order; empty if there is none. A name with a slash is not searched: it is returned when it
// names an executable file itself.
QString FindOnPath(const QString& name);

// True if `path` is an absolute path to an existing executable file.
bool IsProgramFile(const QString& path);

// Starts `program` with `arguments` as a separate process and returns at once, without a
// shell: each argument reaches the program as it is, blanks included. False if it could not
// be started.
bool StartDetached(const QString& program, const QStringList& arguments = {});

}  // namespace marvento
