#include "contest/EdiFix.h"

#include "contest/LineReader.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace marvento {

namespace {

// The line with the bytes of its field `index` (0-based, ';' separated) replaced.
QByteArray withField(const QByteArray& line, int index, const QByteArray& value) {
  qsizetype from = 0;
  for (int i = 0; i < index; ++i) {
    from = line.indexOf(';', from);
    if (from < 0) return line;
    ++from;
  }
  qsizetype to = line.indexOf(';', from);
  if (to < 0) to = line.size();
  return line.left(from) + value + line.mid(to);
}

// A header line "Key=value   " with the value replaced; the key as written and any trailing
// blanks stay.
QByteArray withValue(const QByteArray& line, const QByteArray& value) {
  const qsizetype eq = line.indexOf('=');
  if (eq < 0) return line;
  qsizetype end = line.size();
  while (end > eq + 1 && (line[end - 1] == ' ' || line[end - 1] == '\t' || line[end - 1] == '\r'))
    --end;
  return line.left(eq + 1) + value + line.mid(end);
}

}  // namespace

QString FixEdi(QIODevice& in, QIODevice& out, const EdiCheck& log, const EdiProgress& progress) {
  if (!log.ok()) return log.error;
  LineReader reader(in, progress.lineCap);
  reader.setPassThrough([&out](QByteArrayView bytes) { out.write(bytes.data(), bytes.size()); });
  LineReader::Line line;
  size_t next = 0;  // the next record by line number
  const qint64 total = in.size();
  qint64 nextStep = 0;
  while (reader.next(line)) {
    if (progress.step && reader.position() >= nextStep) {
      progress.step(reader.position(), total);
      nextStep = reader.position() + (1 << 20);
    }
    if (progress.cancel && progress.cancel->load()) return QStringLiteral("Abgebrochen.");
    if (line.cut) continue;  // already passed through
    QByteArray text = line.text;
    while (next < log.qsos.size() && log.qsos[next].line < line.number) ++next;
    if (next < log.qsos.size() && log.qsos[next].line == line.number) {
      const EdiQso& q = log.qsos[next];
      if (!q.holds()) text = withField(text, 10, QByteArray::number(q.points));
    } else if (line.number == log.cqsop.line && !log.cqsopHolds()) {
      text = withValue(text, log.wantCqsop());
    } else if (line.number == log.cwwls.line && !log.cwwlsHolds()) {
      text = withValue(text, log.wantCwwls());
    } else if (line.number == log.codxc.line && !log.codxcHolds()) {
      text = withValue(text, log.wantCodxc());
    }
    out.write(text);
    out.write(line.eol);
  }
  if (reader.failed())
    return QStringLiteral("Die Datei ließ sich nicht ganz lesen: %1").arg(in.errorString());
  return {};
}

QString FixEdi(const QString& inPath, const QString& outPath, const EdiCheck& log,
               const EdiProgress& progress) {
  if (!log.ok()) return log.error;
  const QFileInfo inInfo(inPath), outInfo(outPath);
  if (outInfo.exists() && inInfo.canonicalFilePath() == outInfo.canonicalFilePath())
    return QStringLiteral(
        "Das Original bleibt unverändert: bitte einen anderen Dateinamen wählen.");
  QFile in(inPath);
  if (!in.open(QIODevice::ReadOnly))
    return QStringLiteral("%1 lässt sich nicht öffnen: %2").arg(inPath, in.errorString());
  QSaveFile out(outPath);
  if (!out.open(QIODevice::WriteOnly))
    return QStringLiteral("%1 lässt sich nicht anlegen: %2").arg(outPath, out.errorString());
  if (const QString error = FixEdi(in, out, log, progress); !error.isEmpty()) {
    out.cancelWriting();
    return error;
  }
  if (!out.commit())
    return QStringLiteral("%1 ließ sich nicht schreiben: %2").arg(outPath, out.errorString());
  return {};
}

}  // namespace marvento
