#pragma once

#include "options/Preferences.h"

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
class QSpinBox;
class QShowEvent;

namespace marvento {

class CommControl;

// Poll interval in whole seconds from the text of the interval box: rounded half to even,
// then held to 10..65 ("5" 10, "12,5" 12, "13.5" 14, "66" 65, no number 10).
std::int32_t IntervalSecondsOf(const QString& text);

// The settings dialog "Grundeinstellungen Marvento". Building it shows the given
// preferences and scans the serial ports with the probe (which may lower the port number and
// find a port that this program holds); the first show puts the stored port name and rate
// into the two boxes. OK checks every entry before it closes: a refused one leaves the dialog
// open with a German message. A device path typed as the port becomes that port's device.
// The dialog itself changes nothing else: the window applies chosen() after OK.
class frmOptions : public QDialog {
  Q_OBJECT

 public:
  frmOptions(const Preferences& current, CommControl* probe, QWidget* parent = nullptr);

  // After OK, what the user chose; before, what the dialog shows.
  const Preferences& chosen() const { return m_chosen; }
  // A port that the scan found open in this program, to be skipped as "already open".
  std::optional<std::int16_t> busyPort() const { return m_busyPort; }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void build();
  void Form_Load();
  void Form_Activate();
  void Command1_Click();
  void Command2_Click();

  Preferences m_chosen;
  CommControl* m_probe = nullptr;
  std::optional<std::int16_t> m_busyPort;
  bool m_activated = false;

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
  // The group "Unterwegs".
  QCheckBox* m_chkAnsagen = nullptr;
  QComboBox* m_cbBuchstabieren = nullptr;
  QComboBox* m_cbFeldStufe = nullptr;
  QSpinBox* m_sbFeldrand = nullptr;  // WSJT-X, JS8Call, rotator, in StationProgram order
};

}  // namespace marvento
