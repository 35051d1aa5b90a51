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
  QBuffer in;
  in.setData(log);
  in.open(QIODevice::ReadOnly);
  QBuffer out;
  out.open(QIODevice::WriteOnly);
  ASSERT_TRUE(FixEdi(in, out, before, options).isEmpty());
  const EdiCheck after = check(out.data(), options);
  EXPECT_EQ(after.qsos.size(), 1u);
  EXPECT_TRUE(after.allHold());
}

}  // namespace
}  // namespace marvento
