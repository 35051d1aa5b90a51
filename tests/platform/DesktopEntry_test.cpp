#include "platform/DesktopEntry.h"

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace marvento {
namespace {

struct ExecCase {
  const char* exec;
  const char* program;           // nullptr: refused
  QStringList argumentsForFile;  // with "F" standing for the file, whose name has a blank
};

TEST(ParseExec, CommandLines) {
  const ExecCase cases[] = {
      {"evince %U", "evince", {"F"}},
      {"xpdf", "xpdf", {"F"}},  // no file code: the file goes last
      {"qpdfview --unique %F", "qpdfview", {"--unique", "F"}},
      {"sh -c \"echo \\\"a b\\\" \\$HOME \\\\x\" %f", "sh", {"-c", "echo \"a b\" $HOME \\x", "F"}},
      {"viewer %d %D %n %N %v %m %u", "viewer", {"F"}},
      {"viewer --title=100%% %f", "viewer", {"--title=100%", "F"}},
      {"viewer %f %U", "viewer", {"F"}},        // the file is passed once
      {"viewer \"\" %f", "viewer", {"", "F"}},  // a quoted empty argument stays
      {"", nullptr, {}},
      {"%f", nullptr, {}},
      {"\"viewer %f", nullptr, {}},  // quote left open
  };
  for (const ExecCase& c : cases) {
    SCOPED_TRACE(c.exec);
    const auto command = ParseExec(QString::fromUtf8(c.exec));
    if (!c.program) {
      EXPECT_FALSE(command.has_value());
      continue;
    }
    ASSERT_TRUE(command.has_value());
    EXPECT_EQ(command->program, QString::fromUtf8(c.program));
    QStringList expected = c.argumentsForFile;
    expected.replaceInStrings(QRegularExpression("^F$"), QStringLiteral("Mein F.pdf"));
    EXPECT_EQ(command->argumentsFor(QStringLiteral("Mein F.pdf")), expected);
  }
}

TEST(UnescapeValue, StringEscapes) {
  const std::pair<const char*, const char*> cases[] = {
      {"a\\sb", "a b"},
      {"a\\\\b", "a\\b"},
      {"a\\;b", "a\\;b"},
      {"end\\", "end\\"},
      // Four backslashes in the file are one literal backslash once quoting is undone too.
      {"\"a\\\\\\\\b\"", "\"a\\\\b\""},
  };
  for (const auto& [raw, expected] : cases) {
    EXPECT_EQ(UnescapeValue(QString::fromUtf8(raw)), QString::fromUtf8(expected)) << raw;
  }
}

TEST(ReadDesktopEntry, TakesOnlyTheDesktopEntryGroup) {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("viewer.desktop"));
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(
      "# comment\n[Desktop Entry]\nType=Application\nName=Leser\nName[de]=Leser\n"
      "Exec=\"/opt/PDF\\sLeser/leser\" %U\nTryExec=leser\nMimeType=application/pdf;image/png;\n"
      "\n[Desktop Action new]\nExec=other %U\nHidden=true\n");
  file.close();
  const auto entry = ReadDesktopEntry(path);
  ASSERT_TRUE(entry.has_value());
  EXPECT_TRUE(entry->application);
  EXPECT_FALSE(entry->hidden);
  EXPECT_EQ(entry->exec, QStringLiteral("\"/opt/PDF Leser/leser\" %U"));
  EXPECT_EQ(entry->tryExec, QStringLiteral("leser"));
  EXPECT_EQ(entry->mimeTypes, (QStringList{"application/pdf", "image/png"}));
  EXPECT_FALSE(ReadDesktopEntry(dir.filePath(QStringLiteral("missing.desktop"))).has_value());
}

}  // namespace
}  // namespace marvento
