#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "NmeaText.h"

extern char** environ;

namespace marvento::nmeasim {
namespace {

#ifdef MARVENTO_NMEA_SIM

using Clock = std::chrono::steady_clock;

// The simulator running as a child, with the first line of its standard output.
class Simulator {
 public:
  explicit Simulator(std::vector<std::string> args) {
    args.insert(args.begin(), MARVENTO_NMEA_SIM);
    std::vector<char*> argv;
    for (auto& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    int fds[2];
    if (pipe(fds) != 0) return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, fds[0]);
    if (posix_spawn(&m_pid, argv[0], &actions, nullptr, argv.data(), environ) != 0) m_pid = -1;
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    m_out = fds[0];
    m_firstLine = ReadLine();
  }

  ~Simulator() {
    if (m_pid > 0) {
      kill(m_pid, SIGKILL);
      waitpid(m_pid, nullptr, 0);
    }
    if (m_out >= 0) close(m_out);
  }

  const std::string& FirstLine() const { return m_firstLine; }

  // Sends SIGTERM and gives the exit status, or -1 if the program did not end in 5 s.
  int Stop() {
    kill(m_pid, SIGTERM);
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    while (Clock::now() < deadline) {
      int status = 0;
      if (waitpid(m_pid, &status, WNOHANG) == m_pid) {
        m_pid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      }
      usleep(20000);
    }
    return -1;
  }

 private:
  std::string ReadLine() {
    std::string line;
    pollfd p{m_out, POLLIN, 0};
    while (poll(&p, 1, 5000) > 0) {
      char c;
      if (read(m_out, &c, 1) != 1 || c == '\n') break;
      line += c;
    }
    return line;
  }

  pid_t m_pid = -1;
  int m_out = -1;
  std::string m_firstLine;
};

// Opens the port like a poll does, reads for `seconds`, closes it again.
std::string ReadPort(const std::string& path, double seconds) {
  const int fd = open(path.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK);
  if (fd < 0) return "open failed";
  std::string got;
  const auto end = Clock::now() + std::chrono::duration<double>(seconds);
  while (Clock::now() < end) {
    pollfd p{fd, POLLIN, 0};
    if (poll(&p, 1, 50) > 0) {
      char buf[1024];
      const ssize_t n = read(fd, buf, sizeof buf);
      if (n > 0) got.append(buf, static_cast<std::size_t>(n));
    }
  }
  close(fd);
  return got;
}

// The whole sentences in a stretch of the stream: those that both begin and end in it.
std::vector<std::string> WholeSentences(const std::string& text) {
  std::vector<std::string> out;
  std::size_t start = text.find('$');
  while (start != std::string::npos) {
    const std::size_t end = text.find("\r\n", start);
    if (end == std::string::npos) break;
    out.push_back(text.substr(start, end + 2 - start));
    start = text.find('$', end);
  }
  return out;
}

std::set<std::string> GgaTimes(const std::vector<std::string>& sentences) {
  std::set<std::string> times;
  for (const auto& s : sentences)
    if (s.starts_with("$GPGGA,")) times.insert(s.substr(7, s.find(',', 7) - 7));
  return times;
}

TEST(NmeaSimProgram, SendsWholeSentencesToEveryShortPoll) {
  Simulator sim({"--baud", "9600", "--duration", "20"});
  const std::string path = sim.FirstLine();
  ASSERT_TRUE(path.starts_with("/dev/")) << path;

  for (int poll = 0; poll < 2; ++poll) {
    SCOPED_TRACE(poll);
    const std::string got = ReadPort(path, 2.2);
    const auto sentences = WholeSentences(got);
    ASSERT_GE(sentences.size(), 6u) << got;
    for (std::size_t i = 1; i + 1 < sentences.size(); ++i) {
      EXPECT_TRUE(HasValidChecksum(sentences[i])) << sentences[i];
      EXPECT_EQ(sentences[i].find('\r'), sentences[i].size() - 2) << sentences[i];
    }
    EXPECT_GE(GgaTimes(sentences).size(), 2u) << got;  // a new fix every second
  }
  EXPECT_EQ(sim.Stop(), 0);
}

TEST(NmeaSimProgram, OldDataIsGoneWhenAPortIsOpenedLate) {
  Simulator sim({"--duration", "20"});
  const std::string path = sim.FirstLine();
  ASSERT_TRUE(path.starts_with("/dev/")) << path;
  usleep(2500000);  // nobody listens for more than two bursts
  const std::string got = ReadPort(path, 0.05);
  // At 4800 baud no more than one second's worth can be waiting.
  EXPECT_LE(got.size(), 480u);
  EXPECT_EQ(sim.Stop(), 0);
}

TEST(NmeaSimProgram, LinkPointsAtThePortAndGoesAwayOnTerm) {
  const std::filesystem::path link =
      std::filesystem::temp_directory_path() / ("nmea-sim-test-" + std::to_string(getpid()));
  std::filesystem::remove(link);
  Simulator sim({"--link", link.string(), "--talker", "GN", "--duration", "20"});
  ASSERT_EQ(sim.FirstLine(), link.string());
  ASSERT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_TRUE(std::filesystem::read_symlink(link).string().starts_with("/dev/"));

  const std::string got = ReadPort(link.string(), 1.5);
  EXPECT_NE(got.find("$GNGGA"), std::string::npos) << got;
  EXPECT_EQ(got.find("$GPGGA"), std::string::npos) << got;

  EXPECT_EQ(sim.Stop(), 0);
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
}

TEST(NmeaSimProgram, RefusesBadCommandLineAndMissingCapture) {
  const struct {
    std::vector<std::string> args;
    int status;
  } cases[] = {
      {{"--lat", "91"}, 2},
      {{"--replay", "/nonexistent/capture.log"}, 1},
      {{"--device", "/nonexistent/ttyS99"}, 1},
      {{"--help"}, 0},
  };
  for (const auto& c : cases) {
    std::string cmd = std::string(MARVENTO_NMEA_SIM);
    for (const auto& a : c.args) cmd += " '" + a + "'";
    cmd += " >/dev/null 2>&1";
    const int status = std::system(cmd.c_str());
    ASSERT_TRUE(WIFEXITED(status)) << cmd;
    EXPECT_EQ(WEXITSTATUS(status), c.status) << cmd;
  }
}

#else

TEST(NmeaSimProgram, NotBuilt) {
  GTEST_SKIP() << "marvento-nmea-sim is not part of this build";
}

#endif

}  // namespace
}  // namespace marvento::nmeasim
