#pragma once

#include "distance/StationPair.h"
#include "gps/GpsFix.h"
#include "rover/CrossingFilter.h"
#include "rover/RoverSettings.h"
#include "rover/RoverTexts.h"
#include "rover/RoverTrack.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>
#include <utility>

class QLabel;
class QLineEdit;
class QStatusBar;
class QThread;
class QTimer;
class QWidget;

namespace marvento {

class RoverSpeaker;

// The controls of the main window that life on the road reads or writes.
struct RoverView {
  QWidget* window = nullptr;
  QLabel* lbFeldrand = nullptr;    // the boundary ahead, or that reception is lost
  QLabel* lbInfo = nullptr;        // where a missing speech service is told once
  QLabel* locatorLabel = nullptr;  // above tbMyLoc: the age of an old fix goes beside it
  QLineEdit* tbMyLoc = nullptr;
  QLabel* lblEntfernung = nullptr;
  QLabel* lblRichtung = nullptr;
  QStatusBar* statusBar = nullptr;
};

// What the window lends: whether reception is on, its poll interval, the GPS log, the links.
struct RoverHooks {
  std::function<bool()> receptionOn;
  std::function<int()> pollIntervalMs;
  std::function<void()> writeLog;                   // one line, when the log is on
  std::function<void(const QString&)> tellLocator;  // to WSJT-X and JS8Call
};

// On the road: follows the fixes the window takes, shows and speaks the boundary ahead,
// counts a crossing only a margin inside the new square, notices lost reception and keeps the
// track for a GPX file.
class RoverLink : public QObject {
  Q_OBJECT

 public:
  RoverLink(const RoverView& view, RoverHooks hooks, QObject* parent = nullptr);
  ~RoverLink() override;

  void apply(const RoverSettings& settings);
  const RoverSettings& settings() const { return m_settings; }

  // A fix was taken into the own position.
  void takeFix(const GpsFix& fix);
  // Reception was given up.
  void receptionOff();
  // Speaks the own locator, and distance and bearing of the last computation.
  void announce();
  // "Strecke speichern…": asks for a file and writes the track.
  void saveTrack();
  // Writes the track to path; the German reason on failure.
  QString saveTrackTo(const QString& path);

  const RoverTrack& track() const { return m_track; }
  // Hands a message to the speaker, which runs in a thread of its own; its signals come back
  // queued.
  void say(const QString& text);
  RoverSpeaker& speaker() { return *m_speaker; }
  // Once a second while reception is on; public for tests that do not want to wait.
  void checkReception();

 signals:
  // The edge of the own square ahead, for the map; nothing when none is known.
  void boundaryAhead(std::optional<std::pair<marvento::GeoPoint, marvento::GeoPoint>> edge);
  // A crossing counted: the square entered.
  void squareEntered(const QString& locator);

 private:
  void showBoundary(const GpsFix& fix);
  void lost(const QString& why);
  void speak(const QString& text);
  void showAge(std::optional<qint64> ageMs);

  RoverView m_view;
  RoverHooks m_hooks;
  RoverSettings m_settings;
  CrossingFilter m_events;  // crossings at the chosen level, for log, notice and voice
  CrossingFilter m_links;   // 6-character squares, for the locator the station programs get
  ApproachWatch m_approach;
  RoverTrack m_track;
  RoverSpeaker* m_speaker = nullptr;
  QThread* m_speechThread = nullptr;
  QTimer* m_watch = nullptr;
  QString m_locatorCaption;
  int m_locatorWidth = 0;
  std::optional<GeoPoint> m_lastPosition;
  qint64 m_lastFixMs = 0;  // m_clock's reading at the last fix
  QElapsedTimer m_clock;
  QElapsedTimer m_sinceFix;  // since the last fix, or since reception was seen on
  bool m_lost = false;
  bool m_toldUnavailable = false;
};

}  // namespace marvento
