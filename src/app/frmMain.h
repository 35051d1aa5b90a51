#pragma once

#include "app/Module1.h"
#include "distance/StationPair.h"
#include "gps/GpsFix.h"

#include <QMainWindow>

#include <functional>
#include <memory>
#include <optional>

class QAction;
class QComboBox;
class QFrame;
class QLabel;
class QLineEdit;
class QMenu;
class QStatusBar;
class QTimer;
class QToolBar;

namespace marvento {

class CommControl;
class HeightTable;
class RoverLink;
class StationLinks;
struct Preferences;

// The one window of the program. Its controls are the working data of the compute
// command and of GPS reception, so they are public; their names are the object names that
// scripts and tests find them by.
class frmMain : public QMainWindow {
  Q_OBJECT

 public:
  explicit frmMain(Module1& state, QWidget* parent = nullptr);
  ~frmMain() override;

  // Entry fields and results.
  QLabel* Label1 = nullptr;
  QLabel* Label2 = nullptr;
  QLabel* Label3 = nullptr;
  QLabel* Label4 = nullptr;
  QLabel* Label5 = nullptr;
  QLabel* Label6 = nullptr;
  QLabel* Label7 = nullptr;
  QLineEdit* tbMyLoc = nullptr;
  QLineEdit* tbFremdLoc = nullptr;
  QLineEdit* tbMyLg = nullptr;
  QLineEdit* tbMyBr = nullptr;
  QLineEdit* tbFremdLg = nullptr;
  QLineEdit* tbFremdBr = nullptr;
  QComboBox* Combo1 = nullptr;
  QLabel* lblEntfernung = nullptr;
  QLabel* lblRichtung = nullptr;
  QLabel* lbInfo = nullptr;
  QLabel* lbKurs = nullptr;
  // The square boundary ahead on the road, or that reception is lost.
  QLabel* lbFeldrand = nullptr;
  // IARU points and the WGS84 path of the last computation.
  QLabel* lblPunkte = nullptr;
  QLabel* lblWgs84 = nullptr;
  QFrame* Line1 = nullptr;
  QFrame* Line2 = nullptr;
  QFrame* Line3 = nullptr;

  QToolBar* tbToolBar = nullptr;
  QStatusBar* sbStatusBar = nullptr;
  QLabel* Panel1 = nullptr;
  QLabel* Panel2 = nullptr;
  QLabel* Panel3 = nullptr;
  QLabel* Panel4 = nullptr;
  QLabel* Panel5 = nullptr;
  // Where the rotator points; shown while the rotor option is on.
  QLabel* Panel6 = nullptr;

  QMenu* mnuAktion = nullptr;
  QMenu* mnuHelp = nullptr;
  QAction* mnuNeu = nullptr;
  QAction* mnuRechnen = nullptr;
  QAction* mnuGegenRichtung = nullptr;
  QAction* mnuGPS_Höhe = nullptr;
  QAction* mnuRotor = nullptr;
  QAction* mnuKarte = nullptr;
  QAction* mnuContestLog = nullptr;
  QAction* mnuAdif = nullptr;
  QAction* mnuGrundeinstellungen = nullptr;
  QAction* mnuProtokoll = nullptr;
  QAction* mnuStrecke = nullptr;
  QAction* mnuAnsage = nullptr;
  QAction* mnuBeenden = nullptr;
  QAction* mnuHilfe = nullptr;
  QAction* mnuInfo = nullptr;

  QTimer* Timer1 = nullptr;
  CommControl* MSComm1 = nullptr;

  // Runs once, when Main first touches the window with the state record filled.
  void Form_Load();
  void Form_Activate();
  void Form_Resize();
  void tbMyLoc_Change();

  void mnuNeu_Click();
  void mnuRechnen_Click();
  void mnuGegenRichtung_Click();
  void mnuGPS_Höhe_Click();
  // Turns the antenna to the bearing last computed, or to its opposite when F3 showed that
  // last.
  void mnuRotor_Click();
  void mnuKarte_Click();
  // A place chosen on the map becomes the remote station, computed as if typed.
  void takeRemote(const GeoPoint& place);
  void mnuGrundeinstellungen_Click();
  void mnuProtokoll_Click();
  void mnuStrecke_Click();
  void mnuAnsage_Click();
  void mnuBeenden_Click();
  void mnuHilfe_Click();
  void mnuInfo_Click();
  void tbToolBar_ButtonClick(const QString& key);
  void Timer1_Timer();
  // The compute command as the user gives it (Enter, menu, tool bar).
  void Compute();
  // Reads the settings Wsjtx, Js8Call and Rotor again and starts or stops each link.
  void applyStationLinks();
  // What the settings dialog starts from, and what its OK changes in the window: the state
  // record, timer, port, caption and fields; the home locator, gpsd's and the station
  // programs' addresses are stored at once.
  Preferences preferences() const;
  void applyPreferences(const Preferences& chosen);
  StationLinks& stationLinks();
  // Life on the road: the boundary ahead (its signal boundaryAhead feeds the map), crossings,
  // announcements and the track.
  RoverLink& rover();
  void WriteGpsLog();
  // One height sample from a good GGA sentence, and the table it goes into.
  void HeightSample(const QString& alt, const QString& unit, const QString& sats);
  const HeightTable& heights() const;

  // List position of Combo1 as the store keeps it: -1 when the text was typed.
  int radiusListIndex() const;
  // Panel 3 enabled means insert mode; the Insert key toggles it.
  bool insertMode() const;
  // Whether a GPS poll is running: from its start until its exchange has reported and the
  // entry is unlocked.
  bool isPolling() const;
  QString statusText() const;

  // The process end of the second-instance guard; tests replace it.
  static std::function<void()>& exitProcess();

  // A word to the user in lbInfo that a poll does not wipe out at once: with reception on, it
  // comes back after the next good poll, and then gives way to what the polls report.
  void showNotice(const QString& text);

  // The stations as the last computation left them.
  StationPair stationPair() const;

 signals:
  // What the window reports to the windows and links that follow it. Each capability
  // listens through an object of its own instead of reaching into the window.
  // A computation ran (also a refused one), New cleared the fields, or F3 turned the bearing.
  void computed(const marvento::StationPair& pair);
  // A fix from the receiver was taken into the own position and computed with.
  void fixTaken(const marvento::GpsFix& fix);
  // Reception was given up after too many failed tries.
  void receptionOff();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void buildControls();
  void buildMenus();
  void buildToolBar();
  void buildStatusBar();
  void fitWidth();
  void fillRadiusList();
  void placeWindow();
  bool Form_QueryUnload();
  void Form_Unload();
  void Form_KeyPress(QObject* target, int keyAscii, const QString& text);
  void Form_KeyUp(int keyCode, Qt::KeyboardModifiers modifiers);
  void passKeyOn(QObject* target, QEvent* event);
  void ShowHelp();
  void ShowAbout();
  void HeightReport();
  void LockEntry();
  void UnlockEntry();
  void startPoll(std::function<void()> then = {});
  void activateAfterDialog();
  void runCompute(bool tellLinks = true);
  void fixComputed();
  void showRotor(std::optional<double> azimuth);
  void refit();

  Module1& m_state;
  QTimer* m_clockTimer = nullptr;
  bool m_loaded = false;
  bool m_insertMode = true;
  bool m_activatePending = false;
  bool m_passingKey = false;
  QString m_notice;             // shown again after the next good poll
  bool m_reverseShown = false;  // F3 showed the opposite bearing since the last computation
  int m_baseClientWidth = 0;
  struct Subsystems;
  std::unique_ptr<Subsystems> m_sub;
};

}  // namespace marvento
