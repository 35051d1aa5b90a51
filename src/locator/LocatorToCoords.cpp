#include "locator/LocatorToCoords.h"

namespace marvento {

namespace {

constexpr qsizetype kLongest = 10;

// Character classes of the ten positions, by code: capitals and digits only.
struct CharClass {
  char16_t first;
  char16_t last;
};
constexpr CharClass kField = {u'A', u'R'};
constexpr CharClass kDigit = {u'0', u'9'};
constexpr CharClass kSub = {u'A', u'X'};
constexpr CharClass kPositions[kLongest] = {kField, kField, kDigit, kDigit, kSub,
                                            kSub,   kDigit, kDigit, kSub,   kSub};

// A position behind the end has code 0, which no class admits.
int codeAt(QStringView text, qsizetype i) {
  return i < text.size() ? text[i].unicode() : 0;
}

bool fits(int code, qsizetype i) {
  return code >= kPositions[i].first && code <= kPositions[i].last;
}

}  // namespace

LocatorDecode DecodeLocator(QStringView text) {
  const QStringView head = text.left(kLongest);
  LocatorDecode out;
  out.shown = head.toString();
  const qsizetype n = head.size();

  int c[kLongest + 1] = {};  // c[1] to c[10], as the positions are counted
  for (qsizetype i = 0; i < kLongest; ++i) c[i + 1] = codeAt(head, i);

  for (qsizetype i = 0; i < 6; ++i) {
    if (!fits(c[i + 1], i)) {
      out.status = LocatorDecode::BadHead;
      return out;
    }
  }
  const double digit3 = c[3] - 48;
  const double digit4 = c[4] - 48;

  // The sums run strictly left to right and the half-cell constants keep these exact
  // digits: the last bits of the results, and with them the way back to the same locator,
  // depend on both.
  out.Br = ((c[2] - 65) * 10 - 90) + digit4 + (c[6] - 65) / 24.0 + 0.0208333333333334;
  out.Lg = digit3 * 2 + ((c[1] - 65) * 20 - 180) + (c[5] - 65) / 12.0 + 0.0416666666666667;
  if (n <= 6) return out;

  for (qsizetype i = 6; i < n; ++i) {
    if (!fits(c[i + 1], i)) {
      out.status = LocatorDecode::BadTail;
      return out;
    }
  }
  // An absent position adds nothing; from seven characters on the point is the
  // south-west corner of the smallest cell given, without a centre offset.
  auto part = [&](int pos, int zero, double divisor) {
    return pos <= n ? (c[pos] - zero) / divisor : 0.0;
  };
  out.Br =
      digit4 + ((c[2] - 65) * 10 - 90) + (c[6] - 65) / 24.0 + part(8, 48, 240) + part(10, 65, 5760);
  out.Lg = digit3 * 2 + ((c[1] - 65) * 20 - 180) + (c[5] - 65) / 12.0 + part(7, 48, 120) +
           part(9, 65, 2880);
  return out;
}

}  // namespace marvento
