#pragma once

#include "height/HeightTable.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace marvento {

inline const QString kHeightReportName = QStringLiteral("HoeheAusw.txt");

// The whole report: heading with date and own position (the texts of tbMyLoc, tbMyLg, tbMyBr),
// then one row per height with weight, every line ending in CR LF CR LF.
QString HeightReportText(const HeightTable& table, const QDateTime& now, const QString& myLoc,
                         const QString& myLg, const QString& myBr);

// Where the report goes: programDir when it is a writable folder, otherwise homeDir (an
// installed program may not write beside itself).
QString HeightReportFolder(const QString& programDir, const QString& homeDir);
// The same for the running program: its own folder, or the user's home folder.
QString HeightReportFolder();

struct HeightReportResult {
  bool written = false;
  QString path;    // full name of the file, also when it could not be written
  QString reason;  // German account of the failure; empty when written
};

// Replaces folder/HoeheAusw.txt as a whole with the text in UTF-8, or leaves the old file
// untouched when the new one cannot be written in full. A symbolic link or anything else but
// a regular file of that name is refused and left as it is.
HeightReportResult WriteHeightReport(const QString& folder, const QString& text);

// Ctrl+A: writes the report and tells the user where it went, or why it could not be written.
void HeightReport(const HeightTable& table, const QString& myLoc, const QString& myLg,
                  const QString& myBr);
// The same with the folder and the time of the heading given.
void HeightReport(const HeightTable& table, const QString& myLoc, const QString& myLg,
                  const QString& myBr, const QString& folder, const QDateTime& now);

}  // namespace marvento
