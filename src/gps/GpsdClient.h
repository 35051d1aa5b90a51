#pragma once

#include "gps/GpsdReply.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QStringView>

#include <chrono>
#include <functional>
#include <optional>

class QTcpSocket;
class QTimer;

namespace marvento {

// Where gpsd listens, as stored in the settings: "localhost:2947", "192.168.1.5:2947",
// "[::1]:2947"; a host without a port means gpsd's own port 2947.
struct GpsdAddress {
  QString host;
  quint16 port = 2947;
  // "host:port", IPv6 hosts in brackets: the form the messages show.
  QString text() const;
};
std::optional<GpsdAddress> ParseGpsdAddress(QStringView text);

// How a request to gpsd ended.
enum class GpsdOutcome {
  Fix,           // a TPV report with a 2D or 3D fix
  NoFix,         // gpsd reported, but without a fix yet
  Silent,        // connected, but no report came in time: no receiver, or a silent one
  BadAddress,    // the address is not host:port
  Refused,       // nothing listens at the address: gpsd is not running there
  HostNotFound,  // the host name is unknown
  Closed,        // gpsd closed the connection
  NoAnswer,      // the connection was not made in time
  SocketError,   // any other failure of the connection
};

struct GpsdResult {
  GpsdOutcome outcome = GpsdOutcome::Silent;
  GpsdFix fix;      // the fix for Fix; as reported for NoFix
  QString message;  // German, for the info line and the failure box; empty for Fix
  bool ok() const { return outcome == GpsdOutcome::Fix; }
};

// The German text for an outcome other than Fix. It names the address, and where the daemon
// may not be running, says how to start it. `detail` is the socket's own description, shown
// for SocketError only.
QString GpsdMessage(GpsdOutcome outcome, const QString& address, const QString& detail = {});

// Reads gpsd's JSON stream (?WATCH) over a non-blocking socket in the event loop. The
// connection stays open between requests, so that a request finds the latest fix waiting;
// it is made again when it was lost or the address changed.
class GpsdClient : public QObject {
  Q_OBJECT

 public:
  using Done = std::function<void(const GpsdResult&)>;

  explicit GpsdClient(QObject* parent = nullptr);
  ~GpsdClient() override;

  // Asks gpsd at `address` for its latest fix. `done` is called exactly once, always from the
  // event loop and never from inside request(): with a report younger than a second at once,
  // else with the next report, else with the failure when `wait` has run out or the
  // connection fails. A request while another runs cancels that one.
  void request(const QString& address, std::chrono::milliseconds wait, Done done);
  // Drops the running request; its callback is not called. The connection stays.
  void cancel();
  // Drops the running request and closes the connection.
  void close();
  // From request() until the callback has run or the request was cancelled.
  bool busy() const { return m_busy; }

 private:
  void connected();
  void readReplies();
  void socketFailed();
  void deadline();
  // Answers the running request if what has arrived is enough.
  void answerIfReady();
  // Ends the running request; the callback follows from the event loop.
  void finish(GpsdOutcome outcome, const QString& detail = {});

  QTcpSocket* m_socket = nullptr;
  QTimer* m_deadline = nullptr;
  GpsdReplyReader m_reader;
  std::optional<GpsdAddress> m_address;  // of the open or opening connection
  QString m_addressText;                 // as the messages of the running request show it
  Done m_done;
  bool m_busy = false;
  // Counts requests and cancellations, so that a callback already on its way is dropped.
  quint64 m_generation = 0;
  // TPV reports since the running request began, and the age of the latest one.
  int m_reportsInRequest = 0;
  QElapsedTimer m_sinceReport;
};

}  // namespace marvento
