#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <QProcess>

#include <chrono>
#include <filesystem>
#include <set>
#include <string>

#include "NmeaText.h"

namespace marvento::nmeasim {
namespace {

using Clock = std::chrono::steady_clock;

// Opens the port as one poll of Marvento does, reads for `seconds` and closes it again.
std::string ReadPort(const std::string& path, double seconds) {
  const int fd = open(path.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK);
  if (fd < 0) return "open failed";
  std::string got;
  for (auto end = Clock::now() + std::chrono::duration<double>(seconds); Clock::now() < end;) {
    pollfd p{fd, POLLIN, 0};
    char buf[1024];
    if (poll(&p, 1, 20) > 0)
      if (const ssize_t n = read(fd, buf, sizeof buf); n > 0) got.append(buf, n);
  }
  close(fd);
  return got;
}

// One poll after another on the link the simulator makes: whole checksummed sentences,
// a new burst every second, no backlog beyond the baud rate, the link gone after SIGTERM.
TEST(NmeaSimProgram, ServesPollsOnItsLinkWithDropouts) {
  const std::filesystem::path link =
      std::filesystem::temp_directory_path() / ("nmea-sim-test-" + std::to_string(getpid()));
  std::filesystem::remove(link);
  // Every other second without a fix. The first line it writes is the link.
  QProcess sim;
  sim.start(QStringLiteral(MARVENTO_NMEA_SIM),
            {"--link", QString::fromStdString(link.string()), "--talker", "GN", "--duration", "30",
             "--dropout", "1", "--dropout-every", "2"});
  while (!sim.canReadLine() && sim.waitForReadyRead(5000)) {
  }
  ASSERT_EQ(sim.readLine().trimmed().toStdString(), link.string());
  EXPECT_TRUE(std::filesystem::read_symlink(link).string().starts_with("/dev/"));

  const std::string got = ReadPort(link.string(), 3.2);
  // Whole sentences are those that begin and end within what was read.
  std::set<std::string> ggaTimes, fixQualities;
  int sentences = 0;
  for (auto start = got.find('$'), end = got.find("\r\n", start);
       start != std::string::npos && end != std::string::npos;
       start = got.find('$', end), end = got.find("\r\n", start)) {
    const std::string s = got.substr(start, end + 2 - start);
    ++sentences;
    EXPECT_TRUE(HasValidChecksum(s)) << s;
    EXPECT_EQ(s.find('\r'), s.size() - 2) << s;
    if (!s.starts_with("$GNGGA,")) continue;
    const QList<QByteArray> fields = QByteArray::fromStdString(s).split(',');
    ggaTimes.insert(fields.value(1).toStdString());
    fixQualities.insert(fields.value(6).toStdString());
  }
  EXPECT_GE(sentences, 6) << got;
  EXPECT_GE(ggaTimes.size(), 3u) << got;
  EXPECT_EQ(fixQualities, (std::set<std::string>{"0", "1"})) << got;

  usleep(1600000);  // more than a second's worth goes unheard
  // At 4800 baud no more than one second's worth may be waiting for the next poll.
  EXPECT_LE(ReadPort(link.string(), 0.05).size(), 480u);
  sim.terminate();
  ASSERT_TRUE(sim.waitForFinished(5000));
  EXPECT_EQ(sim.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(sim.exitCode(), 0);
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
}

}  // namespace
}  // namespace marvento::nmeasim
