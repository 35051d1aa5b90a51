#pragma once

#include "station/RotctldReply.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <deque>

class QTcpSocket;

namespace marvento {

// Talks to hamlib's rotctld: turns the antenna ("P <az> 0") and asks where it points ("p").
// The connection is made when the first command needs it and kept; each command goes out as
// soon as it is given, behind any still unanswered (rotctld answers them in order), so that a
// turn never waits for a slow position query. Every outcome comes back as a signal, failures
// with a German text for the user.
class RotatorLink : public QObject {
  Q_OBJECT

 public:
  // Longest wait for the connection, or for the next reply while one is outstanding.
  static constexpr std::chrono::milliseconds kReplyTimeout = std::chrono::seconds(5);

  explicit RotatorLink(QObject* parent = nullptr);
  ~RotatorLink() override;

  // Where rotctld listens; closes a connection to another address.
  void setAddress(const QString& host, std::uint16_t port);
  // Closes the connection and drops the commands not yet answered, without a signal.
  void stop();

  // Turns the antenna to the azimuth in degrees (any finite value, taken modulo 360, sent
  // with one decimal). A turn not yet sent (while connecting) is replaced by the newer one.
  void turnTo(double azimuth);
  // Asks for the azimuth now; nothing more is asked while a question is under way.
  void requestPosition();
  // Asks every interval; zero stops asking.
  void setPollInterval(std::chrono::milliseconds interval);

  // The command line sent for a turn: "P 123.4 0\n".
  static QByteArray turnCommand(double azimuth);

  // German texts of the failures.
  static QString unreachableText(const QString& host, std::uint16_t port);
  static QString silentText(const QString& host, std::uint16_t port);
  static QString hungUpText(const QString& host, std::uint16_t port);
  static QString refusedText(int hamlibError);
  static QString garbledText(const QString& host, std::uint16_t port);

 signals:
  void turnAccepted(double azimuth);
  void turnFailed(const QString& message);
  void azimuthReported(double azimuth, double elevation);
  void positionFailed(const QString& message);

 private:
  struct Request {
    RotctldCommand command = RotctldCommand::GetPosition;
    double azimuth = 0;
  };

  void process();
  void onReadyRead();
  void fail(const Request& request, const QString& message);
  void failAll(const QString& message);
  void dropConnection();

  QString m_host;
  std::uint16_t m_port = 0;
  QTcpSocket* m_socket = nullptr;
  QByteArray m_buffer;
  std::deque<Request> m_queue;
  std::size_t m_sent = 0;   // the first m_sent requests of the queue await their replies
  bool m_accepted = false;  // the daemon took the connection
  QTimer m_timeout;
  QTimer m_poll;
};

}  // namespace marvento
