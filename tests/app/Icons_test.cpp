#include "app/Icons.h"

#include "IconPainter.h"

#include <gtest/gtest.h>
#include <QImage>
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

TEST(Icons, UnknownKeysGiveNoIcon) {
  for (const char* key : {"", "Speichern", "neu", "..", "../app", "Neu/16.png"}) {
    EXPECT_TRUE(ToolbarIcon(QString::fromLatin1(key)).isNull()) << key;
  }
}

}  // namespace
}  // namespace marvento
