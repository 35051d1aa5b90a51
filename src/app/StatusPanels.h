#pragma once

class QLabel;
class QMainWindow;
class QStatusBar;
class QTimer;

namespace marvento {

// The main window's status bar and its panels: settings (Panel1), the last GPS time (Panel2),
// insert mode (Panel3), date (Panel4), system time (Panel5) and the rotor's heading (Panel6,
// hidden until the rotor link is on). The clock keeps date and time current once started.
struct StatusPanels {
  QStatusBar* bar = nullptr;
  QLabel* settings = nullptr;
  QLabel* gpsTime = nullptr;
  QLabel* insertMode = nullptr;
  QLabel* date = nullptr;
  QLabel* time = nullptr;
  QLabel* rotor = nullptr;
  QTimer* clock = nullptr;
};

StatusPanels BuildStatusPanels(QMainWindow* window);

}  // namespace marvento
