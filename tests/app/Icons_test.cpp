#include "app/Icons.h"

#include "IconPainter.h"
#include "platform/Contrast.h"

#include <gtest/gtest.h>
#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPixmap>

#include <algorithm>
#include <functional>
#include <span>
#include <vector>

namespace marvento {
namespace {

// Pixels that differ between the compiled-in image and a fresh painting, compared in the
// premultiplied form both are drawn in.
int differingPixels(const QImage& loaded, const QImage& painted) {
  if (loaded.size() != painted.size()) return -1;
  const QImage a = loaded.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  const QImage b = painted.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  int count = 0;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) count += a.pixel(x, y) != b.pixel(x, y);
  }
  return count;
}

// The images compiled in while building are the very pixels the painting code draws, at
// every size, and a disabled button greys the same image as before.
TEST(Icons, CompiledInImagesAreThePaintedOnes) {
  struct Case {
    QString name;
    QIcon icon;
    std::span<const int> sizes;
    std::function<QImage(int)> paint;
  };
  std::vector<Case> cases;
  for (const QString& key : icongen::ToolbarKeys()) {
    cases.push_back({key, ToolbarIcon(key), icongen::ToolbarSizes(),
                     [key](int size) { return icongen::PaintToolbarIcon(key, size); }});
  }
  cases.push_back({QStringLiteral("app"), AppIcon(), icongen::AppIconSizes(),
                   [](int size) { return icongen::PaintAppIcon(size); }});
  ASSERT_EQ(cases.size(), 9u);

  for (const Case& c : cases) {
    SCOPED_TRACE(c.name.toStdString());
    ASSERT_FALSE(c.icon.isNull());
    QList<QSize> have = c.icon.availableSizes();
    std::sort(have.begin(), have.end(), [](QSize a, QSize b) { return a.width() < b.width(); });
    QList<QSize> want;
    for (int size : c.sizes) want << QSize(size, size);
    EXPECT_EQ(have, want);
    for (int size : c.sizes) {
      const QImage painted = c.paint(size);
      EXPECT_EQ(differingPixels(c.icon.pixmap(QSize(size, size)).toImage(), painted), 0)
          << size << " px";
      QIcon reference;
      reference.addPixmap(QPixmap::fromImage(painted));
      EXPECT_EQ(differingPixels(c.icon.pixmap(QSize(size, size), QIcon::Disabled).toImage(),
                                reference.pixmap(QSize(size, size), QIcon::Disabled).toImage()),
                0)
          << size << " px, disabled";
    }
  }
}

// Share of an icon's painted pixels that stand out from the tool bar behind it by at least
// 3:1, the contrast a graphic needs to be made out.
double visibleShare(const QImage& icon, QRgb toolbar) {
  QImage shown(icon.size(), QImage::Format_RGB32);
  shown.fill(toolbar);
  QPainter(&shown).drawImage(0, 0, icon);
  const QImage alpha = icon.convertToFormat(QImage::Format_ARGB32);
  int painted = 0;
  int visible = 0;
  for (int y = 0; y < shown.height(); ++y) {
    for (int x = 0; x < shown.width(); ++x) {
      if (qAlpha(alpha.pixel(x, y)) < 128) continue;
      ++painted;
      visible += ContrastRatio(shown.pixel(x, y) & 0xFFFFFF, toolbar & 0xFFFFFF) >= 3.0;
    }
  }
  return painted == 0 ? 0.0 : static_cast<double>(visible) / painted;
}

// Every button stays recognisable on a light and on a dark tool bar: enough of it, at least
// its outline, stands out from either.
TEST(Icons, VisibleOnLightAndDarkToolBars) {
  const QRgb toolbars[] = {qRgb(0xef, 0xef, 0xef), qRgb(0x35, 0x35, 0x35), qRgb(0, 0, 0)};
  for (const QString& key : icongen::ToolbarKeys()) {
    for (int size : {16, 24}) {
      for (QRgb toolbar : toolbars) {
        const double share = visibleShare(icongen::PaintToolbarIcon(key, size), toolbar);
        EXPECT_GE(share, 0.12) << key.toStdString() << " " << size << " px on #" << std::hex
                               << (toolbar & 0xFFFFFF);
      }
    }
  }
}

TEST(Icons, UnknownKeysGiveNoIcon) {
  for (const char* key : {"", "Speichern", "neu", "..", "../app", "Neu/16.png"}) {
    EXPECT_TRUE(ToolbarIcon(QString::fromLatin1(key)).isNull()) << key;
  }
}

}  // namespace
}  // namespace marvento
