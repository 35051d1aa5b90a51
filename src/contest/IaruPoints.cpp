#include "contest/IaruPoints.h"

#include "locator/LocatorToCoords.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace marvento {

namespace {

constexpr double kRad = std::numbers::pi / 180.0;

std::optional<ContestSquare> squareOf(const char16_t* six) {
  const LocatorDecode d = DecodeLocator(QStringView(six, 6));
  if (d.status != LocatorDecode::Ok) return std::nullopt;
  ContestSquare s;
  for (int i = 0; i < 6; ++i) s.key[i] = static_cast<char>(six[i]);
  s.centre = {d.Br, d.Lg};
  s.sinLat = std::sin(d.Br * kRad);
  s.cosLat = std::cos(d.Br * kRad);
  return s;
}

char16_t upper(char16_t c) {
  return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
}

}  // namespace

bool ContestSquare::operator==(const ContestSquare& other) const {
  return std::memcmp(key, other.key, sizeof key) == 0;
}

std::optional<ContestSquare> SquareOf(QStringView locator) {
  if (locator.size() < 6) return std::nullopt;
  char16_t six[6];
  for (int i = 0; i < 6; ++i) six[i] = upper(locator[i].unicode());
  return squareOf(six);
}

std::optional<ContestSquare> SquareOfLatin1(const char* text, qsizetype size) {
  if (size < 6) return std::nullopt;
  char16_t six[6];
  for (int i = 0; i < 6; ++i) six[i] = upper(static_cast<unsigned char>(text[i]));
  return squareOf(six);
}

double IaruKm(const ContestSquare& a, const ContestSquare& b) {
  // Haversine: exact to the last bits for neighbouring squares, where the truncation to
  // whole kilometres is most sensitive.
  const double dLat = (b.centre.lat - a.centre.lat) * kRad;
  const double dLon = (b.centre.lon - a.centre.lon) * kRad;
  const double sLat = std::sin(dLat / 2);
  const double sLon = std::sin(dLon / 2);
  const double h = std::clamp(sLat * sLat + a.cosLat * b.cosLat * sLon * sLon, 0.0, 1.0);
  return 2 * std::asin(std::sqrt(h)) / kRad * kIaruKmPerDegree;
}

int IaruPoints(const ContestSquare& a, const ContestSquare& b) {
  if (a == b) return 1;
  return static_cast<int>(std::floor(IaruKm(a, b))) + 1;
}

int IaruPoints(QStringView a, QStringView b) {
  const auto sa = SquareOf(a);
  const auto sb = SquareOf(b);
  return sa && sb ? IaruPoints(*sa, *sb) : 0;
}

}  // namespace marvento
