#pragma once

#include <QHash>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <optional>

namespace marvento {

// A file of the freedesktop key-file form ([Group] lines, then key=value lines), as desktop
// entries and mimeapps.list are written. Keys keep their order within a group; values are
// taken raw (no escapes undone). Comments and blank lines are dropped.
using KeyFileGroup = QList<QPair<QString, QString>>;
using KeyFile = QHash<QString, KeyFileGroup>;
KeyFile ReadKeyFile(const QString& path);

// The value of `key` in `group`, or empty.
QString KeyValue(const KeyFileGroup& group, const QString& key);

// Undoes the escapes of a string value: \s \n \t \r \\ (an unknown escape stays as it is).
QString UnescapeValue(const QString& value);

// The items of a list value such as "a.desktop;b.desktop;", without empty items.
QStringList SplitList(const QString& value);

// The parts of a desktop entry that starting a program for a file needs.
struct DesktopEntry {
  QString path;
  QString exec;     // the Exec value with string escapes undone
  QString tryExec;  // empty when the entry has none
  QStringList mimeTypes;
  bool application = false;  // Type=Application
  bool hidden = false;       // Hidden=true: the entry counts as deleted
};
std::optional<DesktopEntry> ReadDesktopEntry(const QString& path);

// An Exec command line taken apart: the program, the fixed arguments without field codes,
// and where a file goes among them.
struct ExecCommand {
  QString program;
  QStringList arguments;
  qsizetype fileIndex = 0;  // the file is inserted before arguments[fileIndex]

  // The arguments for opening `file`, which stays one argument whatever it holds.
  QStringList argumentsFor(const QString& file) const;
};

// Splits an Exec value (escapes already undone) by the desktop entry quoting rules:
// blanks separate arguments, "..." quotes one with \" \` \$ \\ escaped inside. The first
// of %f %F %u %U marks where the file goes (at the end if none does); the other field codes
// (%i %c %k and the deprecated ones) are dropped, "%%" stands for "%". Empty when the line
// holds no program or a quote is left open.
std::optional<ExecCommand> ParseExec(const QString& exec);

}  // namespace marvento
