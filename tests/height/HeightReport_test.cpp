#include "height/HeightReport.h"

#include "platform/MsgBoxRecorder.h"
#include "support/GermanLocale.h"

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <csignal>
#include <cstdio>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace marvento {
namespace {

const QDateTime kNow(QDate(2026, 11, 23), QTime(14, 5, 9));

// Line 1 to 4 for the fields JO31AB, 7°07'24", 51°30'00"; the heading's zone is 14 wide.
const char kHead[] =
    "GPS - Höhenauswertung vom 23.11.2026 14:05:09\r\n\r\n"
    "QTH: JO31AB Lg: 7°07'24\" Br: 51°30'00\"\r\n\r\n"
    " m            Wertigkeit\r\n\r\n"
    "ŻŻŻŻŻŻŻŻŻŻŻŻŻŻŻŻŻŻŻŻŻ\r\n\r\n";

const QString kLoc = QStringLiteral("JO31AB");
const QString kLg = QStringLiteral("7°07'24\"");
const QString kBr = QStringLiteral("51°30'00\"");

// -12.3 with weight sqrt(2), 10.0 with 1, 10.1 with sqrt(7).
HeightTable knownTable() {
  HeightTable table;
  table.sample(u"-12.3", "M", u"8");
  table.sample(u"10.0", "M", u"4");
  table.sample(u"10.1", "M", u"28");
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

// A second report replaces the first as a whole and leaves no other file behind.
TEST_F(HeightReportTest, KnownTableByteForByte) {
  MsgBoxRecorder rec;
  HeightReport(knownTable(), kLoc + kLoc, kLg, kBr, m_dir.path(), kNow);  // a longer one
  HeightReport(knownTable(), kLoc, kLg, kBr, m_dir.path(), kNow);
  const QByteArray expected = QByteArray(kHead) +
                              "-12,3         1,41421\r\n\r\n"
                              "10,0          1,00\r\n\r\n"
                              "10,1          2,64575\r\n\r\n";
  EXPECT_EQ(readAll(reportPath()), expected);
  EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::Files), QStringList{"HoeheAusw.txt"});
  ASSERT_EQ(rec.count(), 2);
  EXPECT_EQ(rec.last().prompt,
            QStringLiteral("Datei ") + reportPath() + QStringLiteral("\nerfolgreich erstellt."));
  EXPECT_EQ(rec.last().title, QStringLiteral("GPS - Höhe"));
  EXPECT_EQ(rec.last().style, vbInformation);
  EXPECT_EQ(rec.beeps(), 0);
}

TEST_F(HeightReportTest, MissingFolderIsTold) {
  const QString folder = m_dir.filePath(QStringLiteral("missing/sub"));
  MsgBoxRecorder rec;
  HeightReport(knownTable(), kLoc, kLg, kBr, folder, kNow);
  const QString path = QDir(folder).filePath(QStringLiteral("HoeheAusw.txt"));
  ASSERT_EQ(rec.count(), 1);
  EXPECT_EQ(rec.last().prompt, QStringLiteral("Die Datei ") + path +
                                   QStringLiteral("\nkonnte nicht geschrieben werden:\n"
                                                  "Der Ordner ist nicht vorhanden."));
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
  const QString told = QStringLiteral("Die Datei ") + reportPath() +
                       QStringLiteral(
                           "\nkonnte nicht geschrieben werden:\n"
                           "Die Datei überschreitet die erlaubte Größe.");
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // Files may grow to 40 bytes only: the new report, far longer, cannot be written.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{40, 40};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    MsgBoxRecorder rec;
    HeightReport(knownTable(), kLoc, kLg, kBr, m_dir.path(), kNow);
    const bool ok = rec.count() == 1 && rec.last().prompt == told;
    if (!ok && rec.count() > 0) std::fprintf(stderr, "box: %s\n", qPrintable(rec.last().prompt));
    ::_exit(ok ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the box did not tell why";
  EXPECT_EQ(readAll(reportPath()), old);
  EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::Files), QStringList{"HoeheAusw.txt"});
}

// Regression: a link at the report's place was silently replaced; the report must neither
// write into the link's target nor take the link's place.
TEST_F(HeightReportTest, LinkInTheReportsPlaceIsRefused) {
  const QString target = m_dir.filePath(QStringLiteral("elsewhere.txt"));
  const QByteArray bytes = "not a report\n";
  for (const bool dangling : {false, true}) {
    SCOPED_TRACE(dangling ? "dangling link" : "link to a file");
    QFile::remove(target);
    QFile::remove(reportPath());
    if (!dangling) {
      QFile file(target);
      ASSERT_TRUE(file.open(QIODevice::WriteOnly));
      file.write(bytes);
    }
    ASSERT_TRUE(QFile::link(target, reportPath()));
    MsgBoxRecorder rec;
    HeightReport(knownTable(), kLoc, kLg, kBr, m_dir.path(), kNow);
    ASSERT_EQ(rec.count(), 1);
    EXPECT_EQ(rec.last().prompt, QStringLiteral("Die Datei ") + reportPath() +
                                     QStringLiteral("\nkonnte nicht geschrieben werden:\n"
                                                    "Die Datei ist eine symbolische Verknüpfung."));
    EXPECT_EQ(rec.last().style, vbExclamation);
    EXPECT_TRUE(QFileInfo(reportPath()).isSymLink());
    if (dangling) {
      EXPECT_FALSE(QFileInfo::exists(target));
    } else {
      EXPECT_EQ(readAll(target), bytes);
    }
    EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::Files | QDir::System).size(), dangling ? 1 : 2);
  }
}

TEST_F(HeightReportTest, FolderBesideTheProgramOrHome) {
  const QString file = m_dir.filePath(QStringLiteral("plain"));
  ASSERT_TRUE(QFile(file).open(QIODevice::WriteOnly));
  const QString home = QStringLiteral("/home/someone");
  EXPECT_EQ(HeightReportFolder(m_dir.path(), home), m_dir.path());
  EXPECT_EQ(HeightReportFolder(file, home), home);  // a file is no folder
  EXPECT_EQ(HeightReportFolder(QString(), home), home);
}

}  // namespace
}  // namespace marvento
