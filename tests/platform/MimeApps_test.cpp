#include "platform/MimeApps.h"

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <map>
#include <string>

#include "platform/Programs.h"

namespace marvento {
namespace {

// Points every XDG variable and PATH into a temporary folder and restores them afterwards.
class MimeAppsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : kVariables)
      m_saved[name] = {qEnvironmentVariableIsSet(name), qgetenv(name)};
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(at("home/.config")));
    qputenv("XDG_CONFIG_DIRS", QFile::encodeName(at("etc/xdg")));
    qputenv("XDG_DATA_HOME", QFile::encodeName(at("home/.local/share")));
    qputenv("XDG_DATA_DIRS", QFile::encodeName(at("usr/local/share") + ':' + at("usr/share")));
    qputenv("PATH", QFile::encodeName(at("bin")));
    qunsetenv("XDG_CURRENT_DESKTOP");
  }
  void TearDown() override {
    for (const auto& [name, value] : m_saved) {
      if (value.first) {
        qputenv(name.c_str(), value.second);
      } else {
        qunsetenv(name.c_str());
      }
    }
  }

  QString at(const QString& relative) const { return m_dir.filePath(relative); }

  void write(const QString& relative, const QByteArray& content, bool executable = false) {
    const QString path = at(relative);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).absolutePath()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(content);
    file.close();
    if (executable) file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
  }

  // A PDF-capable application entry that runs `program`.
  void app(const QString& folder, const QString& name, const QByteArray& extra = {}) {
    write(folder + "/" + name,
          "[Desktop Entry]\nType=Application\nExec=" + QFile::encodeName(name) + " %f\n" + extra);
  }

  // The file name part of the entry chosen for PDF, or "" when there is none.
  QString chosen() const {
    const auto entry = DefaultApplication(QStringLiteral("application/pdf"));
    if (!entry) return {};
    return QDir(at(".")).relativeFilePath(entry->path);
  }

 private:
  static constexpr const char* kVariables[] = {"XDG_CONFIG_HOME",     "XDG_CONFIG_DIRS",
                                               "XDG_DATA_HOME",       "XDG_DATA_DIRS",
                                               "XDG_CURRENT_DESKTOP", "PATH"};
  QTemporaryDir m_dir;
  std::map<std::string, std::pair<bool, QByteArray>> m_saved;
};

const QByteArray kPdf = "MimeType=application/pdf;\n";
const QString kSysApps = QStringLiteral("usr/share/applications");
const QString kUserApps = QStringLiteral("home/.local/share/applications");

TEST_F(MimeAppsTest, FilesInPrecedenceOrder) {
  qputenv("XDG_CURRENT_DESKTOP", "KDE:Plasma");
  const QStringList expected = {
      at("home/.config/kde-mimeapps.list"),
      at("home/.config/plasma-mimeapps.list"),
      at("home/.config/mimeapps.list"),
      at("etc/xdg/kde-mimeapps.list"),
      at("etc/xdg/plasma-mimeapps.list"),
      at("etc/xdg/mimeapps.list"),
      at(kUserApps + "/kde-mimeapps.list"),
      at(kUserApps + "/plasma-mimeapps.list"),
      at(kUserApps + "/mimeapps.list"),
      at("usr/local/share/applications/kde-mimeapps.list"),
      at("usr/local/share/applications/plasma-mimeapps.list"),
      at("usr/local/share/applications/mimeapps.list"),
      at(kSysApps + "/kde-mimeapps.list"),
      at(kSysApps + "/plasma-mimeapps.list"),
      at(kSysApps + "/mimeapps.list"),
      at(kUserApps + "/defaults.list"),
      at("usr/local/share/applications/defaults.list"),
      at(kSysApps + "/defaults.list"),
  };
  EXPECT_EQ(MimeAppsFiles(), expected);
}

TEST_F(MimeAppsTest, UnsetVariablesFallBackToTheStandardFolders) {
  qunsetenv("XDG_CONFIG_DIRS");
  qunsetenv("XDG_DATA_DIRS");
  qputenv("XDG_DATA_HOME", "relative/is/ignored");
  EXPECT_EQ(ConfigDirs(), (QStringList{at("home/.config"), "/etc/xdg"}));
  EXPECT_EQ(DataDirs(),
            (QStringList{QDir::homePath() + "/.local/share", "/usr/local/share", "/usr/share"}));
}

TEST_F(MimeAppsTest, UserDefaultBeatsSystemDefault) {
  app(kSysApps, "evince.desktop", kPdf);
  app(kSysApps, "okular.desktop", kPdf);
  write(kSysApps + "/mimeapps.list", "[Default Applications]\napplication/pdf=evince.desktop\n");
  write("home/.config/mimeapps.list", "[Default Applications]\napplication/pdf=okular.desktop;\n");
  EXPECT_EQ(chosen(), kSysApps + "/okular.desktop");
}

TEST_F(MimeAppsTest, DesktopSpecificDefaultBeatsPlainOne) {
  app(kSysApps, "evince.desktop", kPdf);
  app(kSysApps, "okular.desktop", kPdf);
  write("home/.config/mimeapps.list", "[Default Applications]\napplication/pdf=evince.desktop\n");
  write("home/.config/kde-mimeapps.list",
        "[Default Applications]\napplication/pdf=okular.desktop\n");
  EXPECT_EQ(chosen(), kSysApps + "/evince.desktop");
  qputenv("XDG_CURRENT_DESKTOP", "KDE");
  EXPECT_EQ(chosen(), kSysApps + "/okular.desktop");
}

