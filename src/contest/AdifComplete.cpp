#include "contest/AdifComplete.h"

#include "contest/LineReader.h"

#include "contest/Wgs84.h"
#include "locator/LocatorToCoords.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace marvento {

namespace {

// A record longer than this is passed through as it is rather than held.
constexpr qsizetype kRecordCap = 8 << 20;

struct Field {
  QByteArray name;  // lower case
  qsizetype tagStart = 0;
  qsizetype dataStart = 0;
  qsizetype dataEnd = 0;
};

bool isLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

class Completer {
 public:
  Completer(QIODevice& in, QIODevice& out, const AdifOptions& options, const EdiProgress& progress)
      : m_in(in), m_out(out), m_options(options), m_progress(progress) {
    m_ownGiven = LocatorCentre(options.locator);
  }

  AdifResult run();

 private:
  bool more();
  void finishRecord(qsizetype eorStart, qsizetype eorEnd);
  void flush(qsizetype upTo);
  std::optional<GeoPoint> position(const char* grid, const char* ext) const;
  const Field* find(const char* name) const;

  QIODevice& m_in;
  QIODevice& m_out;
  const AdifOptions& m_options;
  const EdiProgress& m_progress;
  std::optional<GeoPoint> m_ownGiven;
  QByteArray m_buf;
  qsizetype m_start = 0;  // first byte not yet written
  qsizetype m_p = 0;      // where reading goes on
  bool m_eof = false;
  bool m_passing = false;  // inside a record too long to hold
  qint64 m_read = 0;
  std::vector<Field> m_fields;
  AdifResult m_result;
};

bool Completer::more() {
  if (m_eof) return false;
  if (m_start > 0) {
    // Offsets of the fields held move with the buffer.
    m_buf.remove(0, m_start);
    m_p -= m_start;
    for (Field& f : m_fields) {
      f.tagStart -= m_start;
      f.dataStart -= m_start;
      f.dataEnd -= m_start;
    }
    m_start = 0;
  }
  const qsizetype had = m_buf.size();
  m_buf.resize(had + kReadChunk);
  const qint64 got = m_in.read(m_buf.data() + had, kReadChunk);
  m_buf.resize(had + std::max<qint64>(got, 0));
  if (got < 0)
    m_result.error =
        QStringLiteral("Die Datei ließ sich nicht ganz lesen: %1").arg(m_in.errorString());
  if (got <= 0) m_eof = true;
  m_read += std::max<qint64>(got, 0);
  if (m_progress.step) m_progress.step(m_read, m_in.size());
  return got > 0;
}

void Completer::flush(qsizetype upTo) {
  if (upTo > m_start) m_out.write(m_buf.constData() + m_start, upTo - m_start);
  m_start = upTo;
}

const Field* Completer::find(const char* name) const {
  for (const Field& f : m_fields)
    if (f.name == name) return &f;
  return nullptr;
}

std::optional<GeoPoint> Completer::position(const char* grid, const char* ext) const {
  const Field* g = find(grid);
  if (!g) return std::nullopt;
  const QString head =
      QString::fromLatin1(m_buf.constData() + g->dataStart, g->dataEnd - g->dataStart).trimmed();
  if (const Field* e = find(ext)) {
    const QString tail =
        QString::fromLatin1(m_buf.constData() + e->dataStart, e->dataEnd - e->dataStart).trimmed();
    if (auto p = LocatorCentre(head + tail); p && head.size() == 8) return p;
    if (auto p = LocatorCentre(head + tail); p && head.size() == 6 && !tail.isEmpty()) return p;
  }
  return LocatorCentre(head);
}

void Completer::finishRecord(qsizetype eorStart, qsizetype eorEnd) {
  ++m_result.records;
  const Field* dist = find("distance");
  const Field* az = find("ant_az");
  std::optional<GeoPoint> own = position("my_gridsquare", "my_gridsquare_ext");
  if (!own) own = m_ownGiven;
  const std::optional<GeoPoint> remote = position("gridsquare", "gridsquare_ext");
  const bool wantDist = !dist || m_options.replace;
  const bool wantAz = !az || m_options.replace;
  if (!remote)
    ++m_result.noGrid;
  else if (!own)
    ++m_result.noOwn;
  if (!remote || !own || (!wantDist && !wantAz)) {
    if (remote && own) ++m_result.kept;
    flush(eorEnd);
    return;
  }
  const Wgs84Path p = Wgs84Inverse(*own, *remote);
  // Field names follow the record's own spelling: lower case if its first field is.
  bool lower = false;
  if (!m_fields.empty()) {
    const QByteArrayView first(m_buf.constData() + m_fields.front().tagStart + 1, 2);
    lower = first[0] >= 'a' && first[0] <= 'z';
  }
  const auto tag = [lower](const char* name, const QByteArray& value) {
    const QByteArray n = lower ? QByteArray(name).toLower() : QByteArray(name);
    return '<' + n + ':' + QByteArray::number(value.size()) + '>' + value;
  };
  const QByteArray distText = tag("DISTANCE", QByteArray::number(p.km, 'f', 1));
  double bearing = std::round(p.bearing * 10) / 10;
  if (bearing >= 360.0) bearing -= 360.0;
  const QByteArray azText = tag("ANT_AZ", QByteArray::number(bearing, 'f', 1));

  // Replacements in place, in file order, then the new fields before <EOR>.
  std::vector<std::pair<const Field*, const QByteArray*>> swaps;
  if (dist && wantDist) swaps.emplace_back(dist, &distText);
  if (az && wantAz) swaps.emplace_back(az, &azText);
  std::sort(swaps.begin(), swaps.end(),
            [](const auto& a, const auto& b) { return a.first->tagStart < b.first->tagStart; });
  for (const auto& [field, text] : swaps) {
    flush(field->tagStart);
    m_out.write(*text);
    m_start = field->dataEnd;
  }
  flush(eorStart);
  if (!dist) m_out.write(distText + ' ');
  if (!az) m_out.write(azText + ' ');
  flush(eorEnd);
  ++m_result.completed;
}

AdifResult Completer::run() {
  qint64 skip = 0;  // data bytes of a field in a record being passed through
  for (;;) {
    if (m_progress.cancel && m_progress.cancel->load()) {
      m_result.error = QStringLiteral("Abgebrochen.");
      return m_result;
    }
    if (!m_passing && m_p - m_start > kRecordCap) {
      // Too long to hold: what came so far goes out unchanged, and so does the rest of it.
      ++m_result.tooLong;
      m_passing = true;
      m_fields.clear();
    }
    if (m_passing) flush(m_p);
    if (skip > 0) {
      const qint64 n = std::min<qint64>(skip, m_buf.size() - m_p);
      m_p += n;
      skip -= n;
      flush(m_p);
      if (skip > 0 && !more()) break;
      continue;
    }
    const qsizetype lt = m_buf.indexOf('<', m_p);
    if (lt < 0) {
      m_p = m_buf.size();
      if (!more()) break;
      continue;
    }
    const qsizetype gt = m_buf.indexOf('>', lt);
    if (gt < 0 || gt - lt > 256) {
      if (gt >= 0 || m_buf.size() - lt > 256) {  // no tag is that long: a plain '<'
        m_p = lt + 1;
        continue;
      }
      m_p = lt;
      if (!more()) break;
      continue;
    }
    const QByteArrayView inner(m_buf.constData() + lt + 1, gt - lt - 1);
    const qsizetype colon = inner.indexOf(':');
    const QByteArrayView name = colon < 0 ? inner : inner.first(colon);
    bool nameOk = !name.isEmpty();
    for (char c : name) nameOk = nameOk && isLetterOrDigit(c);
    if (!nameOk) {
      m_p = lt + 1;
      continue;
    }
    const QByteArray lname = name.toByteArray().toLower();
    if (colon < 0) {
      if (lname == "eoh" || (lname == "eor" && m_passing)) {
        flush(gt + 1);
        m_passing = false;
        m_fields.clear();
      } else if (lname == "eor") {
        finishRecord(lt, gt + 1);
        m_fields.clear();
      }
      m_p = gt + 1;
      continue;
    }
    QByteArrayView lenText = inner.sliced(colon + 1);
    if (const qsizetype c2 = lenText.indexOf(':'); c2 >= 0) lenText = lenText.first(c2);
    qint64 len = 0;
    const auto [end, ec] = std::from_chars(lenText.data(), lenText.data() + lenText.size(), len);
    if (ec != std::errc() || end != lenText.data() + lenText.size() || len < 0) {
      m_p = lt + 1;
      continue;
    }
    const qsizetype dataStart = gt + 1;
    // Compared without adding: a field may claim a length near the largest number.
    if (!m_passing && len > kRecordCap - (dataStart - m_start)) {
      ++m_result.tooLong;
      m_passing = true;
      m_fields.clear();
    }
    if (m_passing) {
      m_p = dataStart;
      skip = len;
      continue;
    }
    if (static_cast<qint64>(m_buf.size()) - dataStart < len) {
      m_p = lt;
      if (!more()) break;
      continue;
    }
    m_fields.push_back({lname, lt, dataStart, dataStart + static_cast<qsizetype>(len)});
    m_p = dataStart + len;
  }
  // Whatever is left (a record without <EOR>, a cut field) stays as it is.
  flush(m_buf.size());
  return m_result;
}

}  // namespace

