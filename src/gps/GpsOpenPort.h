#pragma once

#include "gps/SerialExchange.h"

#include <QString>

#include <cstdint>

class QLabel;

namespace marvento {

class CommControl;

// One serial exchange run to its end, for callers that have no window to keep alive (the
// sentence corpus check). busyPort is the port the last scan found open in this program.
// Clears lbInfo first. It waits in an event loop of its own, so the window's poll never
// calls it: that one drives a SerialExchange directly.
ExchangeResult GpsOpenPort(CommControl& MSComm1, std::int16_t busyPort, QLabel* lbInfo,
                           std::int16_t Port, const QString& Settings);

}  // namespace marvento
