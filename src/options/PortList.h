#pragma once

#include <cstdint>
#include <optional>

class QComboBox;

namespace marvento {

class CommControl;

struct PortScanOutcome {
  int errorCount = 0;                    // failing steps of the scan, one per missing port normally
  bool gaveUp = false;                   // the scan stopped at its error limit
  std::int16_t comNumber = 0;            // the port number to use from now on
  std::optional<std::int16_t> busyPort;  // a port open in this program, if the scan met one
};

// Probes ports 1 to 29 by opening each with the serial control and lists in Combo1, as
// "Com1" and so on with the device path as tool tip, every port that exists: free ones
// (opened and closed again at once, or failing for another reason than "busy" or
// "missing") and busy ones alike. A busy port is reported; the port number comNumber stays
// unless it lies above the highest free port, which it then becomes. The last entry ends
// up selected. The scan gives up after 40 failing steps, with comNumber kept.
PortScanOutcome FillPortList(QComboBox& Combo1, CommControl& MSComm1, std::int16_t comNumber);

}  // namespace marvento
