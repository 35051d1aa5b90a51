#pragma once

#include <QString>
#include <QStringView>

namespace marvento {

// Outcome of checking and decoding a Maidenhead locator of 6 to 10 characters.
struct LocatorDecode {
  enum Status { Ok, BadHead, BadTail };
  Status status = Ok;
  // Decimal degrees, east and north positive. A 6-character locator decodes to the centre
  // of its subsquare, a longer one to the south-west corner of its smallest cell. After
  // BadTail they hold the 6-character centre; after BadHead they are not set.
  double Lg = 0;
  double Br = 0;
  QString shown;  // the text as looked at: its first 10 characters
};

// Pure check and decoding; capitals only (the caller upper-cases).
LocatorDecode DecodeLocator(QStringView text);

}  // namespace marvento
