#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace marvento::nmeasim {

// Where the sentences go: the master side of a pseudo-terminal we own, or a device someone
// else made. Writes never block: what the line cannot take is dropped, as on a real port
// whose reader is not listening.
class Output {
 public:
  // Opens a pseudo-terminal. Its serial side is kept open here, so it stays usable while
  // readers open and close it, and set raw so nothing is echoed or translated. With a
  // non-empty `link`, a symbolic link to it is made there and removed again by the destructor.
  static std::unique_ptr<Output> OpenPty(long baud, const std::string& link, std::string& error);

  // Opens a serial port or a pseudo-terminal made elsewhere, raw and at `baud` if it is a tty.
  static std::unique_ptr<Output> OpenDevice(const std::string& path, long baud, std::string& error);

  ~Output();
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  // The path a reader should open.
  const std::string& Path() const { return m_path; }

  // Called when a new second begins: what nobody has read of the last one is thrown away,
  // as a real receiver's port holds nothing while it is closed.
  void NewBurst();

  // Writes up to `size` bytes; returns how many went out. Fewer means the line is full.
  std::size_t Write(const char* data, std::size_t size);

  // Reads and discards whatever a reader sent to the receiver.
  void Drain();

 private:
  Output() = default;

  int m_fd = -1;     // pty master or device
  int m_slave = -1;  // our own hold on the pty's serial side
  bool m_pty = false;
  std::string m_path;  // what readers open: the link if there is one
  std::string m_slavePath;
  std::string m_link;
};

}  // namespace marvento::nmeasim
