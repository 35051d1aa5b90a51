// The EDI log reader, its check and its correction.
#include "FuzzSupport.h"
#include "Trickle.h"
#include "contest/EdiCheck.h"
#include "contest/EdiFix.h"

#include <QBuffer>

using namespace marvento;
using marvento::fuzz::Check;

namespace {

QString num(qint64 v) {
  return QString::number(v);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const QByteArray bytes(reinterpret_cast<const char*>(data) + 1, static_cast<qsizetype>(size - 1));
  EdiProgress options;
  // A small cap makes long lines of short inputs: they must be named and kept whole.
  options.lineCap = 24 + data[0] % 120;

  QBuffer whole;
  whole.setData(bytes);
  whole.open(QIODevice::ReadOnly);
  const EdiCheck log = CheckEdi(whole, options);
  fuzz::Trickle pieces(bytes, data[0], 7);
  const EdiCheck again = CheckEdi(pieces, options);
  Check(log.error == again.error && log.qsos.size() == again.qsos.size() &&
            log.pointsTotal == again.pointsTotal && log.claimedTotal == again.claimedTotal &&
            log.malformed.size() == again.malformed.size() && log.lines == again.lines,
        "reading in pieces changes nothing", num(log.lines) + u' ' + num(again.lines));
  if (!log.ok()) return 0;

  qint64 sum = 0;
  for (const EdiQso& q : log.qsos) {
    Check(q.points >= 0 && q.points <= 20100, "points lie within half the earth", num(q.points));
    if (q.kind == EdiQso::Duplicate || q.kind == EdiQso::BadLocator)
      Check(q.points == 0, "a duplicate or a bad locator scores nothing");
    else
      Check(q.points >= 1, "a valid QSO scores at least 1");
    sum += q.points;
  }
  Check(sum == log.pointsTotal, "the total is the sum of the records");

  // The corrected log checks clean, keeps its lines, and changes only the lines it corrects.
  QBuffer fixed;
  fixed.open(QIODevice::WriteOnly);
  whole.seek(0);
  const QString error = FixEdi(whole, fixed, log, options);
  Check(error.isEmpty(), "a log that was read can be corrected", error);
  const QByteArray out = fixed.data();
  QBuffer reread;
  reread.setData(out);
  reread.open(QIODevice::ReadOnly);
  const EdiCheck after = CheckEdi(reread, options);
  Check(after.ok() && after.allHold(), "the corrected log checks clean",
        after.report(5).join(u'\n'));
  Check(after.qsos.size() == log.qsos.size() && after.pointsTotal == log.pointsTotal,
        "the correction keeps every record");
  const QList<QByteArray> a = bytes.split('\n');
  const QList<QByteArray> b = out.split('\n');
  Check(a.size() == b.size(), "the correction keeps the number of lines",
        num(a.size()) + u' ' + num(b.size()));
  QList<qint64> touched = {log.cqsop.line, log.cwwls.line, log.codxc.line};
  for (const EdiQso& q : log.qsos) touched << q.line;
  for (qsizetype i = 0; i < a.size(); ++i) {
    if (a[i] != b[i])
      Check(touched.contains(i + 1), "only record and total lines change", num(i + 1));
  }
  if (log.allHold()) Check(out == bytes, "a log that holds is copied byte for byte");
  return 0;
}
