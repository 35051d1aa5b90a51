#include "height/HeightReport.h"

#include "platform/Format.h"
#include "platform/MsgBox.h"
#include "platform/PrintZones.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace marvento {

namespace {

const QString kLineEnd = QStringLiteral("\r\n");

// Every line of the report is followed by an empty one.
QString line(const QString& text) {
  return text + kLineEnd + kLineEnd;
}

QString failureReason(const QSaveFile& file) {
  QString what;
  switch (file.error()) {
    case QFileDevice::OpenError:
      what = QStringLiteral("Die Datei ließ sich nicht anlegen oder öffnen.");
      break;
    case QFileDevice::WriteError:
      what = QStringLiteral("Beim Schreiben ist ein Fehler aufgetreten.");
      break;
    case QFileDevice::RenameError:
      what = QStringLiteral("Die alte Datei ließ sich nicht ersetzen.");
      break;
    default: what = QStringLiteral("Das Schreiben ist fehlgeschlagen."); break;
  }
  const QString detail = file.errorString();
  return detail.isEmpty() ? what : what + QStringLiteral(" (") + detail + u')';
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
  result.path = QDir::toNativeSeparators(QDir(folder).filePath(kHeightReportName));
  QSaveFile file(QDir(folder).filePath(kHeightReportName));
  // A folder that is not writable may still hold a writable old report.
  file.setDirectWriteFallback(true);
  if (!file.open(QIODevice::WriteOnly)) {
    result.reason = failureReason(file);
    return result;
  }
  const QByteArray bytes = text.toUtf8();
  if (file.write(bytes) != bytes.size() || !file.commit()) {
    result.reason = failureReason(file);
    file.cancelWriting();
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
