#pragma once

#include "station/StationAddress.h"

#include <QObject>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>

namespace marvento {

class Js8CallLink;
class RotatorLink;
class WsjtxLink;

// The bearing a caption of lblRichtung shows ("69,74 °" gives 69.74), in degrees 0 to 360;
// nothing when no bearing stands there (empty, "-", or no number at all).
std::optional<double> BearingOfCaption(const QString& caption);

// The links to the programs beside Marvento in the station: WSJT-X and JS8Call learn the own
// locator, the rotator turns the antenna and tells where it points. Each link runs while its
// setting holds an address; failures the user must know of come as message boxes, shown
// after the socket's own handling has ended.
class StationLinks : public QObject {
  Q_OBJECT

 public:
  // How often the rotator is asked where it points while the rotor option is on.
  static constexpr std::chrono::milliseconds kRotorPoll = std::chrono::seconds(3);
  // How often while the antenna turns, so that the panel follows it; until it stands still.
  static constexpr std::chrono::milliseconds kRotorTurningPoll = std::chrono::milliseconds(500);

  explicit StationLinks(QObject* parent = nullptr);
  ~StationLinks() override;

  // Reads the settings Wsjtx, Js8Call and Rotor again; a link whose address changed starts
  // anew, one whose setting is empty (or no valid address) stops.
  void apply();

  // The own locator, as tbMyLoc shows it; each program is told it when it changes.
  void ownLocator(const QString& locator);

  bool rotorOn() const;
  // Turns the antenna; the outcome comes back as rotorTurned or a box.
  void turnRotor(double azimuth);

  WsjtxLink& wsjtx() { return *m_wsjtx; }
  Js8CallLink& js8call() { return *m_js8call; }
  RotatorLink& rotator() { return *m_rotator; }

 signals:
  void rotorSwitched(bool on);
  void rotorTurned(double azimuth);
  // Where the rotator points, or nothing when it could not be asked.
  void rotorAzimuth(std::optional<double> azimuth);
  // A remark for the window's info line, in German (JS8Call keeps its own grid).
  void notice(const QString& text);

 private:
  void applyWsjtx(const StationAddress& address);
  void applyJs8Call(const StationAddress& address);
  void applyRotor(const StationAddress& address);
  void tell(const QString& message, const QString& title);

  std::unique_ptr<WsjtxLink> m_wsjtx;
  std::unique_ptr<Js8CallLink> m_js8call;
  std::unique_ptr<RotatorLink> m_rotator;
  StationAddress m_wsjtxAt;
  StationAddress m_js8callAt;
  StationAddress m_rotorAt;
  QString m_locator;
  bool m_turning = false;
  std::optional<double> m_lastAzimuth;
};

}  // namespace marvento
