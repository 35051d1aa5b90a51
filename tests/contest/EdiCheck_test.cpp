#include "contest/EdiCheck.h"
#include "contest/EdiFix.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace marvento {
namespace {

QString dataFile(const char* name) {
  return QStringLiteral(MARVENTO_CONTEST_DATA "/") + QLatin1String(name);
}

QByteArray readAll(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

EdiCheck checkBytes(const QByteArray& bytes) {
  QBuffer b;
  b.setData(bytes);
  b.open(QIODevice::ReadOnly);
  return CheckEdi(b);
}

// The test logs (own square JO62QM, ten QSOs, 3288 points when right) and what each holds.
TEST(EdiCheck, TestLogs) {
  const struct {
    const char* file;
    bool holds;
    qint64 claimed, points, exactOff, larger, duplicates, badLocators, malformed;
    bool cqsop, cwwls, codxc, end;
  } cases[] = {
      {"clean.edi", true, 3288, 3288, 0, 0, 0, 0, 0, true, true, true, true},
      // One off by one, one stale, one bad locator, one duplicate with points; all totals wrong.
      {"differences.edi", false, 3322, 2921, 1, 1, 1, 1, 0, false, false, false, true},
      // Preamble, odd case of keys and locators, a comma, blanks, two broken records, no END.
      {"untidy.edi", false, 3288, 3288, 0, 0, 0, 0, 2, false, true, true, false},
      {"cp1252.edi", false, 3388, 3288, 0, 1, 0, 0, 0, true, true, true, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    const EdiCheck log = CheckEdiFile(dataFile(c.file));
    ASSERT_TRUE(log.ok()) << log.error.toStdString();
    EXPECT_EQ(log.allHold(), c.holds);
    EXPECT_EQ(log.qsos.size(), 10u);
    EXPECT_EQ(log.claimedTotal, c.claimed);
    EXPECT_EQ(log.pointsTotal, c.points);
    EXPECT_EQ(log.offByOne, c.exactOff);
    EXPECT_EQ(log.larger, c.larger);
    EXPECT_EQ(log.duplicates, c.duplicates);
    EXPECT_EQ(log.badLocators, c.badLocators);
    EXPECT_EQ(static_cast<qint64>(log.malformed.size()), c.malformed);
    EXPECT_EQ(log.cqsopHolds(), c.cqsop);
    EXPECT_EQ(log.cwwlsHolds(), c.cwwls);
    EXPECT_EQ(log.codxcHolds(), c.codxc);
    EXPECT_EQ(log.sawEnd, c.end);
    EXPECT_EQ(log.rule, EdiCheck::Iaru);
  }
}

TEST(EdiCheck, DifferencesAreNamedWithTheirLines) {
  const EdiCheck log = CheckEdiFile(dataFile("differences.edi"));
  const QString report = log.report().join(u'\n');
  // The larger difference is listed before the one off by one.
  const qsizetype larger = report.indexOf(
      QStringLiteral("Zeile 23: 1402 OK1KIR JO70ED beansprucht 311, nachgerechnet 274"));
  const qsizetype off =
      report.indexOf(QStringLiteral("Zeile 22: 1401 DK2XY JO62RN beansprucht 7, nachgerechnet 8"));
  EXPECT_GE(larger, 0) << report.toStdString();
  EXPECT_GT(off, larger);
  EXPECT_TRUE(report.contains(
      QStringLiteral("Zeile 24: 1403 SP1XYZ JO7 beansprucht 123, nachgerechnet 0")));
  EXPECT_TRUE(report.contains(
      QStringLiteral("Zeile 25: 1404 DL0GTH JO50WN beansprucht 242, nachgerechnet 0")));
  EXPECT_EQ(QByteArray(log.wantCodxc()), QByteArray("G4ABC;IO91WM;930"));
  EXPECT_EQ(QByteArray(log.wantCwwls()), QByteArray("6;0;1"));
}

// A log built around one rule: the own square JO62QM and remote squares whose distances
// (worked out apart from the program) are given, with the claim each rule would write.
QByteArray ruleLog(int rule) {
  const struct {
    const char* locator;
    int iaru, noPlusOne, rounded, other;
  } qsos[] = {
      {"JO62RN", 8, 7, 7, 1},        // 7.30 km
      {"JO70ED", 274, 273, 273, 1},  // 273.08 km
      {"JO50WN", 242, 241, 241, 1},  // 241.20 km
      {"JN18DQ", 890, 889, 889, 1},  // 889.48 km
      {"IO91WM", 930, 929, 929, 1},  // 929.08 km
      {"JO65DQ", 360, 359, 359, 1},  // 359.14 km
      {"JO31NF", 453, 452, 452, 1},  // 452.31 km
      {"JO73GJ", 125, 124, 125, 1},  // 124.80 km: rounding gives 125
  };
  QByteArray out = "[REG1TEST;1]\nPWWLo=JO62QM\n[QSORecords;8]\n";
  int n = 0;
  for (const auto& q : qsos) {
    const int claim = rule == 0   ? q.iaru
                      : rule == 1 ? q.noPlusOne
                      : rule == 2 ? q.rounded
                                  : q.other;
    out += "261024;1200;DL" + QByteArray::number(++n) + "X;1;59;001;59;001;;" + q.locator + ';' +
           QByteArray::number(claim) + ";;;;\n";
  }
  return out + "[END;x]\n";
}

TEST(EdiCheck, WholeLogRulesAreToldOnce) {
  const struct {
    int rule;
    EdiCheck::LogRule want;
    const char* line;
  } cases[] = {
      {0, EdiCheck::Iaru, "alle Angaben stimmen"},
      {1, EdiCheck::NoPlusOne, "ohne das +1"},
      {2, EdiCheck::Rounded, "rundet die Kilometer"},
      {3, EdiCheck::OtherRule, "anderen Regel"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);
    const EdiCheck log = checkBytes(ruleLog(c.rule));
    ASSERT_TRUE(log.ok());
    EXPECT_EQ(log.rule, c.want);
    const QStringList report = log.report();
    EXPECT_EQ(report.filter(QLatin1String(c.line)).size(), 1) << report.join(u'\n').toStdString();
    // Not one row per QSO.
    if (c.rule != 0) {
      EXPECT_TRUE(report.filter(QStringLiteral("Zeile ")).isEmpty());
    }
  }
}

TEST(EdiCheck, RefusesWhatIsNoLog) {
  const struct {
    QByteArray bytes;
    const char* message;
  } cases[] = {
      {"", "[REG1TEST;1] fehlt"},
      {"PWWLo=JO62QM\n261024;1200;A;1;;;;;;JO62QM;1;;;;\n", "[REG1TEST;1] fehlt"},
      {"[REG1TEST;1]\nPCall=X\n[QSORecords;0]\n", "keinen eigenen Locator"},
      {"[REG1TEST;1]\nPWWLo=JO6\n", "PWWLo=JO6"},
  };
  for (const auto& c : cases) {
    const EdiCheck log = checkBytes(c.bytes);
    EXPECT_FALSE(log.ok());
    EXPECT_TRUE(log.error.contains(QLatin1String(c.message))) << log.error.toStdString();
  }
  EXPECT_FALSE(CheckEdiFile(QStringLiteral("/nonexistent/log.edi")).ok());
}

// Correcting each test log gives a log that checks clean, with the same lines apart from
// the ones corrected (so the Windows-1252 address stays as it was); a clean log comes back
// byte for byte, and a corrected line keeps its spelling and trailing blanks.
TEST(EdiFix, CorrectedLogsCheckCleanAndKeepTheirBytes) {
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  const struct {
    const char* file;
    QList<int> changed;  // line numbers, from 1
    QByteArray lastChanged;
  } cases[] = {
      {"clean.edi", {}, {}},
      {"differences.edi", {11, 12, 19, 22, 23, 24, 25}, {}},
      {"untidy.edi", {10}, "CQSOP=3288   "},
      {"cp1252.edi", {29}, "261024;1406;G4ABC;1;59;007;59;016;;IO91WM;930;;;;\r"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    const QString in = dataFile(c.file), out = dir.filePath(QLatin1String(c.file));
    const QByteArray before = readAll(in);
    const EdiCheck log = CheckEdiFile(in);
    ASSERT_TRUE(FixEdi(in, out, log).isEmpty());
    EXPECT_EQ(readAll(in), before) << "the original is untouched";
    EXPECT_TRUE(CheckEdiFile(out).allHold());
    const QByteArray after = readAll(out);
    if (c.changed.isEmpty()) {
      EXPECT_EQ(after, before);
    }
    const QList<QByteArray> a = before.split('\n'), b = after.split('\n');
    ASSERT_EQ(a.size(), b.size());
    QList<int> changed;
    for (qsizetype i = 0; i < a.size(); ++i)
      if (a[i] != b[i]) changed << static_cast<int>(i + 1);
    EXPECT_EQ(changed, c.changed);
    if (!c.lastChanged.isEmpty() && !changed.isEmpty()) {
      EXPECT_EQ(b[changed.last() - 1], c.lastChanged);
    }
    // Line ends stay those of the file.
    EXPECT_EQ(after.count("\r\n"), before.count("\r\n"));
  }
}

TEST(EdiFix, NeverWritesTheOriginal) {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("log.edi"));
  QFile::copy(dataFile("differences.edi"), path);
  const QByteArray before = readAll(path);
  const QString error = FixEdi(path, path, CheckEdiFile(path));
  EXPECT_FALSE(error.isEmpty());
  EXPECT_EQ(readAll(path), before);
  // Nothing is left behind in a folder that cannot be written.
  EXPECT_FALSE(FixEdi(path, QStringLiteral("/nonexistent/out.edi"), CheckEdiFile(path)).isEmpty());
}

// A record line of 10 MB is named, not held whole, and passes into the corrected file as it
// was, while the records around it are corrected.
TEST(EdiFix, HugeLineIsNamedAndKept) {
  QTemporaryDir dir;
  const QString in = dir.filePath(QStringLiteral("huge.edi"));
  QByteArray bytes =
      "[REG1TEST;1]\r\nPWWLo=JO62QM\r\n[QSORecords;3]\r\n"
      "261024;1200;DL1A;1;59;001;59;001;;JO70ED;270;;;;\r\n261024;1201;";
  bytes += QByteArray(10 << 20, 'Q');
  bytes += ";1;59;002;59;002;;JO70ED;1;;;;\r\n261024;1202;DL1B;1;59;003;59;003;;JO62RN;8;;;;\r\n";
  {
    QFile f(in);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
  }
  const EdiCheck log = CheckEdiFile(in);
  ASSERT_TRUE(log.ok());
  ASSERT_EQ(log.malformed.size(), 1u);
  EXPECT_EQ(log.malformed[0].first, 5);
  EXPECT_EQ(log.qsos.size(), 2u);
  const QString out = dir.filePath(QStringLiteral("fixed.edi"));
  ASSERT_TRUE(FixEdi(in, out, log).isEmpty());
  QByteArray want = bytes;
  want.replace("JO70ED;270;", "JO70ED;274;");
  EXPECT_TRUE(readAll(out) == want);
}

}  // namespace
}  // namespace marvento
