#include "gps/GpsdExchange.h"

#include "gps/GpsdClient.h"

#include <QTimeZone>

#include <cmath>

namespace marvento {

namespace {

constexpr double kKnotsPerMetrePerSecond = 3600.0 / 1852.0;

QString withChecksum(const QString& body) {
  unsigned sum = 0;
  for (const QChar c : body) sum ^= static_cast<unsigned>(c.unicode() & 0xFF);
  return QStringLiteral("$%1*%2\r\n").arg(body).arg(sum, 2, 16, QChar(u'0')).toUpper();
}

// "ddmm.mmmmmm" or "dddmm.mmmmmm" with the hemisphere letter as the second field. Six places
// of minutes keep the position to about 2 mm, finer than any 10-character locator.
QString axis(double degrees, int degreeDigits, char positive, char negative) {
  const double magnitude = std::fabs(degrees);
  double whole = std::floor(magnitude);
  double minutes = (magnitude - whole) * 60.0;
  if (std::round(minutes * 1e6) >= 60.0 * 1e6) {
    whole += 1.0;
    minutes = 0.0;
  }
  return QStringLiteral("%1%2,%3")
      .arg(static_cast<int>(whole), degreeDigits, 10, QChar(u'0'))
      .arg(minutes, 9, 'f', 6, QChar(u'0'))
      .arg(QChar::fromLatin1(degrees < 0 ? negative : positive));
}

QString timeField(const QDateTime& utc) {
  if (!utc.isValid()) return {};
  const QDateTime t = utc.toTimeZone(QTimeZone::utc());
  return t.toString(QStringLiteral("HHmmss.zzz")).left(9);
}

}  // namespace

GpsdSentences SentencesOfFix(const GpsdFix& fix) {
  GpsdSentences s;
  const QString time = timeField(fix.utc);
  const QString lat = axis(fix.lat, 2, 'N', 'S');
  const QString lon = axis(fix.lon, 3, 'E', 'W');

  const QString speed =
      fix.speed ? QString::number(*fix.speed * kKnotsPerMetrePerSecond, 'f', 2) : QString();
  const QString course = fix.course ? QString::number(*fix.course, 'f', 1) : QString();
  const QString date = fix.utc.isValid()
                           ? fix.utc.toTimeZone(QTimeZone::utc()).toString(QStringLiteral("ddMMyy"))
                           : QString();
  s.rmc = withChecksum(
      QStringLiteral("GNRMC,%1,A,%2,%3,%4,%5,%6,,,A").arg(time, lat, lon, speed, course, date));

  if (fix.altMSL) {
    const QString sats = fix.satellitesUsed
                             ? QStringLiteral("%1").arg(*fix.satellitesUsed, 2, 10, QChar(u'0'))
                             : QString();
    s.gga = withChecksum(QStringLiteral("GNGGA,%1,%2,%3,1,%4,,%5,M,,M,,")
                             .arg(time, lat, lon, sats, QString::number(*fix.altMSL, 'f', 1)));
  }
  return s;
}

GpsdExchange::GpsdExchange(QObject* parent) : QObject(parent), m_client(new GpsdClient(this)) {}

GpsdExchange::~GpsdExchange() = default;

void GpsdExchange::start(const ExchangeRequest& request, Finished finished) {
  const QString address = request.address;
  m_client->request(address, kWait, [address, finished](const GpsdResult& result) {
    using Kind = ExchangeResult::Kind;
    switch (result.outcome) {
      case GpsdOutcome::Fix: {
        const GpsdSentences s = SentencesOfFix(result.fix);
        if (s.gga.isEmpty()) {
          finished(ExchangeResult::found(s.rmc, s.rmc));
        } else {
          finished(ExchangeResult::found(s.gga, RawBufferOfFix(s)));
        }
        return;
      }
      case GpsdOutcome::NoFix:
      case GpsdOutcome::Silent:
        finished(ExchangeResult::failed(Kind::NoReception, result.message));
        return;
      case GpsdOutcome::Closed:
        finished(ExchangeResult::failed(Kind::Disconnected, result.message));
        return;
      default: finished(ExchangeResult::failed(Kind::PortError, result.message)); return;
    }
  });
}

void GpsdExchange::cancel() {
  m_client->close();
}

bool GpsdExchange::running() const {
  return m_client->busy();
}

}  // namespace marvento
