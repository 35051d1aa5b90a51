#pragma once

#include "gps/GpsExchange.h"
#include "gps/GpsdReply.h"

#include <QObject>
#include <QString>

#include <chrono>

namespace marvento {

class GpsdClient;

// The NMEA sentences a receiver would have sent for a gpsd fix, so that the fix takes the same
// path through the decoder as a serial receiver's: "$GNRMC" always (time, position, speed,
// course), "$GNGGA" for a 3D fix (height above sea level and satellites used). Each has its
// checksum and a CR LF.
struct GpsdSentences {
  QString gga;  // empty without a height
  QString rmc;
};
GpsdSentences SentencesOfFix(const GpsdFix& fix);
// The receive text a receiver would have given with them: the RMC first, so that the GGA's
// "$" ends it, as the decoder requires of a whole sentence.
inline QString RawBufferOfFix(const GpsdSentences& s) {
  return s.rmc + s.gga;
}

// The exchange with gpsd: each poll takes the daemon's latest fix. With a height the GGA
// rules the poll (it feeds the height average) and the RMC rides along for speed and course;
// without one the RMC rules. No fix yet counts as a silent receiver; a daemon that is not
// there fails with a text that names the address and says how to start it.
class GpsdExchange final : public QObject, public GpsExchange {
  Q_OBJECT

 public:
  // How long a poll waits for gpsd's next report when the latest is older than a second.
  static constexpr std::chrono::milliseconds kWait{3000};

  explicit GpsdExchange(QObject* parent = nullptr);
  ~GpsdExchange() override;

  // Uses request.address ("host:port"); the port number and settings mean nothing here.
  void start(const ExchangeRequest& request, Finished finished) override;
  // Also closes the connection: cancelling means reception ends or changes its source.
  void cancel() override;
  bool running() const override;

 private:
  GpsdClient* m_client = nullptr;
};

}  // namespace marvento
