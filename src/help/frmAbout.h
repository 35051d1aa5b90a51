#pragma once

#include <functional>

#include <QDialog>
#include <QStringList>

class QLabel;
class QPushButton;
class QTimer;

namespace marvento {

// System-information programs tried by the Systeminfo button, in this order; the first one
// found on PATH is started.
extern const QStringList kSysInfoPrograms;

// The About box: name, version, purpose and licence of the program, and a warning about faulty
// port wiring. OK (Enter, Esc) closes it; "Systeminfo..." starts a system-information program.
class frmAbout : public QDialog {
  Q_OBJECT

 public:
  explicit frmAbout(QWidget* parent = nullptr);

 private:
  void Form_Load();
  void cmdSysInfo_Click();

  QPushButton* m_cmdOK = nullptr;
  QPushButton* m_cmdSysInfo = nullptr;
  QLabel* m_picIcon = nullptr;
  QLabel* m_lblDisclaimer = nullptr;
  QLabel* m_lblVersion = nullptr;
  QLabel* m_lblTitle = nullptr;
  QLabel* m_lblDescription = nullptr;
  QLabel* m_lblBeschreibung = nullptr;
  QLabel* m_lblAchtung = nullptr;
};

// Starts the first program of kSysInfoPrograms found on PATH; without one, or when it cannot be
// started, tells the user that none is available.
void StartSysInfo();

// Shows the About box modally over `owner`. With reception on (gpsOn), the poll timer rests
// while the box is open and runs again afterwards.
void ShowAbout(QWidget* owner, QTimer* timer1, bool gpsOn,
               const std::function<void()>& closed = {});

}  // namespace marvento
