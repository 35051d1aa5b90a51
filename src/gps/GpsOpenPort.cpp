#include "gps/GpsOpenPort.h"

#include "app/Module1.h"

#include <QEventLoop>
#include <QLabel>

#include <optional>

namespace marvento {

QString GpsOpenPort(CommControl& MSComm1, const Module1& state, QLabel* lbInfo, std::int16_t Port,
                    const QString& Settings, QString& RawBuffer) {
  RawBuffer.clear();
  if (lbInfo) lbInfo->clear();
  SerialExchange exchange(MSComm1);
  QEventLoop loop;
  std::optional<ExchangeResult> result;
  exchange.start({Port, Settings, state.BusyPort, {}}, [&](const ExchangeResult& r) {
    result = r;
    loop.quit();
  });
  if (!result) loop.exec();
  RawBuffer = result->rawBuffer;
  return result->text();
}

}  // namespace marvento
