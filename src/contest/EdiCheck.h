#pragma once

#include "contest/IaruPoints.h"

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <atomic>
#include <functional>
#include <optional>
#include <vector>

namespace marvento {

// A short field of a record kept in place, without a heap block of its own: a log of a
// million QSOs then holds about 100 bytes for each.
template <int N>
struct ShortText {
  char bytes[N] = {};
  quint8 count = 0;
  ShortText& operator=(QByteArrayView v) {
    count = static_cast<quint8>(std::min<qsizetype>(v.size(), N));
    std::copy_n(v.data(), count, bytes);
    return *this;
  }
  operator QByteArrayView() const { return QByteArrayView(bytes, count); }
  const char* constData() const { return bytes; }
  qsizetype size() const { return count; }
  QByteArray toByteArray() const { return QByteArray(bytes, count); }
};

// One QSO record of an EDI log as checked against the IARU rule.
struct EdiQso {
  enum Kind : quint8 { Exact, OffByOne, Larger, BadLocator, Duplicate };
  qint64 line = 0;
  // As written, trimmed; longer texts keep their head.
  ShortText<8> date, time;
  ShortText<24> call;
  ShortText<12> locator;
  std::optional<int> claimed;  // unset when the field holds no number
  int points = 0;              // by the rule; 0 for a duplicate or a bad locator
  float km = 0;                // on the rule's sphere
  float bearing = 0;           // from the own square's centre, on the sphere
  Kind kind = Exact;
  bool duplicate = false;
  bool holds() const { return claimed && *claimed == points; }
  int difference() const { return claimed ? *claimed - points : -points; }
};

// A header line the correction may rewrite, with its value as written.
struct EdiHeaderValue {
  qint64 line = 0;  // 0: not in the file
  QByteArray value;
  bool tooLong = false;  // named among the unreadable lines, neither checked nor corrected
};

// What reading and checking an EDI (REG1TEST) log found.
struct EdiCheck {
  enum LogRule { Iaru, NoPlusOne, Rounded, OtherRule };
  QString error;  // set when the file could not be read as an EDI log
  qint64 lines = 0;
  QByteArray ownLocator;
  std::optional<ContestSquare> own;
  std::vector<EdiQso> qsos;
  // Record lines with another number of fields than 15, and record or total lines longer
  // than can be read.
  std::vector<std::pair<qint64, QString>> malformed;
  EdiHeaderValue cqsos, cqsop, cwwls, codxc;
  bool sawEnd = false;

  // Figures over the records.
  qint64 duplicates = 0;
  qint64 badLocators = 0;
  qint64 claimedTotal = 0;
  qint64 pointsTotal = 0;
  qint64 squares = 0;  // distinct 4-character squares worked (the WWL multiplier)
  qint64 odx = -1;     // index in qsos of the farthest valid QSO
  qint64 offByOne = 0;
  qint64 larger = 0;
  LogRule rule = Iaru;

  bool ok() const { return error.isEmpty(); }
  // Every record's claim and the header's totals match the recomputed values.
  bool allHold() const;
  // Header values the corrected file carries.
  QByteArray wantCqsop() const;
  QByteArray wantCwwls() const;
  QByteArray wantCodxc() const;
  bool cqsopHolds() const;
  bool cwwlsHolds() const;
  bool codxcHolds() const;
  // Summary and differences in German, larger differences first.
  QStringList report(int listLimit = -1) const;
};

struct EdiProgress {
  std::function<void(qint64 done, qint64 total)> step;  // bytes read so far
  const std::atomic_bool* cancel = nullptr;
  qsizetype lineCap = 1 << 16;  // longer lines keep only their head (a record then is named)
};

// Reads and checks a log; the device must be open for reading.
EdiCheck CheckEdi(QIODevice& in, const EdiProgress& progress = {});
EdiCheck CheckEdiFile(const QString& path, const EdiProgress& progress = {});

}  // namespace marvento
