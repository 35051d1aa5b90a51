#include <signal.h>
#include <time.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "Capture.h"
#include "Options.h"
#include "Output.h"
#include "Pacing.h"
#include "Receiver.h"

namespace {

using namespace marvento::nmeasim;

volatile sig_atomic_t g_stop = 0;

void OnSignal(int) {
  g_stop = 1;
}

double Seconds(clockid_t clock) {
  timespec ts{};
  clock_gettime(clock, &ts);
  return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9;
}

void Sleep(double seconds) {
  if (seconds <= 0) return;
  timespec ts{};
  ts.tv_sec = static_cast<time_t>(seconds);
  ts.tv_nsec = static_cast<long>((seconds - static_cast<double>(ts.tv_sec)) * 1e9);
  nanosleep(&ts, nullptr);  // a signal cuts it short, which is what we want
}

void InstallSignals() {
  struct sigaction sa {};
  sa.sa_handler = OnSignal;
  sigemptyset(&sa.sa_mask);
  sigaction(SIGINT, &sa, nullptr);
  sigaction(SIGTERM, &sa, nullptr);
  sigaction(SIGHUP, &sa, nullptr);
  signal(SIGPIPE, SIG_IGN);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string program = "marvento-nmea-sim";
  const ParseResult parsed = ParseOptions(std::vector<std::string>(argv + 1, argv + argc));
  if (!parsed.error.empty()) {
    std::cerr << program << ": " << parsed.error << "\nTry '" << program << " --help'.\n";
    return 2;
  }
  const Options& opt = parsed.options;
  if (opt.help) {
    std::cout << Usage(program);
    return 0;
  }

  std::vector<Burst> capture;
  if (!opt.replay.empty()) {
    std::ifstream in(opt.replay, std::ios::binary);
    if (!in) {
      std::cerr << program << ": cannot read " << opt.replay << "\n";
      return 1;
    }
    capture = ReadCapture(in);
    if (capture.empty()) {
      std::cerr << program << ": " << opt.replay << " holds no sentences\n";
      return 1;
    }
  }

  InstallSignals();
  std::string error;
  std::unique_ptr<Output> out = opt.device.empty()
                                    ? Output::OpenPty(opt.baud, opt.link, error)
                                    : Output::OpenDevice(opt.device, opt.baud, error);
  if (!out) {
    std::cerr << program << ": " << error << "\n";
    return 1;
  }
  if (opt.device.empty()) {
    std::cout << out->Path() << std::endl;
  }

  const unsigned seed = opt.seedGiven ? opt.seed : std::random_device{}();
  Receiver receiver(opt.track, opt.talker, seed);
  const long cps = CharsPerSecond(opt.baud);
  const double monoStart = Seconds(CLOCK_MONOTONIC);

  double second = -1;     // the UTC second in which the burst on the line began
  double nextStart = -1;  // the earliest UTC second for the next burst
  std::string pending;
  std::size_t sent = 0;
  std::size_t replayIndex = 0;
  bool warnedCut = false;
  const bool spread = !capture.empty();

  while (!g_stop) {
    const double mono = Seconds(CLOCK_MONOTONIC) - monoStart;
    if (opt.duration > 0 && mono >= opt.duration) break;
    const double now = Seconds(CLOCK_REALTIME);

    // A receiver starts each burst at the top of the UTC second; a clock that is set
    // (Marvento can do that) simply starts the next burst at once. A captured burst too long
    // for the line runs on into the next second, as it did on the receiver that sent it;
    // a generated one is cut to what fits.
    const double thisSecond = std::floor(now);
    const bool finished = sent >= pending.size();
    if (thisSecond < second || (thisSecond >= nextStart && (finished || !spread))) {
      second = thisSecond;
      nextStart = second + 1;
      std::vector<std::string> sentences;
      if (capture.empty()) {
        sentences =
            receiver.Burst(static_cast<std::time_t>(second), static_cast<long>(std::floor(mono)));
      } else {
        for (const auto& line : capture[replayIndex]) sentences.push_back(line + "\r\n");
        replayIndex = (replayIndex + 1) % capture.size();
      }
      const std::size_t fit = spread ? sentences.size() : FitBurst(sentences, cps);
      if (fit < sentences.size() && !warnedCut) {
        std::cerr << program << ": a burst does not fit into one second at " << opt.baud
                  << " baud; sentences that do not fit are dropped\n";
        warnedCut = true;
      }
      pending.clear();
      for (std::size_t i = 0; i < fit; ++i) pending += sentences[i];
      sent = 0;
      out->NewBurst();
    }

    const std::size_t due = CharsDue(now - second, cps, pending.size());
    if (due > sent) {
      const std::size_t want = due - sent;
      // A full line means nobody is reading: drop the rest of this burst.
      sent = out->Write(pending.data() + sent, want) < want ? pending.size() : due;
    }
    if (sent < pending.size()) nextStart = thisSecond + 1;
    out->Drain();

    const double later = Seconds(CLOCK_REALTIME);
    const double toNextSecond = std::floor(later) + 1.0 - later;
    Sleep(sent < pending.size() ? std::min(0.01, toNextSecond) : toNextSecond);
  }
  return 0;
}
