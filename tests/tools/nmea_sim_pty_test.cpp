#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "NmeaText.h"

extern char** environ;

namespace marvento::nmeasim {
namespace {

using Clock = std::chrono::steady_clock;

// The built simulator as a child process, with the first line of its standard output.
struct Simulator {
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
    if (posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ) != 0) pid = -1;
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    pollfd p{fds[0], POLLIN, 0};
    for (char c = 0; poll(&p, 1, 5000) > 0 && read(fds[0], &c, 1) == 1 && c != '\n';) line += c;
    close(fds[0]);
  }
  ~Simulator() {
    if (pid > 0 && kill(pid, SIGKILL) == 0) waitpid(pid, nullptr, 0);
  }
  // SIGTERM, then the exit status, or -1 if the program is still running after 5 s.
  int Stop() {
    kill(pid, SIGTERM);
    for (auto end = Clock::now() + std::chrono::seconds(5); Clock::now() < end; usleep(20000)) {
      int status = 0;
      if (waitpid(pid, &status, WNOHANG) == pid) {
        pid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      }
    }
    return -1;
  }
  pid_t pid = -1;
  std::string line;
};

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
  // Every other second without a fix.
  Simulator sim({"--link", link.string(), "--talker", "GN", "--duration", "30", "--dropout", "1",
                 "--dropout-every", "2"});
  ASSERT_EQ(sim.line, link.string());
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
    ggaTimes.insert(s.substr(7, 9));
    std::size_t field = 0;
    for (int i = 0; i < 6 && field != std::string::npos; ++i) field = s.find(',', field + 1);
    if (field != std::string::npos) fixQualities.insert(s.substr(field + 1, 1));
  }
  EXPECT_GE(sentences, 6) << got;
  EXPECT_GE(ggaTimes.size(), 3u) << got;
  EXPECT_EQ(fixQualities, (std::set<std::string>{"0", "1"})) << got;

  usleep(1600000);  // more than a second's worth goes unheard
  // At 4800 baud no more than one second's worth may be waiting for the next poll.
  EXPECT_LE(ReadPort(link.string(), 0.05).size(), 480u);
  EXPECT_EQ(sim.Stop(), 0);
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
}

}  // namespace
}  // namespace marvento::nmeasim
