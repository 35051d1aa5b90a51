#pragma once

#include "app/Module1.h"

class QComboBox;

namespace marvento {

class CommControl;

struct PortScanOutcome {
  int errorCount = 0;   // failing steps of the scan, one per missing port normally
  bool gaveUp = false;  // the scan stopped at its error limit
};

// Probes ports 1 to 29 by opening each with the serial control and lists in Combo1, as
// "Com1" and so on with the device path as tool tip, every port that exists: free ones
// (opened and closed again at once, or failing for another reason than "busy" or
// "missing") and busy ones alike. A busy port sets BusyPort; ComNumber keeps its value
// unless it lies above the highest free port, which it then becomes. The last entry ends
// up selected. The scan gives up after 40 failing steps, with ComNumber restored.
PortScanOutcome FillPortList(QComboBox& Combo1, CommControl& MSComm1, Module1& state);

}  // namespace marvento