TEST_F(MimeAppsTest, DefaultsThatAreNotInstalledAreSkipped) {
  app(kSysApps, "okular.desktop", kPdf);
  app(kSysApps, "hidden.desktop", kPdf + "Hidden=true\n");
  app(kSysApps, "tryexec.desktop", kPdf + "TryExec=marvento-no-such-program\n");
  write(kSysApps + "/link.desktop", "[Desktop Entry]\nType=Link\nURL=https://example.org\n");
  write("home/.config/mimeapps.list",
        "[Default Applications]\napplication/pdf=gone.desktop;hidden.desktop;tryexec.desktop;"
        "link.desktop;okular.desktop;\n");
  EXPECT_EQ(chosen(), kSysApps + "/okular.desktop");
}

TEST_F(MimeAppsTest, TryExecOnPathCounts) {
  write("bin/leser", "#!/bin/sh\n", true);
  app(kSysApps, "leser.desktop", kPdf + "TryExec=leser\n");
  EXPECT_EQ(chosen(), kSysApps + "/leser.desktop");
}

TEST_F(MimeAppsTest, DefaultBeatsAddedAssociationOfAMoreImportantFile) {
  app(kSysApps, "evince.desktop", kPdf);
  app(kSysApps, "okular.desktop", kPdf);
  write("home/.config/mimeapps.list", "[Added Associations]\napplication/pdf=okular.desktop;\n");
  write(kSysApps + "/mimeapps.list", "[Default Applications]\napplication/pdf=evince.desktop\n");
  EXPECT_EQ(chosen(), kSysApps + "/evince.desktop");
}

TEST_F(MimeAppsTest, AddedAssociationsBeforeMimeTypeKeys) {
  app(kSysApps, "aaa.desktop", kPdf);
  app(kSysApps, "zzz.desktop");  // does not list the type itself
  write("home/.config/mimeapps.list", "[Added Associations]\napplication/pdf=zzz.desktop;\n");
  EXPECT_EQ(chosen(), kSysApps + "/zzz.desktop");
}

TEST_F(MimeAppsTest, RemovedAssociationsHideLessImportantOnes) {
  app(kSysApps, "aaa.desktop", kPdf);
  app(kSysApps, "bbb.desktop", kPdf);
  app(kSysApps, "ccc.desktop", kPdf);
  write("home/.config/mimeapps.list",
        "[Removed Associations]\napplication/pdf=aaa.desktop;bbb.desktop;\n");
  write(kSysApps + "/mimeapps.list",
        "[Default Applications]\napplication/pdf=bbb.desktop\n"
        "[Added Associations]\napplication/pdf=aaa.desktop;\n");
  EXPECT_EQ(chosen(), kSysApps + "/ccc.desktop");
}

TEST_F(MimeAppsTest, LegacyDefaultsListAfterAllMimeappsLists) {
  app(kSysApps, "evince.desktop", kPdf);
  app(kSysApps, "okular.desktop", kPdf);
  write(kSysApps + "/defaults.list", "[Default Applications]\napplication/pdf=okular.desktop\n");
  EXPECT_EQ(chosen(), kSysApps + "/okular.desktop");
  write(kSysApps + "/mimeapps.list", "[Default Applications]\napplication/pdf=evince.desktop\n");
  EXPECT_EQ(chosen(), kSysApps + "/evince.desktop");
}

TEST_F(MimeAppsTest, DesktopFileIdsAndShadowing) {
  // A user's entry hides the system's entry of the same ID; a subfolder joins the ID with "-".
  app(kSysApps, "leser.desktop", kPdf);
  write(kUserApps + "/leser.desktop", "[Desktop Entry]\nType=Application\nHidden=true\n");
  app(kSysApps + "/kde4", "okular.desktop", kPdf);
  write("home/.config/mimeapps.list",
        "[Default Applications]\napplication/pdf=leser.desktop;kde4-okular.desktop\n");
  EXPECT_EQ(chosen(), kSysApps + "/kde4/okular.desktop");
}

TEST_F(MimeAppsTest, NothingAssociated) {
  app(kSysApps, "editor.desktop", "MimeType=text/plain;\n");
  EXPECT_EQ(chosen(), QString());
}

struct PathCase {
  const char* name;
  const char* expected;  // relative to the folder, "" for none
};

TEST_F(MimeAppsTest, FindOnPathSearchesInOrder) {
  write("bin/first/tool", "#!/bin/sh\n", true);
  write("bin/second/tool", "#!/bin/sh\n", true);
  write("bin/first/plain", "not executable\n");
  write("bin/second/plain", "#!/bin/sh\n", true);
  QDir().mkpath(at("bin/first/folder"));
  qputenv("PATH", QFile::encodeName(at("bin/first") + "::" + at("bin/second")));
  const PathCase cases[] = {
      {"tool", "bin/first/tool"},
      {"plain", "bin/second/plain"},
      {"folder", ""},
      {"missing", ""},
      {"", ""},
  };
  for (const PathCase& c : cases) {
    const QString expected = *c.expected ? at(QString::fromUtf8(c.expected)) : QString();
    EXPECT_EQ(FindOnPath(QString::fromUtf8(c.name)), expected) << c.name;
  }
  EXPECT_EQ(FindOnPath(at("bin/second/tool")), at("bin/second/tool"));
  EXPECT_TRUE(IsProgramFile(at("bin/first/tool")));
  EXPECT_FALSE(IsProgramFile(at("bin/first/plain")));
  EXPECT_FALSE(IsProgramFile(QStringLiteral("tool")));
  qputenv("PATH", "");
  EXPECT_EQ(FindOnPath(QStringLiteral("tool")), QString());
}

}  // namespace
}  // namespace marvento
