#include "Capture.h"

namespace marvento::nmeasim {

namespace {

std::string_view SentenceName(std::string_view line) {
  const auto dollar = line.find('$');
  if (dollar == std::string_view::npos) return {};
  line.remove_prefix(dollar);
  // Some receivers double the "$"; the sentence begins at the last one.
  while (line.size() > 1 && line[1] == '$') line.remove_prefix(1);
  return line.substr(0, line.find(','));
}

}  // namespace

std::optional<std::string> BurstTime(std::string_view line) {
  const std::string_view name = SentenceName(line);
  // "$" + two-letter talker + three-letter type
  if (name.size() != 6) return std::nullopt;
  const std::string_view type = name.substr(3);
  if (type != "GGA" && type != "RMC") return std::nullopt;
  const auto start = line.find(name) + name.size();
  if (start >= line.size() || line[start] != ',') return std::nullopt;
  const std::string_view time = line.substr(start + 1, 6);
  if (time.size() != 6) return std::nullopt;
  for (char c : time)
    if (c < '0' || c > '9') return std::nullopt;
  return std::string(time);
}

std::vector<Burst> ReadCapture(std::istream& in) {
  std::vector<Burst> bursts;
  Burst current;
  std::optional<std::string> currentTime;
  std::string firstName;

  auto close = [&] {
    if (!current.empty()) bursts.push_back(std::move(current));
    current.clear();
    currentTime.reset();
    firstName.clear();
  };

  std::string line;
  while (std::getline(in, line)) {
    while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) line.pop_back();
    if (line.empty() || line[0] == '#') continue;

    const auto time = BurstTime(line);
    const std::string name(SentenceName(line));
    bool fresh = current.size() >= kMaxBurstLines;
    if (time && currentTime && *time != *currentTime) fresh = true;
    if (!currentTime && !current.empty() && !name.empty() && name == firstName &&
        !name.ends_with("GSV"))
      fresh = true;
    if (fresh) close();

    if (current.empty()) firstName = name;
    if (time && !currentTime) currentTime = time;
    current.push_back(std::move(line));
  }
  close();
  return bursts;
}

}  // namespace marvento::nmeasim
