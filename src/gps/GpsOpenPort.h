#pragma once

#include "gps/SerialExchange.h"

#include <QString>

#include <cstdint>

class QLabel;

namespace marvento {

class CommControl;
struct Module1;

// One serial exchange run to its end, for callers that have no window to keep alive (the
// sentence corpus check, the benchmark). Returns the sentence, or "!" and the reason;
// rawBuffer as ExchangeResult::rawBuffer. Clears lbInfo first. It waits in an event loop of
// its own, so the window's poll never calls it: that one drives a SerialExchange directly.
QString GpsOpenPort(CommControl& MSComm1, const Module1& state, QLabel* lbInfo, std::int16_t Port,
                    const QString& Settings, QString& RawBuffer);

}  // namespace marvento
