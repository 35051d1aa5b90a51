#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <cstdint>

class QTcpSocket;

namespace marvento {

// Keeps a connection to JS8Call's TCP API and sets JS8Call's grid to the own locator with
// {"type":"STATION.SET_GRID","value":"<locator>","params":{}} and a line end, then asks for
// the grid back (STATION.GET_GRID). JS8Call takes the grid only with its AutoGrid option
// ticked, otherwise it keeps its own: a grid reported back (STATION.GRID) that is not the one
// sent is told once. JS8Call may come and go: while it is not running the link tries again
// now and then, each time waiting longer, and says nothing; once connected it sends the
// current locator again.
class Js8CallLink : public QObject {
  Q_OBJECT

 public:
  // The first wait before trying again, doubled after every failed try up to the longest.
  static constexpr std::chrono::milliseconds kFirstRetry = std::chrono::milliseconds(500);
  static constexpr std::chrono::milliseconds kLongestRetry = std::chrono::seconds(30);
  // A connection attempt that has neither succeeded nor failed by then is given up.
  static constexpr std::chrono::milliseconds kConnectTimeout = std::chrono::seconds(5);
  // JS8Call's lines are far shorter; a longer one is dropped unread, so that a peer that
  // never ends its line cannot make the buffer grow without bound.
  static constexpr qsizetype kMaxLine = 16 * 1024;
  // A grid reported back that is not the one sent counts once no other report has followed
  // for this long: reports of grids sent before may still be on their way.
  static constexpr std::chrono::milliseconds kReportSettle = std::chrono::milliseconds(500);

  explicit Js8CallLink(QObject* parent = nullptr);
  ~Js8CallLink() override;

  // Connects to host:port and keeps doing so until stop().
  void start(const QString& host, std::uint16_t port);
  void stop();
  bool isConnected() const;

  // The own locator (6 or 10 characters); sent when it differs from the one JS8Call was
  // told last on this connection. Texts that are no valid locator are not sent.
  void setLocator(const QString& locator);

  // For tests: a shorter wait for further reports.
  void setReportSettle(std::chrono::milliseconds settle) { m_settle.setInterval(settle); }

  // The line that sets JS8Call's grid, line end included.
  static QByteArray gridMessage(const QString& locator);
  // The line that asks JS8Call for its grid, line end included.
  static QByteArray gridQuery();
  // German text: JS8Call keeps its own grid.
  static QString keptGridText();

 signals:
  void connectedChanged(bool connected);
  void locatorSent(const QString& locator);
  // JS8Call reported a grid other than the one sent (German text); once until it takes one.
  void gridKept(const QString& message);

 private:
  void connectNow();
  void onConnected();
  void onGone();
  void sendLocator();
  void onReadyRead();
  void takeLine(QByteArrayView line);

  QTcpSocket* m_socket = nullptr;
  QTimer m_retry;
  QTimer m_connectTimeout;
  QString m_host;
  std::uint16_t m_port = 0;
  bool m_running = false;
  bool m_connected = false;
  std::chrono::milliseconds m_nextRetry = kFirstRetry;
  QString m_locator;
  QString m_sent;
  QString m_reported;  // the grid JS8Call reported last
  QTimer m_settle;
  QByteArray m_buffer;
  bool m_skipLine = false;  // the rest of an overlong line is still to come
  bool m_keptTold = false;
};

}  // namespace marvento
