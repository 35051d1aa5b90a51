#include "contest/AdifComplete.h"
#include "contest/EdiCheck.h"
#include "contest/EdiFix.h"

#include <QBuffer>

#include <gtest/gtest.h>

namespace marvento {
namespace {

EdiCheck check(const QByteArray& bytes, const EdiProgress& options) {
  QBuffer b;
  b.setData(bytes);
  b.open(QIODevice::ReadOnly);
  return CheckEdi(b, options);
}

QByteArray corrected(const QByteArray& bytes, const EdiCheck& log, const EdiProgress& options) {
  QBuffer in;
  in.setData(bytes);
  in.open(QIODevice::ReadOnly);
  QBuffer out;
  out.open(QIODevice::WriteOnly);
  EXPECT_TRUE(FixEdi(in, out, log, options).isEmpty());
  return out.data();
}

// fuzz_edi: a record just short of the line limit grew past it when its points were
// corrected, and the corrected log then read one record less. Records are now measured
// without their points, so the correction cannot move a record across the limit.
TEST(ContestFuzzRegression, CorrectedRecordStaysARecord) {
  EdiProgress options;
  options.lineCap = 71;
  const QByteArray record = "261024;1400;DL1ABCDEFGHIJ;1;59;001;59;010;;JO62QM;1;;N;;";
  ASSERT_EQ(record.size() - 1, options.lineCap - 16);
  const QByteArray log = "[REG1TEST;1]\nPWWLo=JO61QM\n[QSORecords;1]\n" + record + "\n";
  const EdiCheck before = check(log, options);
  ASSERT_TRUE(before.ok());
  ASSERT_EQ(before.qsos.size(), 1u);
  const EdiCheck after = check(corrected(log, before, options), options);
  EXPECT_EQ(after.qsos.size(), 1u);
  EXPECT_TRUE(after.allHold());
}

// fuzz_edi: a CWWLs line just under the line limit, with its count missing, grew past the
// limit when the count was written in; the corrected log then read the key's second line,
// a stale count, and did not check clean. A total line now keeps its place as the first of
// its key however long it is, and one without room for a corrected value is named and left.
TEST(ContestFuzzRegression, TotalLineNearTheLimitKeepsItsPlace) {
  EdiProgress options;
  options.lineCap = 80;
  const QByteArray records = "[QSORecords;1]\n261024;1400;DL1ABC;1;59;001;59;010;;JO62QM;5;;N;;\n";
  struct Case {
    const char* key;
    qsizetype padding;  // the first line's length is the limit minus this
    bool checked;       // with room for the corrected value
  };
  // CWWLs keeps what follows its count; CQSOP and CODXC take a new value whole.
  for (const Case c : {Case{"CWWLs", 0, false}, Case{"CWWLs", 47, false}, Case{"CWWLs", 48, true},
                       Case{"CWWLs", -1, false}, Case{"CQSOP", 0, true}, Case{"CQSOP", -1, false},
                       Case{"CODXC", 0, true}, Case{"CODXC", -1, false}}) {
    SCOPED_TRACE((QByteArray(c.key) + " " + QByteArray::number(c.padding)).toStdString());
    QByteArray first = QByteArray(c.key) + "=,0;";
    first += QByteArray(options.lineCap - c.padding - first.size(), 'x');
    const QByteArray log =
        "[REG1TEST;1]\nPWWLo=JO61QM\n" + first + "\n" + c.key + "=8;0;\n" + records;
    const EdiCheck before = check(log, options);
    ASSERT_TRUE(before.ok());
    const auto slot = [&c](const EdiCheck& e) {
      const QByteArray key(c.key);
      return key == "CWWLs" ? e.cwwls : key == "CQSOP" ? e.cqsop : e.codxc;
    };
    EXPECT_EQ(slot(before).line, 3);
    EXPECT_EQ(slot(before).tooLong, !c.checked);
    EXPECT_EQ(before.malformed.size(), c.checked ? 0u : 1u);
    const QByteArray out = corrected(log, before, options);
    const EdiCheck after = check(out, options);
    EXPECT_EQ(slot(after).line, 3);
    EXPECT_TRUE(after.allHold()) << after.report().join(u'\n').toStdString();
    for (const QByteArray& line : out.split('\n')) {
      if (line.size() > options.lineCap) {
        EXPECT_EQ(line.toStdString(), first.toStdString()) << "only a line already too long";
      }
    }
  }
}

// fuzz_adif: a field length near the largest 64-bit number overflowed when added to the
// record's length so far (UndefinedBehaviorSanitizer). Such a field runs to the end of the
// file: the record is too long to hold and goes out unchanged.
TEST(ContestFuzzRegression, FieldLengthNearTheLargestNumber) {
  for (const QByteArray& length :
       {QByteArray("9223372036854775805"), QByteArray("9223372036854775807"),
        QByteArray("0009223372036854775806")}) {
    const QByteArray adif =
        "<ADIF_VER:5>3.1.4 <EOH>\n<call:4>G4AB <my_gridsquare:6>JO62QM <gridsquare:" + length +
        ">IO91 <eor>\n<call:4>DL1X <eor>\n";
    QBuffer in;
    in.setData(adif);
    in.open(QIODevice::ReadOnly);
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    const AdifResult result = CompleteAdif(in, out, {});
    EXPECT_TRUE(result.ok());
    EXPECT_EQ(result.tooLong, 1);
    EXPECT_EQ(out.data(), adif);
  }
}

}  // namespace
}  // namespace marvento
