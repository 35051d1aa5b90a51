// The ADIF completion: DISTANCE and ANT_AZ added, nothing else touched.
#include "FuzzSupport.h"
#include "Trickle.h"
#include "contest/AdifComplete.h"

#include <QBuffer>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <utility>
#include <vector>

using namespace marvento;
using marvento::fuzz::Check;

namespace {

QByteArray complete(QIODevice& in, const AdifOptions& options, AdifResult& result) {
  QBuffer out;
  out.open(QIODevice::WriteOnly);
  result = CompleteAdif(in, out, options);
  return out.data();
}

// Length of an added field "<DISTANCE:n>data " (either case) at the front of v, or 0.
qsizetype addedField(QByteArrayView v) {
  for (const char* name : {"<distance:", "<ant_az:"}) {
    const qsizetype n = static_cast<qsizetype>(std::strlen(name));
    if (v.size() < n || qstrnicmp(v.data(), n, name, n) != 0) continue;
    const qsizetype gt = v.indexOf('>');
    if (gt < 0) return 0;
    // Digits only: toInt() would stop at a NUL byte and take what came before.
    const QByteArrayView digits = v.sliced(n, gt - n);
    bool ok = !digits.isEmpty() && digits.size() < 6;
    for (char c : digits) ok = ok && c >= '0' && c <= '9';
    const int len = ok ? digits.toByteArray().toInt() : 0;
    if (!ok || gt + 1 + len + 1 > v.size() || v[gt + 1 + len] != ' ') return 0;
    return gt + 1 + len + 1;
  }
  return 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const QByteArray bytes(reinterpret_cast<const char*>(data) + 1, static_cast<qsizetype>(size - 1));
  AdifOptions options;
  if (data[0] & 1) options.locator = QStringLiteral("JO62QM");

  QBuffer in;
  in.setData(bytes);
  in.open(QIODevice::ReadOnly);
  AdifResult r1;
  const QByteArray out = complete(in, options, r1);
  Check(r1.ok(), "a readable stream is completed", r1.error);
  Check(r1.completed + r1.kept + r1.noGrid + r1.noOwn + r1.tooLong >= r1.records,
        "every record is accounted for");

  fuzz::Trickle pieces(bytes, data[0], 13);
  AdifResult r2;
  Check(complete(pieces, options, r2) == out && r2.records == r1.records,
        "reading in pieces changes nothing");

  // The output is the input with whole added fields between its bytes. Repeated text can
  // be aligned in more than one way, so every alignment is followed (a state is a position in
  // each text; the fields added so far are the difference of the two), not only the first.
  const qsizetype fewestAdded = [&] {
    std::vector<std::pair<qsizetype, qsizetype>> todo{{0, 0}};  // (input, output) positions
    std::set<std::pair<qsizetype, qsizetype>> seen{{0, 0}};
    std::map<std::pair<qsizetype, qsizetype>, qsizetype> fields{{{0, 0}, 0}};
    qsizetype best = -1;
    while (!todo.empty()) {
      const auto [i, o] = todo.back();
      todo.pop_back();
      const qsizetype count = fields[{i, o}];
      if (i == bytes.size() && o == out.size()) {
        best = best < 0 ? count : std::min(best, count);
        continue;
      }
      auto visit = [&](qsizetype ni, qsizetype no, qsizetype nc) {
        if (seen.insert({ni, no}).second) {
          fields[{ni, no}] = nc;
          todo.push_back({ni, no});
        }
      };
      // Matching bytes are followed as far as they go in one step.
      qsizetype ni = i, no = o;
      while (ni < bytes.size() && no < out.size() && bytes[ni] == out[no] &&
             addedField(QByteArrayView(out).sliced(no)) == 0) {
        ++ni;
        ++no;
      }
      if (ni != i) {
        visit(ni, no, count);
        continue;
      }
      if (i < bytes.size() && o < out.size() && bytes[i] == out[o]) visit(i + 1, o + 1, count);
      if (const qsizetype field = o < out.size() ? addedField(QByteArrayView(out).sliced(o)) : 0)
        visit(i, o + field, count + 1);
    }
    return best;
  }();
  Check(fewestAdded >= 0, "only whole DISTANCE and ANT_AZ fields are added",
        QString::fromLatin1(out.left(80)));
  const qsizetype added = fewestAdded;
  Check(added <= 2 * r1.completed, "at most two fields per completed record");

  // A second run finds nothing left to add.
  QBuffer second;
  second.setData(out);
  second.open(QIODevice::ReadOnly);
  AdifResult r3;
  Check(complete(second, options, r3) == out, "completing twice adds nothing more");

  // Replacing rewrites the fields in place: a second run with it changes nothing more.
  options.replace = true;
  in.seek(0);
  AdifResult r4;
  const QByteArray replaced = complete(in, options, r4);
  QBuffer third;
  third.setData(replaced);
  third.open(QIODevice::ReadOnly);
  AdifResult r5;
  Check(complete(third, options, r5) == replaced, "replacing twice gives the same file");
  return 0;
}
