#include "height/HeightReport.h"

#include "platform/MsgBoxRecorder.h"
#include "support/GermanLocale.h"

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace marvento {
namespace {

const QDateTime kNow(QDate(2026, 11, 23), QTime(14, 5, 9));

// Line 1 to 4 for the fields JO31AB, 7°07'24", 51°30'00".
const char kHead[] =
    "GPS - H\xc3\xb6henauswertung vom 23.11.2026 14:05:09\r\n\r\n"
    "QTH: JO31AB Lg: 7\xc2\xb0"
    "07'24\" Br: 51\xc2\xb0"
    "30'00\"\r\n\r\n"
    " m     "
    "       "
    "Wertigkeit\r\n\r\n"
    "\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb"
    "\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb\xc5\xbb\r\n\r\n";

const QString kLoc = QStringLiteral("JO31AB");
const QString kLg = QStringLiteral("7°07'24\"");
const QString kBr = QStringLiteral("51°30'00\"");

// -12.3 with weight sqrt(2), 545.4 with 1, 545.5 with 5 + sqrt(7).
HeightTable knownTable() {
  HeightTable table;
  table.sample(u"-12.3", "M", u"8");
  table.sample(u"545.4", "M", u"6");  // a jump, twice: the reference moves up
  table.sample(u"545.4", "M", u"6");
  table.sample(u"545.4", "M", u"4");
  for (int k = 0; k < 5; ++k) table.sample(u"545.5", "M", u"4");
  table.sample(u"545.5", "M", u"28");
  return table;
}

QByteArray readAll(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return "(missing)";
  return file.readAll();
}

class HeightReportTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }

  QString reportPath() const { return m_dir.filePath(QStringLiteral("HoeheAusw.txt")); }

  QTemporaryDir m_dir;
};

TEST_F(HeightReportTest, KnownTableByteForByte) {
  MsgBoxRecorder rec;
  HeightReport(knownTable(), kLoc, kLg, kBr, m_dir.path(), kNow);
  const QByteArray expected = QByteArray(kHead) +
                              "-12,3         1,41421\r\n\r\n"
                              "545,4         1,00\r\n\r\n"
                              "545,5         7,64575\r\n\r\n";
  EXPECT_EQ(readAll(reportPath()), expected);
  ASSERT_EQ(rec.count(), 1);
  EXPECT_EQ(rec.last().prompt,
            QStringLiteral("Datei ") + reportPath() + QStringLiteral("\nerfolgreich erstellt."));
  EXPECT_EQ(rec.last().title, QStringLiteral("GPS - Höhe"));
  EXPECT_EQ(rec.last().style, vbInformation);
  EXPECT_EQ(rec.beeps(), 0);
}

// An empty table gives the heading only, and replaces the report before it.
TEST_F(HeightReportTest, SecondReportReplacesTheFirst) {
  MsgBoxRecorder rec;
  HeightReport(knownTable(), kLoc, kLg, kBr, m_dir.path(), kNow);
  HeightReport(HeightTable(), kLoc, kLg, kBr, m_dir.path(), kNow);
  EXPECT_EQ(readAll(reportPath()), QByteArray(kHead));
  EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::Files), QStringList{"HoeheAusw.txt"});
  EXPECT_EQ(rec.count(), 2);
}

TEST_F(HeightReportTest, MissingFolderIsTold) {
  const QString folder = m_dir.filePath(QStringLiteral("missing/sub"));
  MsgBoxRecorder rec;
  HeightReport(knownTable(), kLoc, kLg, kBr, folder, kNow);
  const QString path = QDir(folder).filePath(QStringLiteral("HoeheAusw.txt"));
  ASSERT_EQ(rec.count(), 1);
  const QString prompt = rec.last().prompt;
  const QString start =
      QStringLiteral("Die Datei ") + path + QStringLiteral("\nkonnte nicht geschrieben werden:\n");
  EXPECT_TRUE(prompt.startsWith(start)) << qPrintable(prompt);
  EXPECT_GT(prompt.size(), start.size());  // the reason follows
  EXPECT_EQ(rec.last().title, QStringLiteral(" GPS - Höhe"));
  EXPECT_EQ(rec.last().style, vbExclamation);
  EXPECT_EQ(rec.entries()[0].beepsBefore, 1);
  EXPECT_FALSE(QFileInfo::exists(path));
}

// Regression: on a full disk the old report became an empty file and the box said
// "erfolgreich erstellt".
TEST_F(HeightReportTest, FullDiskLeavesTheOldReportAndNamesTheFile) {
  {
    MsgBoxRecorder rec;
    HeightReport(HeightTable(), kLoc, kLg, kBr, m_dir.path(), kNow);
  }
  const QByteArray old = readAll(reportPath());
  ASSERT_EQ(old, QByteArray(kHead));
  int pipeEnds[2];
  ASSERT_EQ(::pipe(pipeEnds), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // Files may grow to 40 bytes only: the new report, far longer, cannot be written.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{40, 40};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    MsgBoxRecorder rec;
    HeightReport(knownTable(), kLoc, kLg, kBr, m_dir.path(), kNow);
    const QByteArray prompt = rec.count() == 1 ? rec.last().prompt.toUtf8() : QByteArray();
    [[maybe_unused]] const auto n = ::write(pipeEnds[1], prompt.constData(), prompt.size());
    ::_exit(0);
  }
  ::close(pipeEnds[1]);
  QByteArray prompt;
  char buffer[512];
  for (ssize_t n; (n = ::read(pipeEnds[0], buffer, sizeof buffer)) > 0;) prompt.append(buffer, n);
  ::close(pipeEnds[0]);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(QString::fromUtf8(prompt), QStringLiteral("Die Datei ") + reportPath() +
                                           QStringLiteral("\nkonnte nicht geschrieben werden:\n"
                                                          "Die Datei überschreitet die erlaubte "
                                                          "Größe."));
  EXPECT_EQ(readAll(reportPath()), old);
  EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::Files), QStringList{"HoeheAusw.txt"});
}

TEST_F(HeightReportTest, FolderBesideTheProgramOrHome) {
  const QString file = m_dir.filePath(QStringLiteral("plain"));
  QFile f(file);
  ASSERT_TRUE(f.open(QIODevice::WriteOnly));
  f.close();
  const QString home = QStringLiteral("/home/someone");
  const struct {
    QString program;
    QString expected;
  } cases[] = {
      {m_dir.path(), m_dir.path()},
      {file, home},
      {QString(), home},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(HeightReportFolder(c.program, home), c.expected) << qPrintable(c.program);
  }
}

}  // namespace
}  // namespace marvento
