#include "contest/EdiCheck.h"

#include "contest/LineReader.h"

#include <QFile>
#include <QSet>

#include <charconv>
#include <cmath>
#include <numbers>

namespace marvento {

namespace {

constexpr int kFields = 15;
constexpr qsizetype kRoom = 16;  // bytes a corrected record may grow by
// Room for a corrected header total: a 64-bit number, or CODXC's call, square and points.
constexpr qsizetype kHeaderRoom = 48;

QByteArrayView trimmed(QByteArrayView v) {
  while (!v.isEmpty() && (v.front() == ' ' || v.front() == '\t' || v.front() == '\r'))
    v = v.sliced(1);
  while (!v.isEmpty() && (v.back() == ' ' || v.back() == '\t' || v.back() == '\r')) v.chop(1);
  return v;
}

std::optional<int> number(QByteArrayView v) {
  v = trimmed(v);
  if (v.isEmpty()) return std::nullopt;
  int n = 0;
  const auto [end, ec] = std::from_chars(v.data(), v.data() + v.size(), n);
  if (ec != std::errc() || end != v.data() + v.size()) return std::nullopt;
  return n;
}

bool startsWithNoCase(QByteArrayView text, QByteArrayView prefix) {
  return text.size() >= prefix.size() &&
         qstrnicmp(text.data(), prefix.size(), prefix.data(), prefix.size()) == 0;
}

bool equalNoCase(QByteArrayView a, QByteArrayView b) {
  return a.size() == b.size() && startsWithNoCase(a, b);
}

// The first ';' or ',' separated part of a header value.
QByteArrayView firstPart(QByteArrayView v) {
  for (qsizetype i = 0; i < v.size(); ++i)
    if (v[i] == ';' || v[i] == ',') return v.first(i);
  return v;
}

double bearingOnSphere(const ContestSquare& a, const ContestSquare& b) {
  constexpr double rad = std::numbers::pi / 180.0;
  const double dLon = (b.centre.lon - a.centre.lon) * rad;
  const double y = std::sin(dLon) * b.cosLat;
  const double x = a.cosLat * b.sinLat - a.sinLat * b.cosLat * std::cos(dLon);
  double deg = std::atan2(y, x) / rad;
  if (deg < 0) deg += 360.0;
  return deg;
}

enum class Section { Before, Header, Remarks, Records, Other };

QString text(QByteArrayView v) {
  return QString::fromLatin1(v);
}

}  // namespace

EdiCheck CheckEdi(QIODevice& in, const EdiProgress& progress) {
  EdiCheck log;
  LineReader reader(in, progress.lineCap);
  LineReader::Line line;
  Section section = Section::Before;
  bool sawStart = false;
  const qint64 total = in.size();
  qint64 nextStep = 0;
  QSet<quint32> squares;
  std::vector<QByteArrayView> fields;
  fields.reserve(kFields + 1);

  while (reader.next(line)) {
    log.lines = line.number;
    if (progress.step && reader.position() >= nextStep) {
      progress.step(reader.position(), total);
      nextStep = reader.position() + (1 << 20);
    }
    if (progress.cancel && progress.cancel->load()) {
      log.error = QStringLiteral("Abgebrochen.");
      return log;
    }
    const QByteArrayView t = trimmed(line.text);
    if (t.startsWith('[') && !line.cut) {
      if (startsWithNoCase(t, "[REG1TEST")) {
        section = Section::Header;
        sawStart = true;
      } else if (!sawStart) {
        section = Section::Before;
      } else if (startsWithNoCase(t, "[REMARKS")) {
        section = Section::Remarks;
      } else if (startsWithNoCase(t, "[QSORECORDS")) {
        section = Section::Records;
      } else if (startsWithNoCase(t, "[END")) {
        section = Section::Other;
        log.sawEnd = true;
      } else {
        section = Section::Other;
      }
      continue;
    }
    if (section == Section::Header) {
      const qsizetype eq = t.indexOf('=');
      if (eq < 0) continue;
      const QByteArrayView key = trimmed(t.first(eq));
      const QByteArray value = trimmed(t.sliced(eq + 1)).toByteArray();
      EdiHeaderValue* slot = nullptr;
      if (equalNoCase(key, "PWWLo")) {
        if (line.cut) continue;
        log.ownLocator = value;
        log.own = SquareOfLatin1(value.constData(), value.size());
      } else if (equalNoCase(key, "CQSOs")) {
        slot = &log.cqsos;
      } else if (equalNoCase(key, "CQSOP")) {
        slot = &log.cqsop;
      } else if (equalNoCase(key, "CWWLs")) {
        slot = &log.cwwls;
      } else if (equalNoCase(key, "CODXC")) {
        slot = &log.codxc;
      }
      if (!slot || slot->line != 0) continue;
      // A total line stays the first of its key even when it is too long to read, or too
      // long to take a corrected value: the corrected file must read the same line again.
      const qsizetype keptPart =
          line.text.size() - (slot == &log.cwwls ? firstPart(value) : value).size();
      const bool tooLong = line.cut || keptPart > progress.lineCap - kHeaderRoom;
      *slot = {line.number, value, tooLong};
      if (tooLong && slot != &log.cqsos)
        log.malformed.emplace_back(line.number,
                                   QStringLiteral("Kopfzeile %1 zu lang, nicht geprüft")
                                       .arg(QString::fromLatin1(key)));
      continue;
    }
    if (section != Section::Records || t.isEmpty()) continue;
    if (line.cut) {
      log.malformed.emplace_back(line.number,
                                 QStringLiteral("Zeile länger als %1 Bytes").arg(progress.lineCap));
      continue;
    }
    fields.clear();
    qsizetype from = 0;
    for (qsizetype i = 0; i <= t.size() && fields.size() <= kFields; ++i) {
      if (i == t.size() || t[i] == ';') {
        fields.push_back(t.sliced(from, i - from));
        from = i + 1;
      }
    }
    if (fields.size() != kFields) {
      log.malformed.emplace_back(
          line.number, fields.size() > kFields
                           ? QStringLiteral("mehr als %1 Felder").arg(kFields)
                           : QStringLiteral("%1 Felder statt %2").arg(fields.size()).arg(kFields));
      continue;
    }
    // Besides its points a record must leave room for the digits of corrected points, so
    // that the corrected file reads the same.
    if (line.text.size() - fields[10].size() > progress.lineCap - kRoom) {
      log.malformed.emplace_back(
          line.number, QStringLiteral("Zeile länger als %1 Bytes").arg(progress.lineCap - kRoom));
      continue;
    }
    EdiQso q;
    q.line = line.number;
    q.date = trimmed(fields[0]);
    q.time = trimmed(fields[1]);
    q.call = trimmed(fields[2]);
    q.locator = trimmed(fields[9]);
    q.claimed = number(fields[10]);
    q.duplicate = equalNoCase(trimmed(fields[14]), "D");
    log.qsos.push_back(std::move(q));
  }
  if (reader.failed()) {
    log.error = QStringLiteral("Die Datei ließ sich nicht ganz lesen: %1").arg(in.errorString());
    return log;
  }
  if (!sawStart) {
    log.error = QStringLiteral("Keine EDI-Datei: die Zeile [REG1TEST;1] fehlt.");
    return log;
  }
  if (!log.own) {
    log.error = log.ownLocator.isEmpty()
                    ? QStringLiteral("Der Kopf nennt keinen eigenen Locator (PWWLo).")
                    : QStringLiteral("Der eigene Locator im Kopf ist ungültig: PWWLo=%1")
                          .arg(text(log.ownLocator));
    return log;
  }

  qint64 valid = 0, noPlusOne = 0, rounded = 0;
  int best = -1;
  for (qint64 i = 0; i < static_cast<qint64>(log.qsos.size()); ++i) {
    EdiQso& q = log.qsos[i];
    const auto sq = SquareOfLatin1(q.locator.constData(), q.locator.size());
    if (sq) {
      q.km = static_cast<float>(IaruKm(*log.own, *sq));
      q.bearing = static_cast<float>(bearingOnSphere(*log.own, *sq));
    }
    if (q.duplicate) {
      q.kind = EdiQso::Duplicate;
      ++log.duplicates;
    } else if (!sq) {
      q.kind = EdiQso::BadLocator;
      ++log.badLocators;
    } else {
      q.points = IaruPoints(*log.own, *sq);
      const int d = q.claimed ? *q.claimed - q.points : q.points;
      q.kind = d == 0 ? EdiQso::Exact : (std::abs(d) == 1 ? EdiQso::OffByOne : EdiQso::Larger);
      ++valid;
      if (q.claimed) {
        const double km = IaruKm(*log.own, *sq);
        const bool same = *log.own == *sq;
        const int c = *q.claimed;
        if (c == static_cast<int>(std::floor(km)) || (same && c == 1)) ++noPlusOne;
        if (c == static_cast<int>(std::lround(km)) || (same && c == 1)) ++rounded;
      }
      squares.insert((quint32(quint8(sq->key[0])) << 24) | (quint32(quint8(sq->key[1])) << 16) |
                     (quint32(quint8(sq->key[2])) << 8) | quint32(quint8(sq->key[3])));
      if (q.points > best) {
        best = q.points;
        log.odx = i;
      }
    }
    if (q.kind == EdiQso::OffByOne) ++log.offByOne;
    if (q.kind == EdiQso::Larger) ++log.larger;
    log.claimedTotal += q.claimed.value_or(0);
    log.pointsTotal += q.points;
  }
  log.squares = squares.size();
  if (log.offByOne > 0 && log.larger == 0 && noPlusOne == valid)
    log.rule = EdiCheck::NoPlusOne;
  else if (log.offByOne > 0 && log.larger == 0 && rounded == valid)
    log.rule = EdiCheck::Rounded;
  else if (valid >= 5 && log.larger * 2 > valid)
    log.rule = EdiCheck::OtherRule;
  if (progress.step) progress.step(total, total);
  return log;
}

EdiCheck CheckEdiFile(const QString& path, const EdiProgress& progress) {
  QFile f(path);
  if (!f.open(QIODevice::ReadOnly)) {
    EdiCheck log;
    log.error = QStringLiteral("%1 lässt sich nicht öffnen: %2").arg(path, f.errorString());
    return log;
  }
  return CheckEdi(f, progress);
}

QByteArray EdiCheck::wantCqsop() const {
  return QByteArray::number(pointsTotal);
}

QByteArray EdiCheck::wantCwwls() const {
  // The count is the first part; the rest (bonus and multiplier) stays as written.
  const qsizetype part = firstPart(cwwls.value).size();
  return QByteArray::number(squares) + cwwls.value.mid(part);
}

QByteArray EdiCheck::wantCodxc() const {
  if (odx < 0) return codxc.value;
  const EdiQso& q = qsos[odx];
  return q.call.toByteArray() + ';' + q.locator.toByteArray().left(6).toUpper() + ';' +
         QByteArray::number(q.points);
}

bool EdiCheck::cqsopHolds() const {
  return cqsop.line == 0 || cqsop.tooLong || number(firstPart(cqsop.value)) == pointsTotal;
}

bool EdiCheck::cwwlsHolds() const {
  return cwwls.line == 0 || cwwls.tooLong || number(firstPart(cwwls.value)) == squares;
}

bool EdiCheck::codxcHolds() const {
  if (codxc.line == 0 || codxc.tooLong || odx < 0) return true;
  const QList<QByteArray> parts = codxc.value.split(';');
  if (parts.size() < 3 || number(parts[2]) != qsos[odx].points) return false;
  // Any of several QSOs at the greatest distance will do.
  for (const EdiQso& q : qsos) {
    if (q.kind == EdiQso::Duplicate || q.kind == EdiQso::BadLocator || q.points != qsos[odx].points)
      continue;
    if (equalNoCase(trimmed(parts[0]), q.call) &&
        equalNoCase(trimmed(parts[1]).first(std::min<qsizetype>(6, trimmed(parts[1]).size())),
                    QByteArrayView(q.locator).first(std::min<qsizetype>(6, q.locator.size()))))
      return true;
  }
  return false;
}

bool EdiCheck::allHold() const {
  if (!ok()) return false;
  for (const EdiQso& q : qsos)
    if (!q.holds()) return false;
  return cqsopHolds() && cwwlsHolds() && codxcHolds();
}

QStringList EdiCheck::report(int listLimit) const {
  QStringList out;
  if (!ok()) {
    out << error;
    return out;
  }
  const QString unchecked = QStringLiteral("Zeile zu lang, nicht geprüft");
  const auto claim = [](const EdiQso& q) {
    return q.claimed ? QString::number(*q.claimed) : QStringLiteral("keine Zahl");
  };
  const auto row = [&](const EdiQso& q) {
    return QStringLiteral("  Zeile %1: %2 %3 %4 beansprucht %5, nachgerechnet %6")
        .arg(q.line)
        .arg(text(q.time), text(q.call), text(q.locator), claim(q))
        .arg(q.points);
  };
  out << QStringLiteral(
             "QSOs: %1 (davon %2 doppelt, %3 mit ungültigem Locator), eigener Locator %4")
             .arg(qsos.size())
             .arg(duplicates)
             .arg(badLocators)
             .arg(text(ownLocator));
  out << QStringLiteral("Punkte: beansprucht %1, nachgerechnet %2")
             .arg(claimedTotal)
             .arg(pointsTotal);
  if (cqsos.line)
    out << QStringLiteral("CQSOs im Kopf: %1 (QSOs mit Punkten: %2)")
               .arg(text(cqsos.value))
               .arg(static_cast<qint64>(qsos.size()) - duplicates - badLocators);
  if (cqsop.line)
    out << QStringLiteral("CQSOP im Kopf: %1 – %2")
               .arg(text(cqsop.value), cqsop.tooLong ? unchecked
                                       : cqsopHolds()
                                           ? QStringLiteral("stimmt")
                                           : QStringLiteral("nachgerechnet %1").arg(pointsTotal));
  if (odx >= 0) {
    const QString want = text(wantCodxc());
    if (codxc.line)
      out << QStringLiteral("CODXC (ODX) im Kopf: %1 – %2")
                 .arg(text(codxc.value), codxc.tooLong ? unchecked
                                         : codxcHolds()
                                             ? QStringLiteral("stimmt")
                                             : QStringLiteral("aus den QSOs %1").arg(want));
    else
      out << QStringLiteral("ODX aus den QSOs: %1").arg(want);
  }
  out << QStringLiteral("Verschiedene Mittelfelder: %1%2")
             .arg(squares)
             .arg(cwwls.line
                      ? QStringLiteral(" (CWWLs im Kopf: %1%2)")
                            .arg(text(cwwls.value),
                                 cwwls.tooLong ? QStringLiteral(", ") + unchecked
                                 : cwwlsHolds() ? QStringLiteral(", stimmt")
                                                : QStringLiteral(", weicht ab"))
                      : QString());
  const qint64 exact =
      static_cast<qint64>(qsos.size()) - offByOne - larger - badLocators - duplicates;
  out << QStringLiteral("Stimmen genau: %1, um 1 abweichend: %2, größer abweichend: %3")
             .arg(exact)
             .arg(offByOne)
             .arg(larger);

  qint64 listed = 0;
  const auto list = [&](const QString& title, auto&& pick) {
    QStringList rows;
    for (const EdiQso& q : qsos) {
      if (!pick(q)) continue;
      if (listLimit >= 0 && listed >= listLimit) {
        rows << QStringLiteral("  …");
        break;
      }
      rows << row(q);
      ++listed;
    }
    if (!rows.isEmpty()) out << title << rows;
  };
  switch (rule) {
    case NoPlusOne:
      out << QStringLiteral(
                 "Das ganze Log rechnet ohne das +1 der IARU-Regel (%1 QSOs um 1 zu niedrig).")
                 .arg(offByOne);
      break;
    case Rounded:
      out << QStringLiteral(
                 "Das ganze Log rundet die Kilometer, statt abzuschneiden und 1 zuzuzählen "
                 "(%1 QSOs um 1 abweichend).")
                 .arg(offByOne);
      break;
    case OtherRule:
      out << QStringLiteral(
                 "Die beanspruchten Punkte folgen einer anderen Regel (nicht Kilometer nach "
                 "IARU): %1 von %2 QSOs weichen um mehr als 1 ab.")
                 .arg(larger)
                 .arg(qsos.size() - duplicates - badLocators);
      break;
    case Iaru: break;
  }
  if (rule != OtherRule) {
    list(QStringLiteral("Größere Abweichungen (veraltete Punkte, falsche Locatoren):"),
         [](const EdiQso& q) { return q.kind == EdiQso::Larger; });
    if (rule == Iaru)
      list(QStringLiteral("Um 1 abweichend:"),
           [](const EdiQso& q) { return q.kind == EdiQso::OffByOne; });
  }
  list(QStringLiteral("Ungültige Locatoren (0 Punkte):"),
       [](const EdiQso& q) { return q.kind == EdiQso::BadLocator; });
  list(QStringLiteral("Doppelte (D) mit Punkten:"),
       [](const EdiQso& q) { return q.kind == EdiQso::Duplicate && !q.holds(); });
  if (!malformed.empty()) {
    out << QStringLiteral("Nicht auswertbare Zeilen (bleiben unverändert):");
    for (const auto& [line, why] : malformed)
      out << QStringLiteral("  Zeile %1: %2").arg(line).arg(why);
  }
  if (!sawEnd) out << QStringLiteral("Hinweis: die Zeile [END;…] fehlt.");
  out << (allHold() ? QStringLiteral("Ergebnis: alle Angaben stimmen.")
                    : QStringLiteral("Ergebnis: das Log weicht ab."));
  return out;
}

}  // namespace marvento
