// The decoding of one poll's sentence. The input is a receive text: every line of it is
// decoded on its own, and the sentence the exchange would pick is decoded with the text.
#include "FuzzSupport.h"
#include "distance/Coordinates.h"
#include "gps/NmeaSentences.h"
#include "gps/SentenceDecoding.h"
#include "gps/SentenceScanner.h"

#include <cmath>

using namespace marvento;
using marvento::fuzz::Check;

namespace {

void decode(const QString& sentence, const QString& rawBuffer) {
  const DecodedSentence d = DecodeSentence(sentence, rawBuffer);
  // "$", two capital letters of any talker and the type's name make the address; only the
  // address itself, ended by a comma or the text's end, makes a known type.
  const QString address = sentence.section(u',', 0, 0);
  const QStringView name = QStringView(address).mid(3);
  const bool talker = address.size() == 6 && address[0] == u'$' && address[1] >= u'A' &&
                      address[1] <= u'Z' && address[2] >= u'A' && address[2] <= u'Z';
  SentenceKind expected = !talker          ? SentenceKind::Other
                          : name == u"GGA" ? SentenceKind::Gga
                          : name == u"RMC" ? SentenceKind::Rmc
                          : name == u"GLL" ? SentenceKind::Gll
                                           : SentenceKind::Other;
  if (!ChecksumRight(sentence)) expected = SentenceKind::Other;
  Check(d.kind == expected, "the address and the checksum decide the type", sentence);
  if (!d.timeAndPosition) Check(!d.positionGood, "no position without decoding", sentence);
  (void)d.hasTime();
  (void)d.finalInfo();
  (void)CourseLine(d.kursText, QStringLiteral("12:35:19"));
  if (d.heightSample) (void)HeightLine(d.heightSample->alt, d.heightSample->sats);
  (void)ParseCoordinates(d.lgText(false).trimmed(), d.brText(false).trimmed(), false);
  // A minus inside a position field makes its degrees negative and, with the hemisphere's
  // sign in front, a text no entry reads; receivers send digits and a point only.
  if (!d.positionGood || d.lon.deg < 0 || d.lat.deg < 0) return;

  // A good position goes into the own fields as text, and the compute command reads it
  // from there: in the decimal form it must read back as the decoded position.
  const QString lg = d.lgText(true).trimmed();
  const QString br = d.brText(true).trimmed();
  const CoordinateRead read = ParseCoordinates(lg, br, true);
  const QString shown = sentence + QStringLiteral(" -> ") + lg + QStringLiteral(" | ") + br;
  Check(read.ok, "a good GPS position is accepted by the coordinate entry", shown);
  const double lgDeg = d.lonSign == u"-" ? -d.lon.deg : d.lon.deg;
  const double brDeg = d.latSign == u"-" ? -d.lat.deg : d.lat.deg;
  Check(std::fabs(read.Lg - lgDeg) <= 1e-12 * std::fabs(lgDeg) + 1e-300 &&
            std::fabs(read.Br - brDeg) <= 1e-12 * std::fabs(brDeg) + 1e-300,
        "the fields keep the GPS position", shown);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::UseGermanLocale();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Serial data reaches the program as one character per byte.
  const QString received =
      QString::fromLatin1(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  for (const QString& line : received.split(u'\n')) decode(line, QString());

  SentenceScanner scanner;
  if (scanner.add(received) == SentenceScanner::Step::Found) {
    decode(scanner.sentence(), scanner.rawBuffer());
    const QString rmc = FindRmcLine(scanner.rawBuffer());
    if (!rmc.isEmpty()) {
      const QString rmcAddress = rmc.section(u',', 0, 0);
      Check(rmcAddress.size() == 6 && rmcAddress.startsWith(u'$') && rmcAddress.endsWith(u"RMC"),
            "the RMC line begins with an RMC address", rmc);
      Check(ChecksumRight(rmc), "the RMC line has no wrong checksum", rmc);
    }
  }
  return 0;
}
