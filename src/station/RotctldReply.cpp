#include "station/RotctldReply.h"

#include <QByteArray>

#include <cmath>
#include <optional>

namespace marvento {

namespace {

struct Line {
  QByteArrayView text;
  qsizetype end = 0;  // just past its LF
};

enum class LineState { Found, Missing, TooLong };

// The line starting at from; Missing when no LF follows yet.
LineState nextLine(QByteArrayView buffer, qsizetype from, Line& line) {
  const qsizetype lf = buffer.indexOf('\n', from);
  if (lf < 0)
    return buffer.size() - from > kRotctldMaxLine ? LineState::TooLong : LineState::Missing;
  if (lf - from > kRotctldMaxLine) return LineState::TooLong;
  QByteArrayView text = buffer.sliced(from, lf - from);
  if (text.endsWith('\r')) text.chop(1);
  line = {text, lf + 1};
  return LineState::Found;
}

// "RPRT <n>": n as an int, or nothing when the line is no report.
std::optional<int> report(QByteArrayView line) {
  if (!line.startsWith("RPRT ")) return std::nullopt;
  const QByteArrayView number = line.sliced(5);
  if (number.isEmpty() || number.size() > 11) return std::nullopt;
  bool ok = false;
  const int code = QByteArray(number.data(), number.size()).toInt(&ok);
  if (!ok) return std::nullopt;
  return code;
}

std::optional<double> angle(QByteArrayView line, double low, double high) {
  if (line.isEmpty()) return std::nullopt;
  // Only what a printf("%f") writes; toDouble would also take "nan", "inf" and blanks.
  for (const char c : line) {
    if (!((c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E')) {
      return std::nullopt;
    }
  }
  bool ok = false;
  const double value = QByteArray(line.data(), line.size()).toDouble(&ok);
  if (!ok || !std::isfinite(value) || value < low || value > high) return std::nullopt;
  return value;
}

RotctldReply kind(RotctldReply::Kind k, qsizetype consumed = 0) {
  RotctldReply reply;
  reply.kind = k;
  reply.consumed = consumed;
  return reply;
}

}  // namespace

RotctldReply ReadRotctldReply(RotctldCommand command, QByteArrayView buffer) {
  Line first;
  switch (nextLine(buffer, 0, first)) {
    case LineState::Missing: return kind(RotctldReply::Incomplete);
    case LineState::TooLong: return kind(RotctldReply::Malformed);
    case LineState::Found: break;
  }
  if (const std::optional<int> code = report(first.text)) {
    if (*code == 0) {
      // A successful p answers with its two lines, not with a report.
      if (command == RotctldCommand::GetPosition) return kind(RotctldReply::Malformed);
      return kind(RotctldReply::Done, first.end);
    }
    RotctldReply reply = kind(RotctldReply::Error, first.end);
    reply.code = *code;
    return reply;
  }
  if (command == RotctldCommand::SetPosition) return kind(RotctldReply::Malformed);

  const std::optional<double> azimuth = angle(first.text, -360, 720);
  if (!azimuth) return kind(RotctldReply::Malformed);
  Line second;
  switch (nextLine(buffer, first.end, second)) {
    case LineState::Missing: return kind(RotctldReply::Incomplete);
    case LineState::TooLong: return kind(RotctldReply::Malformed);
    case LineState::Found: break;
  }
  const std::optional<double> elevation = angle(second.text, -90, 180);
  if (!elevation) return kind(RotctldReply::Malformed);
  RotctldReply reply = kind(RotctldReply::Position, second.end);
  reply.azimuth = *azimuth;
  reply.elevation = *elevation;
  return reply;
}

}  // namespace marvento
