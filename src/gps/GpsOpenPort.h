#pragma once

#include "gps/SentenceScanner.h"

#include <QString>

#include <cstdint>

class QLabel;

namespace marvento {

class CommControl;
struct Module1;

// How long an exchange waits, in milliseconds: 0.004 / sqrt(baud) days (4.99 s at 4800).
double ExchangeWaitMs(double baud);

// How long an exchange may run on after a chunk with "$GP" but no known sentence name:
// 0.00001 days.
inline constexpr double kRearmMs = 864.0;

// Chunks are taken only once more than this many characters wait.
inline constexpr int kChunkThreshold = 210;

// One serial exchange on MSComm1: open the port, read until a whole sentence of a known
// type stands in the receive text or the wait runs out, close the port. Returns the
// sentence, a failure text beginning with "!" (reason without the mark:
// "Zur Zeit kein GPS-Empfang", "Falsche Daten empfangen", "Bitte andere Schnittstelle
// auswählen", or the serial control's own description) or "Keine gültigen GPS-Daten".
// rawBuffer is set as SentenceScanner::rawBuffer on success and emptied otherwise.
// Clears lbInfo first; asks before using the port that the port check found busy.
// The wait blocks on the port and handles no events.
QString GpsOpenPort(CommControl& MSComm1, const Module1& state, QLabel* lbInfo, std::int16_t Port,
                    const QString& Settings, QString& RawBuffer);

}  // namespace marvento
