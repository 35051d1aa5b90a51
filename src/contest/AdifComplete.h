#pragma once

#include "contest/EdiCheck.h"
#include "distance/StationPair.h"

#include <QIODevice>
#include <QString>
#include <QStringView>

#include <optional>

namespace marvento {

// The centre of the smallest cell a locator of 4, 6, 8 or 10 characters names (any case);
// an odd length counts to its last even position. Unset for anything else.
std::optional<GeoPoint> LocatorCentre(QStringView locator);

struct AdifOptions {
  QString locator;       // own locator where a QSO gives no MY_GRIDSQUARE
  bool replace = false;  // replace DISTANCE and ANT_AZ already present
};

struct AdifResult {
  QString error;  // German; empty on success
  qint64 records = 0;
  qint64 completed = 0;  // records that gained or changed a field
  qint64 kept = 0;       // records whose fields were present and kept
  qint64 noGrid = 0;     // records without a usable GRIDSQUARE
  qint64 noOwn = 0;      // records without an own locator
  qint64 tooLong = 0;    // records too long to hold, passed through unchanged
  bool ok() const { return error.isEmpty(); }
  QStringList report() const;
};

// Copies an ADIF (.adi) stream, adding DISTANCE (km, WGS84) and ANT_AZ (degrees) to each
// record with both locators; every other byte stays as it was.
AdifResult CompleteAdif(QIODevice& in, QIODevice& out, const AdifOptions& options,
                        const EdiProgress& progress = {});
// The same from file to file; the new file appears whole or not at all.
AdifResult CompleteAdifFile(const QString& inPath, const QString& outPath,
                            const AdifOptions& options, const EdiProgress& progress = {});

}  // namespace marvento
