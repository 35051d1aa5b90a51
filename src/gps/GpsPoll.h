#pragma once

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>

class QLabel;
class QLineEdit;
class QTimer;

namespace marvento {

class Clock;
class CommControl;
class GpsExchange;
struct ExchangeResult;
struct GpsFix;

// The controls of frmMain that a poll reads or writes. panel2 is the second panel of
// sbStatusBar.
struct GpsPollView {
  QLabel* lbInfo = nullptr;
  QLabel* lbKurs = nullptr;
  QLineEdit* tbMyLoc = nullptr;
  QLineEdit* tbMyLg = nullptr;
  QLineEdit* tbMyBr = nullptr;
  QLineEdit* tbFremdLoc = nullptr;
  QLineEdit* tbFremdLg = nullptr;
  QLineEdit* tbFremdBr = nullptr;
  QLabel* panel2 = nullptr;
  QTimer* Timer1 = nullptr;
  CommControl* MSComm1 = nullptr;
};

// What a poll reads of the settings; asked afresh at each use, since the settings dialog may
// change them between two polls.
struct GpsPollSettings {
  QString comPort;      // "gpsd" chooses gpsd as the source
  QString gpsdAddress;  // "host:port"; empty: gpsd's usual address
  std::int16_t busyPort = 0;
  bool receptionOn = false;
  bool gradDezimal = false;
  bool gpsZeit = false;
};

// What a poll asks of, and hands to, other parts of the program.
struct GpsPollHooks {
  std::function<GpsPollSettings()> Settings;
  std::function<void()> Compute;
  // A good position was taken into the own fields and computed with.
  std::function<void(const GpsFix&)> FixTaken;
  // A height sample from a GGA sentence with a fix: height and unit fields as they stand,
  // satellite count in "#0".
  std::function<void(const QString& alt, const QString& unit, const QString& sats)> HeightSample;
  std::function<void()> UnlockEntry;
  // Reception is given up after too many failed tries: the owner switches it off and shows
  // so in the status bar, before the poll tells the user why.
  std::function<void()> ReceptionOff;
};

// One GPS poll after another: fetches a sentence, counts failed tries and switches reception
// off after too many (3, or 6 once data has come), writes a good fix into the own position
// fields and calls Compute, shows time, height, course. The sentence comes from an exchange
// driven by the event loop; the poll goes on when the exchange reports.
class GpsPoll {
 public:
  // The exchange runs on view.MSComm1 unless another is given with setExchange().
  GpsPoll(const GpsPollView& view, GpsPollHooks hooks, Clock& clock);
  ~GpsPoll();

  // Starts a poll on the given port with serial settings such as "4800,N,8,1" and returns;
  // the caller has called LockEntry. The poll ends with UnlockEntry, the normal pointer and
  // then `then`. Nothing happens while a poll is running already.
  void poll(std::int16_t port, const QString& settings, std::function<void()> then = {});

  // Ends a running poll at once: the exchange is dropped with the port closed, nothing is
  // counted or shown, the entry is unlocked. `then` is not called.
  void cancel();

  // From the start of poll() until it has ended.
  bool isPolling() const { return m_polling; }

  // Failed polls since data last arrived; not reset when reception is given up.
  std::int16_t GpsTries() const { return m_gpsTries; }
  // Data has come since reception was last given up: six tries are allowed, not three.
  bool dataSeen() const { return m_dataSeen; }

  // Another position source in place of the serial one.
  void setExchange(std::unique_ptr<GpsExchange> exchange);

  // Ends the gpsd connection when reception goes off or the source changes.
  void closeGpsd();

 private:
  void finished(const ExchangeResult& result);
  void failure(QString reason);
  void data(const QString& sentence, const QString& rawBuffer, QString& kursText);
  void end();
  GpsPollSettings settings() const;

  GpsPollView m_view;
  GpsPollHooks m_hooks;
  Clock& m_clock;
  // The exchange of the running poll: the serial one, or gpsd's when the port is "gpsd".
  GpsExchange* current();

  std::unique_ptr<GpsExchange> m_exchange;
  std::unique_ptr<GpsExchange> m_gpsd;
  GpsExchange* m_running = nullptr;
  std::function<void()> m_then;
  std::int16_t m_gpsTries = 0;
  bool m_polling = false;
  bool m_dataSeen = false;
  bool m_clockRefusalTold = false;  // once per run is enough
};

}  // namespace marvento
