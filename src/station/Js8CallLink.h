#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <cstdint>

class QTcpSocket;

namespace marvento {

// Keeps a connection to JS8Call's TCP API and sets JS8Call's grid to the own locator with
// {"type":"STATION.SET_GRID","value":"<locator>","params":{}} and a line end. JS8Call may come
// and go: while it is not running the link tries again now and then, each time waiting
// longer, and says nothing; once connected it sends the current locator again.
class Js8CallLink : public QObject {
  Q_OBJECT

 public:
  // The first wait before trying again, doubled after every failed try up to the longest.
  static constexpr std::chrono::milliseconds kFirstRetry = std::chrono::milliseconds(500);
  static constexpr std::chrono::milliseconds kLongestRetry = std::chrono::seconds(30);
  // A connection attempt that has neither succeeded nor failed by then is given up.
  static constexpr std::chrono::milliseconds kConnectTimeout = std::chrono::seconds(5);

  explicit Js8CallLink(QObject* parent = nullptr);
  ~Js8CallLink() override;

  // Connects to host:port and keeps doing so until stop().
  void start(const QString& host, std::uint16_t port);
  void stop();
  bool isConnected() const;

  // The own locator (6 or 10 characters); sent when it differs from the one JS8Call was
  // told last on this connection. Texts that are no valid locator are not sent.
  void setLocator(const QString& locator);

  // The line that sets JS8Call's grid, line end included.
  static QByteArray gridMessage(const QString& locator);

 signals:
  void connectedChanged(bool connected);
  void locatorSent(const QString& locator);

 private:
  void connectNow();
  void onConnected();
  void onGone();
  void sendLocator();

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
};

}  // namespace marvento
