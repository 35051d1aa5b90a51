#pragma once

#include <string>
#include <vector>

#include "Track.h"

namespace marvento::nmeasim {

struct Options {
  std::string link;    // --link: symlink to the pseudo-terminal, removed on exit
  std::string device;  // --device: write to this port instead of a pseudo-terminal
  std::string replay;  // --replay: capture file to play instead of a generated track
  long baud = 4800;    // --baud
  std::string talker = "GP";
  TrackConfig track;
  unsigned seed = 0;  // --seed, for repeatable height noise
  bool seedGiven = false;
  double duration = 0;  // --duration: stop after so many seconds, 0 = run until stopped
  bool help = false;
};

struct ParseResult {
  Options options;
  std::string error;  // empty when the command line is good
};

// Reads the arguments after the program name. Both "--name VALUE" and "--name=VALUE" work.
ParseResult ParseOptions(const std::vector<std::string>& args);

// The text of --help.
std::string Usage(const std::string& program);

// The standard rates a serial port accepts.
bool IsStandardBaud(long baud);

}  // namespace marvento::nmeasim
