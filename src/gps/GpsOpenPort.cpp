#include "gps/GpsOpenPort.h"

#include "app/Module1.h"
#include "platform/CommControl.h"
#include "platform/MsgBox.h"
#include "platform/Numbers.h"

#include <QCoreApplication>
#include <QLabel>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace marvento {

double ExchangeWaitMs(double baud) {
  return 1.0 / std::sqrt(baud) * 0.004 * 86400.0 * 1000.0;
}

namespace {

using SteadyClock = std::chrono::steady_clock;
using Millis = std::chrono::duration<double, std::milli>;
using TimePoint = std::chrono::time_point<SteadyClock, Millis>;

TimePoint nowMs() {
  return std::chrono::time_point_cast<Millis>(SteadyClock::now());
}

// A failed step that means "the port is open already" counts as done.
bool failed(const CommResult& r) {
  return !r.ok() && r.number != comPortOpen;
}

const QString kNoReception = QStringLiteral("!Zur Zeit kein GPS-Empfang");
const QString kWrongData = QStringLiteral("!Falsche Daten empfangen");
const QString kNoValidData = QStringLiteral("Keine gültigen GPS-Daten");

}  // namespace

QString GpsOpenPort(CommControl& MSComm1, const Module1& state, QLabel* lbInfo, std::int16_t Port,
                    const QString& Settings, QString& RawBuffer) {
  RawBuffer.clear();
  if (lbInfo) lbInfo->clear();

  if (state.BusyPort == Port) {
    const int answer = MsgBox(QStringLiteral("Schnittstelle wird schon verwendet ( Mouse ? )\n"
                                             "Trotzdem versuchen ?"),
                              vbOKCancel + vbExclamation, QStringLiteral(" Achtung"));
    if (answer == vbCancel) return QStringLiteral("!Bitte andere Schnittstelle auswählen");
  }

  // Clock and deadline stay at zero when the exchange fails before it is armed, so that the
  // judgement at the end leaves an error text alone.
  TimePoint clock{};
  TimePoint deadline{};
  QString result;

  auto judge = [&] {
    const bool late = clock > deadline;
    if (late) return result.isEmpty() ? kNoReception : kNoValidData;
    return result.isEmpty() ? kWrongData : result;
  };

  CommResult r = MSComm1.setCommPort(Port);
  if (failed(r)) return QStringLiteral("!") + r.description;
  r = MSComm1.setSettings(Settings);
  if (failed(r)) return QStringLiteral("!") + r.description;
  MSComm1.setInputLen(0);
  MSComm1.setInputMode(0);
  MSComm1.setHandshaking(0);
  r = MSComm1.setPortOpen(true);
  if (failed(r)) return QStringLiteral("!") + r.description;

  QCoreApplication::processEvents();

  // The rate is read up to the first comma and rounded like a 32-bit integer.
  const auto baud = ToInt32(Val(Settings));
  if (!baud) return QStringLiteral("!Überlauf");
  if (*baud == 0) return QStringLiteral("!Division durch Null");
  if (*baud < 0) return QStringLiteral("!Ungültiger Prozeduraufruf oder ungültiges Argument");
  const Millis wait(ExchangeWaitMs(*baud));

  clock = nowMs();
  deadline = clock + wait;
  // A stream of other "$GP" sentences keeps moving the deadline; this bound makes the wait
  // end however finely the clock ticks.
  const TimePoint bound = deadline;
  SentenceScanner scanner;

  for (;;) {
    if (!MSComm1.portOpen()) return judge();
    if (MSComm1.inBufferCount() > kChunkThreshold) {
      const QString chunk = MSComm1.input();
      if (!chunk.isEmpty() && chunk.contains(u"$GP")) {
        const auto step = scanner.add(chunk);
        if (step == SentenceScanner::Step::NoKnownType) {
          deadline = std::min(clock + Millis(kRearmMs), bound);
        } else if (step == SentenceScanner::Step::Found) {
          result = scanner.sentence();
          RawBuffer = scanner.rawBuffer();
          break;
        }
      }
    }
    clock = nowMs();
    if (!(clock < deadline)) break;
    // Sleep on the port instead of spinning; the wake-up is the clock reading that the
    // next pass compares against.
    if (MSComm1.inBufferCount() <= kChunkThreshold) {
      const auto left = static_cast<int>(std::ceil((deadline - clock).count()));
      MSComm1.waitForInput(std::max(left, 1));
      clock = nowMs();
    }
  }

  r = MSComm1.setPortOpen(false);
  if (failed(r)) {
    result = QStringLiteral("!") + r.description;
    RawBuffer.clear();
  }
  return judge();
}

}  // namespace marvento
