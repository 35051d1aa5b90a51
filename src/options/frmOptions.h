#pragma once

#include "app/Module1.h"

#include <QDialog>

#include <array>

#include <cstdint>
#include <optional>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QShowEvent;
class QTimer;

namespace marvento {

class CommControl;

// Poll interval in whole seconds from the text of the interval box: rounded half to even,
// then held to 10..65 ("5" 10, "12,5" 12, "13.5" 14, "66" 65, no number 10).
std::int32_t IntervalSecondsOf(const QString& text);

// What the dialog writes in the main window when OK is pressed. Any of them may be null.
struct OptionsTargets {
  QTimer* Timer1 = nullptr;
  CommControl* MSComm1 = nullptr;  // also the control the port scan probes with
  QLabel* lbInfo = nullptr;
  QWidget* mainWindow = nullptr;  // its caption is reset when reception is switched off
  QLineEdit* tbMyLg = nullptr;
  QLineEdit* tbMyBr = nullptr;
  QLineEdit* tbFremdLg = nullptr;
  QLineEdit* tbFremdBr = nullptr;
};

// The settings dialog "Grundeinstellungen Marvento". Building it loads the controls from
// the state record and scans the serial ports (which may correct ComNumber and set
// BusyPort); the first show puts the stored port name and rate into the two boxes. OK
// writes the state record, the targets and the key "MyHomeLoc"; a device path typed as the
// port becomes that port's device or is refused with a message. Abbrechen, Esc and the
// close box change nothing, the port number the scan may have lowered included.
class frmOptions : public QDialog {
  Q_OBJECT

 public:
  frmOptions(Module1& state, const OptionsTargets& targets, QWidget* parent = nullptr);

 public slots:
  void reject() override;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void build();
  void Form_Load();
  void Form_Activate();
  void Command1_Click();
  void Command2_Click();

  Module1& m_state;
  OptionsTargets m_targets;
  bool m_activated = false;
  std::int16_t m_comNumberBefore = 0;  // what Abbrechen puts back after the scan

  QPushButton* m_Command1 = nullptr;
  QPushButton* m_Command2 = nullptr;
  QComboBox* m_Combo1 = nullptr;
  QComboBox* m_Combo2 = nullptr;
  QComboBox* m_Combo3 = nullptr;
  QRadioButton* m_Option1_0 = nullptr;
  QRadioButton* m_Option1_1 = nullptr;
  QCheckBox* m_Check1 = nullptr;
  QRadioButton* m_Option3 = nullptr;
  QRadioButton* m_Option4 = nullptr;
  QRadioButton* m_Option2_0 = nullptr;
  QRadioButton* m_Option2_1 = nullptr;
  QLineEdit* m_Text1 = nullptr;
  QLineEdit* m_tbGpsd = nullptr;

  // One row of the group "Stationsprogramme": switched on, and where the program is.
  struct StationRow {
    QCheckBox* on = nullptr;
    QLineEdit* address = nullptr;
  };
  std::array<StationRow, 3> m_stations{};  // WSJT-X, JS8Call, rotator, in StationProgram order
};

}  // namespace marvento
