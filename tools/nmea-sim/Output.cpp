#include "Output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>

namespace marvento::nmeasim {

namespace {

std::string Errno(const std::string& what) {
  return what + ": " + std::strerror(errno);
}

speed_t Speed(long baud) {
  static const std::map<long, speed_t> speeds = {
      {300, B300},     {600, B600},       {1200, B1200},    {2400, B2400},
      {4800, B4800},   {9600, B9600},     {19200, B19200},  {38400, B38400},
      {57600, B57600}, {115200, B115200}, {230400, B230400}};
  const auto it = speeds.find(baud);
  return it == speeds.end() ? B4800 : it->second;
}

bool MakeRaw(int fd, long baud, std::string& error, const std::string& path) {
  termios tio{};
  if (tcgetattr(fd, &tio) != 0) {
    error = Errno("cannot read the line settings of " + path);
    return false;
  }
  cfmakeraw(&tio);
  tio.c_cflag |= CLOCAL | CREAD;
  tio.c_cflag &= ~static_cast<tcflag_t>(CRTSCTS);
  cfsetispeed(&tio, Speed(baud));
  cfsetospeed(&tio, Speed(baud));
  if (tcsetattr(fd, TCSANOW, &tio) != 0) {
    error = Errno("cannot set the line settings of " + path);
    return false;
  }
  return true;
}

}  // namespace

std::unique_ptr<Output> Output::OpenPty(long baud, const std::string& link, std::string& error) {
  std::unique_ptr<Output> out(new Output);
  out->m_pty = true;
  out->m_fd = posix_openpt(O_RDWR | O_NOCTTY);
  if (out->m_fd < 0) {
    error = Errno("cannot open a pseudo-terminal");
    return nullptr;
  }
  char name[128];
  if (grantpt(out->m_fd) != 0 || unlockpt(out->m_fd) != 0 ||
      ptsname_r(out->m_fd, name, sizeof name) != 0) {
    error = Errno("cannot prepare the pseudo-terminal");
    return nullptr;
  }
  fcntl(out->m_fd, F_SETFL, fcntl(out->m_fd, F_GETFL) | O_NONBLOCK);
  out->m_slavePath = name;
  out->m_slave = open(name, O_RDWR | O_NOCTTY | O_NONBLOCK);
  if (out->m_slave < 0) {
    error = Errno("cannot open " + out->m_slavePath);
    return nullptr;
  }
  if (!MakeRaw(out->m_slave, baud, error, out->m_slavePath)) return nullptr;

  out->m_path = out->m_slavePath;
  if (!link.empty()) {
    struct stat st {};
    if (lstat(link.c_str(), &st) == 0) {
      // A link left by a run that was killed is ours to replace; anything else is not.
      if (!S_ISLNK(st.st_mode)) {
        error = "refusing to replace " + link + ": it exists and is not a symbolic link";
        return nullptr;
      }
      if (unlink(link.c_str()) != 0) {
        error = Errno("cannot remove the old link " + link);
        return nullptr;
      }
    }
    if (symlink(out->m_slavePath.c_str(), link.c_str()) != 0) {
      error = Errno("cannot make the link " + link);
      return nullptr;
    }
    out->m_link = link;
    out->m_path = link;
  }
  return out;
}

std::unique_ptr<Output> Output::OpenDevice(const std::string& path, long baud, std::string& error) {
  std::unique_ptr<Output> out(new Output);
  out->m_fd = open(path.c_str(), O_WRONLY | O_NOCTTY | O_NONBLOCK);
  if (out->m_fd < 0) {
    error = Errno("cannot open " + path);
    if (errno == EACCES) error += " (is the user in the group dialout?)";
    return nullptr;
  }
  if (isatty(out->m_fd) && !MakeRaw(out->m_fd, baud, error, path)) return nullptr;
  out->m_path = path;
  return out;
}

Output::~Output() {
  if (!m_link.empty()) {
    // Only remove the link if it is still the one we made.
    char target[256];
    const ssize_t n = readlink(m_link.c_str(), target, sizeof target - 1);
    if (n >= 0 && std::string(target, static_cast<std::size_t>(n)) == m_slavePath)
      unlink(m_link.c_str());
  }
  if (m_slave >= 0) close(m_slave);
  if (m_fd >= 0) close(m_fd);
}

void Output::NewBurst() {
  if (m_pty) {
    tcflush(m_slave, TCIFLUSH);
  } else if (isatty(m_fd)) {
    tcflush(m_fd, TCOFLUSH);
  }
}

std::size_t Output::Write(const char* data, std::size_t size) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t n = write(m_fd, data + done, size - done);
    if (n > 0) {
      done += static_cast<std::size_t>(n);
    } else if (n < 0 && errno == EINTR) {
      continue;
    } else {
      break;
    }
  }
  return done;
}

void Output::Drain() {
  if (!m_pty) return;
  char buf[512];
  while (read(m_fd, buf, sizeof buf) > 0) {
  }
}

}  // namespace marvento::nmeasim
