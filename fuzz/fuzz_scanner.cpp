// The sentence detection of the serial exchange, fed a receive stream cut into chunks of
// random lengths: where the cuts fall must not change what is found, and what is found is
// the first intact sentence of a known type, whatever its talker.
#include "FuzzSupport.h"
#include "gps/NmeaSentences.h"
#include "gps/SentenceScanner.h"

using namespace marvento;
using marvento::fuzz::Check;

namespace {

// The type of the sentence that begins at `at`, which runs up to the next "$".
const SentenceType* typeAt(QStringView stream, qsizetype at, QStringView& sentence) {
  const qsizetype next = stream.indexOf(u'$', at + 1);
  sentence = next < 0 ? stream.mid(at) : stream.mid(at, next - at);
  const qsizetype comma = sentence.indexOf(u',');
  return comma < 0 ? nullptr : TypeOfAddress(sentence.left(comma));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input in(data, size);
  std::uint32_t state = in.byte() | (in.byte() << 8) | 1u;
  // Beyond its bound the scanner keeps only the tail, and the cuts may then matter.
  const QString stream = in.restLatin1().left(SentenceScanner::kMaxReceived);

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
  Check(chunked.received() == stream.left(taken), "the receive text is the chunks in order",
        stream);

  if (step != SentenceScanner::Step::Found) {
    Check(wholeStep != SentenceScanner::Step::Found, "chunks find what the whole text finds",
          stream);
    Check(step == wholeStep || stream.isEmpty(), "chunks end in the state of the whole text",
          stream);
    return 0;
  }
  Check(wholeStep == SentenceScanner::Step::Found, "the whole text finds what chunks find", stream);
  Check(chunked.sentence() == whole.sentence(), "chunks find the same sentence",
        chunked.sentence() + QStringLiteral(" / ") + whole.sentence());

  const QString& s = chunked.sentence();
  QStringView found;
  const SentenceType* type = typeAt(s, 0, found);
  Check(type != nullptr, "a found sentence begins with a known address of any talker", s);
  Check(!QStringView(s).mid(1).contains(u'$'), "a found sentence ends before the next one", s);
  Check(ChecksumRight(s), "a found sentence has no wrong checksum", s);
  Check(type == nullptr || s.count(u',') + 1 >= type->leastFields,
        "a found sentence has the fields of its type", s);
  Check(HoldsSentenceStart(stream), "a stream with a sentence holds a sentence start", stream);
  // Every known sentence that begins earlier in the stream was refused.
  const qsizetype at = stream.indexOf(s);
  for (qsizetype p = stream.indexOf(u'$'); p >= 0 && p < at; p = stream.indexOf(u'$', p + 1)) {
    QStringView earlier;
    const SentenceType* earlierType = typeAt(stream, p, earlier);
    Check(earlierType == nullptr || !ChecksumRight(earlier) ||
              earlier.count(u',') + 1 < earlierType->leastFields,
          "the first intact known sentence is taken", stream);
  }
  const QString raw = chunked.rawBuffer();
  Check(raw.isEmpty() || raw == chunked.received(), "the raw buffer is all or nothing", stream);
  if (type != nullptr && type->kind == SentenceKind::Rmc) {
    Check(raw == chunked.received(), "the raw buffer is kept behind an RMC sentence", stream);
  }
  return 0;
}
