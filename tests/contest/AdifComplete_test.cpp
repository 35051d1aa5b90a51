#include "contest/AdifComplete.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace marvento {
namespace {

QByteArray complete(const QByteArray& in, const AdifOptions& options,
                    AdifResult* result = nullptr) {
  QBuffer src;
  src.setData(in);
  src.open(QIODevice::ReadOnly);
  QBuffer out;
  out.open(QIODevice::WriteOnly);
  const AdifResult r = CompleteAdif(src, out, options);
  if (result) *result = r;
  return out.data();
}

// Distances and bearings from GeodSolve for the square centres (JO62QM to JO50WN 241.4 km at
// 206.1°, to IO91WM 932.0 km at 268.5°; JN58TD to JO62QM 502.3 km at 13.7°; JO62QM to the
// centre of IO91 991.9 km at 269.1°, to JN18DQ42XX 892.2 km at 245.8°).
TEST(AdifComplete, AddsWhatIsMissingAndNothingElse) {
  const struct {
    const char* why;
    QByteArray in;
    const char* locator;
    bool replace;
    QByteArray out;
  } cases[] = {
      {"both locators in the record",
       "<CALL:5>DL1AB <GRIDSQUARE:6>JO50WN <MY_GRIDSQUARE:6>JO62QM <EOR>\r\n", "", false,
       "<CALL:5>DL1AB <GRIDSQUARE:6>JO50WN <MY_GRIDSQUARE:6>JO62QM "
       "<DISTANCE:5>241.4 <ANT_AZ:5>206.1 <EOR>\r\n"},
      {"no own locator: unchanged", "<CALL:5>DL1AB <GRIDSQUARE:6>JO50WN <EOR>\n", "", false,
       "<CALL:5>DL1AB <GRIDSQUARE:6>JO50WN <EOR>\n"},
      {"own locator given", "<CALL:5>DL1AB <GRIDSQUARE:6>JO50WN <EOR>\n", "JO62QM", false,
       "<CALL:5>DL1AB <GRIDSQUARE:6>JO50WN <DISTANCE:5>241.4 <ANT_AZ:5>206.1 <EOR>\n"},
      {"the record's own locator wins over the given one",
       "<MY_GRIDSQUARE:6>JN58TD<GRIDSQUARE:6>JO62QM<EOR>", "IO91WM", false,
       "<MY_GRIDSQUARE:6>JN58TD<GRIDSQUARE:6>JO62QM<DISTANCE:5>502.3 <ANT_AZ:4>13.7 <EOR>"},
      {"a distance present is kept, the bearing added",
       "<GRIDSQUARE:6>IO91WM <DISTANCE:3>930 <EOR>", "JO62QM", false,
       "<GRIDSQUARE:6>IO91WM <DISTANCE:3>930 <ANT_AZ:5>268.5 <EOR>"},
      {"replaced in place on request", "<GRIDSQUARE:6>IO91WM <DISTANCE:3>930 <ANT_AZ:2>12 <EOR>",
       "JO62QM", true, "<GRIDSQUARE:6>IO91WM <DISTANCE:5>932.0 <ANT_AZ:5>268.5 <EOR>"},
      {"small letters in names and data",
       "<call:4>G4AB <gridsquare:6>io91wm <my_gridsquare:6>jo62qm <eor>", "", false,
       "<call:4>G4AB <gridsquare:6>io91wm <my_gridsquare:6>jo62qm <distance:5>932.0 "
       "<ant_az:5>268.5 <eor>"},
      {"a header stays as it is",
       "Log of DL0ABC <CALL:3>not a record\n<ADIF_VER:5>3.1.4 <EOH>\n<GRIDSQUARE:4>IO91 <EOR>\n",
       "JO62QM", false,
       "Log of DL0ABC <CALL:3>not a record\n<ADIF_VER:5>3.1.4 <EOH>\n"
       "<GRIDSQUARE:4>IO91 <DISTANCE:5>991.9 <ANT_AZ:5>269.1 <EOR>\n"},
      {"eight characters with an extension", "<GRIDSQUARE:8>JN18DQ42<GRIDSQUARE_EXT:2>XX<EOR>",
       "JO62QM", false,
       "<GRIDSQUARE:8>JN18DQ42<GRIDSQUARE_EXT:2>XX<DISTANCE:5>892.2 <ANT_AZ:5>245.8 <EOR>"},
      {"a bad locator and a record without <EOR> stay as they are",
       "<GRIDSQUARE:6>JO99ZZ <EOR><GRIDSQUARE:6>JO50WN", "JO62QM", false,
       "<GRIDSQUARE:6>JO99ZZ <EOR><GRIDSQUARE:6>JO50WN"},
      {"data holding a tag is data", "<COMMENT:5><EOR><GRIDSQUARE:6>JO50WN<EOR>", "JO62QM", false,
       "<COMMENT:5><EOR><GRIDSQUARE:6>JO50WN<DISTANCE:5>241.4 <ANT_AZ:5>206.1 <EOR>"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    AdifOptions options;
    options.locator = QString::fromLatin1(c.locator);
    options.replace = c.replace;
    EXPECT_EQ(complete(c.in, options).toStdString(), c.out.toStdString());
  }
}

TEST(AdifComplete, CountsTheRecords) {
  AdifResult r;
  AdifOptions options;
  complete(
      "<EOH><GRIDSQUARE:6>JO50WN<MY_GRIDSQUARE:6>JO62QM<EOR><GRIDSQUARE:6>JO50WN<EOR>"
      "<CALL:2>AB<EOR><GRIDSQUARE:6>JO50WN<MY_GRIDSQUARE:6>JO62QM<DISTANCE:1>1<ANT_AZ:1>2<EOR>",
      options, &r);
  EXPECT_EQ(r.records, 4);
  EXPECT_EQ(r.completed, 1);
  EXPECT_EQ(r.noOwn, 1);
  EXPECT_EQ(r.noGrid, 1);
  EXPECT_EQ(r.kept, 1);
}

TEST(AdifComplete, LocatorCentres) {
  const struct {
    const char* text;
    bool valid;
    double lat, lon;
  } cases[] = {
      {"JO62", true, 52.5, 13.0},
      {"jo62qm", true, 52.5 + 1.0 / 48, 13.375},
      {"JO62QM84", true, 52.51875, 13.4 + 1.0 / 240},
      {"JO62QM84AT", true, 52.51996527777778 + 1.0 / 11520, 13.4 + 1.0 / 5760},
      {"JO6", false, 0, 0},
      {"JO", false, 0, 0},
      {"JO62QZ", false, 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const auto p = LocatorCentre(QString::fromLatin1(c.text));
    ASSERT_EQ(p.has_value(), c.valid);
    if (!p) continue;
    EXPECT_NEAR(p->lat, c.lat, 1e-9);
    EXPECT_NEAR(p->lon, c.lon, 1e-9);
  }
}

TEST(AdifComplete, FilesAreWrittenWholeAndTheOriginalKept) {
  QTemporaryDir dir;
  const QString in = dir.filePath(QStringLiteral("in.adi"));
  {
    QFile f(in);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("<GRIDSQUARE:6>JO50WN<EOR>");
  }
  AdifOptions options;
  options.locator = QStringLiteral("JO62QM");
  EXPECT_FALSE(CompleteAdifFile(in, in, options).ok());
  options.locator = QStringLiteral("XX");
  EXPECT_FALSE(CompleteAdifFile(in, dir.filePath(QStringLiteral("out.adi")), options).ok());
  EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("out.adi"))));
  options.locator = QStringLiteral("JO62QM");
  EXPECT_TRUE(CompleteAdifFile(in, dir.filePath(QStringLiteral("out.adi")), options).ok());
  QFile f(in);
  ASSERT_TRUE(f.open(QIODevice::ReadOnly));
  EXPECT_EQ(f.readAll(), QByteArray("<GRIDSQUARE:6>JO50WN<EOR>"));
}

}  // namespace
}  // namespace marvento
