// The sentence detection of the serial exchange, fed a receive stream cut into chunks of
// random lengths: where the cuts fall must not change what is found.
#include "FuzzSupport.h"
#include "gps/GpsOpenPort.h"

using namespace marvento;
using marvento::fuzz::Check;

namespace {

const QString kNames[] = {QStringLiteral("$GPGGA"), QStringLiteral("$GPRMC"), QStringLiteral("$GPGLL")};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input in(data, size);
  std::uint32_t state = in.byte() | (in.byte() << 8) | 1u;
  const QString stream = in.restLatin1();

  SentenceScanner whole;
  const SentenceScanner::Step wholeStep = whole.add(stream);

  SentenceScanner chunked;
  SentenceScanner::Step step = SentenceScanner::Step::NoKnownType;
  qsizetype taken = 0;
  while (taken < stream.size()) {
    // A small generator picks chunk lengths of 0 to 63 characters from the input's seed.
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    const qsizetype length = std::min<qsizetype>(state % 64, stream.size() - taken);
    step = chunked.add(stream.mid(taken, length));
    taken += length;
    if (step == SentenceScanner::Step::Found) break;
  }
  Check(chunked.received() == stream.left(taken), "the receive text is the chunks in order", stream);

  if (step != SentenceScanner::Step::Found) {
    Check(wholeStep != SentenceScanner::Step::Found, "chunks find what the whole text finds", stream);
    Check(step == wholeStep || stream.isEmpty(), "chunks end in the state of the whole text", stream);
    return 0;
  }
  Check(wholeStep == SentenceScanner::Step::Found, "the whole text finds what chunks find", stream);
  Check(chunked.sentence() == whole.sentence(), "chunks find the same sentence",
        chunked.sentence() + QStringLiteral(" / ") + whole.sentence());

  const QString& s = chunked.sentence();
  bool named = false;
  for (const QString& name : kNames) named = named || s.startsWith(name);
  Check(named, "a found sentence begins with a known name", s);
  Check(!QStringView(s).mid(1).contains(u"$G"), "a found sentence ends before the next one", s);
  // No known sentence begins earlier in the stream.
  const qsizetype at = stream.indexOf(s);
  for (const QString& name : kNames) {
    const qsizetype pos = stream.indexOf(name);
    Check(pos < 0 || pos >= at, "the first known sentence is taken", stream);
  }
  const bool hasRmc = chunked.received().contains(u"$GPRMC");
  Check(chunked.rawBuffer() == (hasRmc ? chunked.received() : QString()),
        "the raw buffer is kept when it holds an RMC sentence", stream);
  return 0;
}
