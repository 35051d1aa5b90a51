#pragma once

#include "distance/StationPair.h"

#include <QStringView>

#include <optional>

namespace marvento {

// Kilometres per degree of great-circle arc in the IARU Region 1 contest rule.
inline constexpr double kIaruKmPerDegree = 111.2;

// The centre of a 6-character square, with the sine and cosine of its latitude kept for the
// many distances a log measures from one station.
struct ContestSquare {
  char key[6] = {};  // the six characters, capitals
  GeoPoint centre;
  double sinLat = 0;
  double cosLat = 1;
  bool operator==(const ContestSquare& other) const;
};

// The 6-character square of a locator of 6 to 10 characters (any case; only the first six
// count). Unset for anything shorter or not a locator.
std::optional<ContestSquare> SquareOf(QStringView locator);
std::optional<ContestSquare> SquareOfLatin1(const char* text, qsizetype size);

// Great-circle distance of the two centres in kilometres on the rule's sphere.
double IaruKm(const ContestSquare& a, const ContestSquare& b);

// Whole kilometres, truncated, plus one; the same square gives 1.
int IaruPoints(const ContestSquare& a, const ContestSquare& b);

// The rule on two locator texts; 0 when either is not a locator of six characters or more.
int IaruPoints(QStringView a, QStringView b);

}  // namespace marvento