std::optional<GeoPoint> LocatorCentre(QStringView locator) {
  qsizetype n = std::min<qsizetype>(locator.size(), 10);
  n -= n % 2;
  if (n < 4) return std::nullopt;
  QString text = locator.left(n).toString().toUpper();
  if (n == 4) text += QStringLiteral("AA");
  const LocatorDecode d = DecodeLocator(text);
  if (d.status != LocatorDecode::Ok) return std::nullopt;
  switch (n) {
    case 4:  // from the centre of subsquare AA to the centre of the square
      return GeoPoint{d.Br - 1.0 / 48 + 0.5, d.Lg - 1.0 / 24 + 1.0};
    case 6: return GeoPoint{d.Br, d.Lg};
    case 8: return GeoPoint{d.Br + 1.0 / 480, d.Lg + 1.0 / 240};
    default: return GeoPoint{d.Br + 1.0 / 11520, d.Lg + 1.0 / 5760};
  }
}

AdifResult CompleteAdif(QIODevice& in, QIODevice& out, const AdifOptions& options,
                        const EdiProgress& progress) {
  Completer c(in, out, options, progress);
  return c.run();
}

AdifResult CompleteAdifFile(const QString& inPath, const QString& outPath,
                            const AdifOptions& options, const EdiProgress& progress) {
  AdifResult r;
  const QFileInfo inInfo(inPath), outInfo(outPath);
  if (outInfo.exists() && inInfo.canonicalFilePath() == outInfo.canonicalFilePath()) {
    r.error =
        QStringLiteral("Das Original bleibt unverändert: bitte einen anderen Dateinamen wählen.");
    return r;
  }
  if (!options.locator.isEmpty() && !LocatorCentre(options.locator)) {
    r.error = QStringLiteral("Der eigene Locator ist ungültig: %1").arg(options.locator);
    return r;
  }
  QFile in(inPath);
  if (!in.open(QIODevice::ReadOnly)) {
    r.error = QStringLiteral("%1 lässt sich nicht öffnen: %2").arg(inPath, in.errorString());
    return r;
  }
  QSaveFile out(outPath);
  if (!out.open(QIODevice::WriteOnly)) {
    r.error = QStringLiteral("%1 lässt sich nicht anlegen: %2").arg(outPath, out.errorString());
    return r;
  }
  r = CompleteAdif(in, out, options, progress);
  if (!r.ok()) {
    out.cancelWriting();
    return r;
  }
  if (!out.commit())
    r.error = QStringLiteral("%1 ließ sich nicht schreiben: %2").arg(outPath, out.errorString());
  return r;
}

QStringList AdifResult::report() const {
  QStringList out;
  if (!ok()) {
    out << error;
    return out;
  }
  out << QStringLiteral("QSOs: %1, ergänzt: %2, Angaben schon vorhanden: %3")
             .arg(records)
             .arg(completed)
             .arg(kept);
  if (noGrid) out << QStringLiteral("Ohne brauchbaren GRIDSQUARE: %1").arg(noGrid);
  if (noOwn)
    out << QStringLiteral("Ohne eigenen Locator (MY_GRIDSQUARE fehlt, keiner angegeben): %1")
               .arg(noOwn);
  if (tooLong)
    out << QStringLiteral("Zu lang zum Auswerten, unverändert übernommen: %1").arg(tooLong);
  return out;
}

}  // namespace marvento
