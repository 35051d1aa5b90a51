// gpsd's replies as the gpsd client reads them: the input once as one reply line through
// libgps's parser, and once as a byte stream cut into chunks of random lengths.
#include "FuzzSupport.h"
#include "gps/GpsdReply.h"

#include <cmath>

using namespace marvento;
using marvento::fuzz::Check;

namespace {

QString shown(const std::uint8_t* data, std::size_t size) {
  return QString::fromLatin1(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
}

void checkFix(const GpsdFix& fix, const QString& input) {
  if (!fix.valid) return;
  Check(std::isfinite(fix.lat) && std::fabs(fix.lat) <= 90.0, "a fix has a latitude", input);
  Check(std::isfinite(fix.lon) && std::fabs(fix.lon) <= 180.0, "a fix has a longitude", input);
  Check(!fix.altMSL || std::isfinite(*fix.altMSL), "a height is a number", input);
  Check(!fix.speed || (std::isfinite(*fix.speed) && *fix.speed >= 0.0), "a speed is not negative",
        input);
  Check(!fix.course || (*fix.course >= 0.0 && *fix.course <= 360.0), "a course is a direction",
        input);
  Check(!fix.satellitesUsed || *fix.satellitesUsed >= 0, "a satellite count is a count", input);
  Check(!fix.utc.isValid() || fix.utc.date().year() >= 1980, "a fix time is GPS time", input);
}

bool sameFix(const GpsdFix& a, const GpsdFix& b) {
  return a.valid == b.valid && (!a.valid || (a.lat == b.lat && a.lon == b.lon)) &&
         a.altMSL == b.altMSL && a.speed == b.speed && a.course == b.course &&
         a.satellitesUsed == b.satellitesUsed && a.utc == b.utc;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QByteArrayView bytes(data, static_cast<qsizetype>(size));
  const QString input = shown(data, size);

  const GpsdReply reply = ReadGpsdReply(bytes);
  checkFix(reply.fix, input);
  Check(reply.kind == GpsdReply::Kind::Tpv || !reply.fix.valid, "only a TPV report has a fix",
        input);
  Check(!reply.satellitesUsed || reply.kind == GpsdReply::Kind::Sky,
        "only a SKY report counts satellites", input);

  GpsdReplyReader whole;
  const int wholeReports = whole.add(bytes);
  GpsdReplyReader chunked;
  int chunkedReports = 0;
  std::uint32_t state = static_cast<std::uint32_t>(size) | 1u;
  for (qsizetype at = 0; at < bytes.size();) {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    const qsizetype length = std::min<qsizetype>(state % 97 + 1, bytes.size() - at);
    chunkedReports += chunked.add(bytes.sliced(at, length));
    at += length;
  }
  Check(wholeReports == chunkedReports, "the cuts do not change the reports", input);
  Check(whole.latest().has_value() == chunked.latest().has_value(),
        "the cuts do not change the latest report", input);
  if (whole.latest()) {
    checkFix(*whole.latest(), input);
    Check(sameFix(*whole.latest(), *chunked.latest()), "the cuts do not change the fix", input);
  }
  return 0;
}
