#pragma once

#include "gps/GpsFix.h"
#include "gps/NmeaSentences.h"

#include <QString>

#include <optional>

namespace marvento {

inline const QString kBadPositionText =
    QStringLiteral("Schlechter Empfang oder zu geringe Anzahl an Satelliten !");

// What the height table is given for a GGA sentence with a fix: the height and unit fields
// as they stand, the satellite count in "#0".
struct HeightSampleTexts {
  QString alt;
  QString unit;
  QString sats;
};

// Everything one poll learns from its sentence, before any control is touched.
struct DecodedSentence {
  SentenceKind kind = SentenceKind::Other;
  // lbInfo after the type's own steps; nothing means lbInfo stays as it is (empty, since
  // the exchange has just cleared it).
  std::optional<QString> info;
  std::optional<HeightSampleTexts> heightSample;
  // Decoding went on to time and position (valid status, or a GGA fix).
  bool timeAndPosition = false;
  QString utcText;
  AxisParts lat;
  AxisParts lon;
  QString latSign;  // " " for "N", "-" for anything else
  QString lonSign;  // " " for "E", "-" for anything else
  bool positionGood = false;
  // Empty: lbKurs stays; one blank: lbKurs is cleared; else the course line without time.
  QString kursText;
  QString rmcLine;
  // Speed and course of the RMC sentence in force, the height of a GGA fix in metres; unset
  // when the receiver sent none or one it cannot really have measured (speed 0 to below
  // 1000 kn, course 0 to below 360°, height -1000 to 100000 m).
  std::optional<double> speedKnots;
  std::optional<double> courseDegrees;
  std::optional<double> heightMetres;

  // Whether the time step runs: a UTC field that is a time of day, in a sentence whose
  // position is good.
  bool hasTime() const;
  // lbInfo once decoding is over: the range message replaces what the type wrote.
  std::optional<QString> finalInfo() const;
  // tbMyLg / tbMyBr text: signed decimal degrees in the general form, or
  // sign, degrees "° ", minutes "' ", seconds and a double quote.
  QString lgText(bool gradDezimal) const;
  QString brText(bool gradDezimal) const;
  // The fix this sentence gives the windows that follow the position; nothing without a
  // good position.
  std::optional<GpsFix> fix() const;
};

// Decodes the ruling sentence of a poll by its type, whatever its talker. `rawBuffer` is the
// whole receive text when it held an RMC sentence (for speed and course behind a GGA or GLL),
// else empty. A sentence with a wrong checksum is of no known type.
DecodedSentence DecodeSentence(const QString& sentence, const QString& rawBuffer);

// The first intact RMC sentence of any talker out of the receive text, up to the "$" of the
// next sentence; empty when there is none or it has not ended.
QString FindRmcLine(const QString& rawBuffer);

// The dummy remote station written when tbFremdLoc is empty: the south-west corner of the
// grid, in the decimal sign of the locale like every coordinate the program writes.
struct Placeholders {
  QString loc;
  QString lg;
  QString br;
};
Placeholders RemotePlaceholders(bool gradDezimal);

// "GPS - Antennenhöhe: 545,4 m ü. NN (8)" from the formatted height and satellite texts.
QString HeightLine(const QString& altText, const QString& satText);

// The new caption of lbKurs for a KursText and the time in the second status panel;
// nothing when lbKurs keeps its line.
std::optional<QString> CourseLine(const QString& kursText, const QString& panelTime);

}  // namespace marvento
