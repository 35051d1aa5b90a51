#include "height/HeightReport.h"

#include "platform/Format.h"
#include "platform/MsgBox.h"
#include "platform/PrintZones.h"
#include "platform/WriteFailure.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace marvento {

namespace {

const QString kLineEnd = QStringLiteral("\r\n");

// Every line of the report is followed by an empty one.
QString line(const QString& text) {
  return text + kLineEnd + kLineEnd;
}

// Writes all of bytes to fd; 0 or the error number.
int writeAll(int fd, const QByteArray& bytes) {
  qsizetype done = 0;
  while (done < bytes.size()) {
    const ssize_t n =
        ::write(fd, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return n < 0 ? errno : ENOSPC;
    done += n;
  }
  return 0;
}

// 0 when target is missing or a regular file; ELOOP for a symbolic link, EINVAL for any other
// kind. The report replaces only a file of its own kind: a link's target is not touched, and
// the link is not silently turned into a file either.
int refusedTarget(const QByteArray& target) {
  struct stat info {};
  if (::lstat(target.constData(), &info) != 0) return 0;
  if (S_ISLNK(info.st_mode)) return ELOOP;
  return S_ISREG(info.st_mode) ? 0 : EINVAL;
}

}  // namespace

QString HeightReportText(const HeightTable& table, const QDateTime& now, const QString& myLoc,
                         const QString& myLg, const QString& myBr) {
  QString text;
  text += line(QStringLiteral("GPS - Höhenauswertung vom ") +
               now.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss")));
  text += line(QStringLiteral("QTH: ") + myLoc + QStringLiteral(" Lg: ") + myLg +
               QStringLiteral(" Br: ") + myBr);
  text += line(PrintZones({QStringLiteral(" m     "), QStringLiteral("Wertigkeit")}));
  text += line(QString(21, QChar(0x017B)));
  for (std::int32_t i = table.lowerBound(); i <= table.upperBound(); ++i) {
    const float w = table.weight(i);
    if (!(w > 0)) continue;
    text += line(PrintZones(
        {Format(static_cast<float>(i / 10.0), u"###0.0#"), Format(w, u"######0.00###")}));
  }
  return text;
}

QString HeightReportFolder(const QString& programDir, const QString& homeDir) {
  const QFileInfo info(programDir);
  if (!programDir.isEmpty() && info.isDir() && info.isWritable()) return programDir;
  return homeDir;
}

QString HeightReportFolder() {
  return HeightReportFolder(QCoreApplication::applicationDirPath(), QDir::homePath());
}

HeightReportResult WriteHeightReport(const QString& folder, const QString& text) {
  HeightReportResult result;
  const QString target = QDir(folder).filePath(kHeightReportName);
  result.path = QDir::toNativeSeparators(target);

  const QByteArray targetName = QFile::encodeName(target);
  if (const int refused = refusedTarget(targetName)) {
    result.reason = WriteFailureReason(refused);
    return result;
  }

  // The new report goes into a file of its own beside the old one and takes its place only
  // when it is whole: a full disk leaves the old report as it was.
  QByteArray temp = targetName + ".XXXXXX";
  const int fd = ::mkostemp(temp.data(), O_CLOEXEC);
  if (fd < 0) {
    result.reason = WriteFailureReason(errno);
    return result;
  }
  const mode_t mask = ::umask(0);
  ::umask(mask);
  int error = ::fchmod(fd, 0666 & ~mask) == 0 ? 0 : errno;
  if (error == 0) error = writeAll(fd, text.toUtf8());
  if (error == 0 && ::fsync(fd) != 0) error = errno;
  if (::close(fd) != 0 && error == 0) error = errno;
  // A link put there while the report was written is refused as well.
  if (error == 0) error = refusedTarget(targetName);
  if (error == 0 && ::rename(temp.constData(), targetName.constData()) != 0) error = errno;
  if (error != 0) {
    ::unlink(temp.constData());
    result.reason = WriteFailureReason(error);
    return result;
  }
  result.written = true;
  return result;
}

void HeightReport(const HeightTable& table, const QString& myLoc, const QString& myLg,
                  const QString& myBr) {
  HeightReport(table, myLoc, myLg, myBr, HeightReportFolder(), QDateTime::currentDateTime());
}

void HeightReport(const HeightTable& table, const QString& myLoc, const QString& myLg,
                  const QString& myBr, const QString& folder, const QDateTime& now) {
  const HeightReportResult result =
      WriteHeightReport(folder, HeightReportText(table, now, myLoc, myLg, myBr));
  if (result.written) {
    MsgBox(QStringLiteral("Datei ") + result.path + u'\n' + QStringLiteral("erfolgreich erstellt."),
           vbInformation, QStringLiteral("GPS - Höhe"));
    return;
  }
  Beep();
  MsgBox(QStringLiteral("Die Datei ") + result.path + u'\n' +
             QStringLiteral("konnte nicht geschrieben werden:") + u'\n' + result.reason,
         vbExclamation, QStringLiteral(" GPS - Höhe"));
}

}  // namespace marvento
