#include "gps/GpsOpenPort.h"

#include <QEventLoop>
#include <QLabel>

#include <optional>

namespace marvento {

ExchangeResult GpsOpenPort(CommControl& MSComm1, std::int16_t busyPort, QLabel* lbInfo,
                           std::int16_t Port, const QString& Settings) {
  if (lbInfo) lbInfo->clear();
  SerialExchange exchange(MSComm1);
  QEventLoop loop;
  std::optional<ExchangeResult> result;
  exchange.start({Port, Settings, busyPort, {}}, [&](const ExchangeResult& r) {
    result = r;
    loop.quit();
  });
  if (!result) loop.exec();
  return *result;
}

}  // namespace marvento
