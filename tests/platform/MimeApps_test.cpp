#include "platform/MimeApps.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "platform/Programs.h"
#include "support/XdgSandbox.h"

namespace marvento {
namespace {

// Shorthands for the table below.
const QByteArray kPdfApp =
    "[Desktop Entry]\nType=Application\nExec=v %f\nMimeType=application/pdf;\n";
const QByteArray kOtherApp = "[Desktop Entry]\nType=Application\nExec=v %f\nMimeType=text/plain;\n";
QByteArray defaults(const QByteArray& ids) {
  return "[Default Applications]\napplication/pdf=" + ids + "\n";
}
QByteArray added(const QByteArray& ids) {
  return "[Added Associations]\napplication/pdf=" + ids + "\n";
}
QByteArray removed(const QByteArray& ids) {
  return "[Removed Associations]\napplication/pdf=" + ids + "\n";
}

struct LookupCase {
  const char* what;
  std::vector<std::pair<QString, QByteArray>> files;
  const char* desktop;   // XDG_CURRENT_DESKTOP, or nullptr
  const char* expected;  // path of the chosen entry, "" for none
};

TEST(MimeApps, DefaultApplicationLookup) {
  const QString sys = QStringLiteral("usr/share/applications/");
  const QString user = QStringLiteral("home/.local/share/applications/");
  const QString config = QStringLiteral("home/.config/");
  const LookupCase cases[] = {
      {"user default beats system default",
       {{sys + "a.desktop", kPdfApp},
        {sys + "b.desktop", kPdfApp},
        {sys + "mimeapps.list", defaults("a.desktop")},
        {config + "mimeapps.list", defaults("b.desktop;")}},
       nullptr,
       "usr/share/applications/b.desktop"},
      {"desktop-specific file beats the plain one of its folder",
       {{sys + "a.desktop", kPdfApp},
        {sys + "b.desktop", kPdfApp},
        {config + "mimeapps.list", defaults("a.desktop")},
        {config + "kde-mimeapps.list", defaults("b.desktop")}},
       "X-Test:KDE",
       "usr/share/applications/b.desktop"},
      {"entries not installed are skipped",
       {{sys + "ok.desktop", kPdfApp},
        {sys + "hidden.desktop", kPdfApp + "Hidden=true\n"},
        {sys + "tryexec.desktop", kPdfApp + "TryExec=marvento-no-such-program\n"},
        {sys + "link.desktop", "[Desktop Entry]\nType=Link\nURL=https://example.org\n"},
        {sys + "noexec.desktop", "[Desktop Entry]\nType=Application\nMimeType=application/pdf;\n"},
        {config + "mimeapps.list", defaults("gone.desktop;hidden.desktop;tryexec.desktop;link."
                                            "desktop;noexec.desktop;ok.desktop")}},
       nullptr,
       "usr/share/applications/ok.desktop"},
      {"added association beats the MimeType key",
       {{sys + "aaa.desktop", kPdfApp},
        {sys + "zzz.desktop", kOtherApp},
        {config + "mimeapps.list", added("zzz.desktop;")}},
       nullptr,
       "usr/share/applications/zzz.desktop"},
      {"removed associations hide those of less important files",
       {{sys + "a.desktop", kPdfApp},
        {sys + "b.desktop", kPdfApp},
        {sys + "c.desktop", kPdfApp},
        {config + "mimeapps.list", removed("a.desktop;b.desktop;")},
        {sys + "mimeapps.list", defaults("b.desktop") + added("a.desktop")}},
       nullptr,
       "usr/share/applications/c.desktop"},
      {"user entry hides the system one; subfolder joins the ID with -",
       {{sys + "leser.desktop", kPdfApp},
        {user + "leser.desktop", "[Desktop Entry]\nType=Application\nHidden=true\n"},
        {sys + "kde4/okular.desktop", kPdfApp},
        {config + "mimeapps.list", defaults("leser.desktop;kde4-okular.desktop")}},
       nullptr,
       "usr/share/applications/kde4/okular.desktop"},
      {"nothing associated", {{sys + "editor.desktop", kOtherApp}}, nullptr, ""},
  };
  for (const LookupCase& c : cases) {
    SCOPED_TRACE(c.what);
    test::XdgSandbox box;
    if (c.desktop) qputenv("XDG_CURRENT_DESKTOP", c.desktop);
    for (const auto& [path, content] : c.files) ASSERT_TRUE(box.write(path, content));
    const auto entry = DefaultApplication(QStringLiteral("application/pdf"));
    const QString chosen = entry ? QDir(box.root()).relativeFilePath(entry->path) : QString();
    EXPECT_EQ(chosen, QString::fromUtf8(c.expected));
  }
}

TEST(MimeApps, FindOnPathSearchesInOrder) {
  const test::XdgSandbox box;
  const auto at = [&box](const QString& relative) { return box.at(relative); };
  ASSERT_TRUE(box.write("bin/first/tool", "#!/bin/sh\n", true));
  ASSERT_TRUE(box.write("bin/second/tool", "#!/bin/sh\n", true));
  ASSERT_TRUE(box.write("plain/tool", "not executable\n"));
  qputenv("PATH", QFile::encodeName(at("plain") + "::" + at("bin/first") + ":" + at("bin/second")));
  EXPECT_EQ(FindOnPath("tool"), at("bin/first/tool"));
  EXPECT_EQ(FindOnPath("missing"), QString());
  EXPECT_EQ(FindOnPath(""), QString());
  EXPECT_EQ(FindOnPath(at("bin/second/tool")), at("bin/second/tool"));
  EXPECT_FALSE(IsProgramFile(at("plain/tool")));
  EXPECT_FALSE(IsProgramFile(at("bin/first")));
  qputenv("PATH", "");
  EXPECT_EQ(FindOnPath(QStringLiteral("tool")), QString());
}

}  // namespace
}  // namespace marvento
