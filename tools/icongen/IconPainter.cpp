#include "IconPainter.h"

#include <QDir>
#include <QFileInfo>
#include <QFont>
#include <QPainter>
#include <QPainterPath>
#include <QSaveFile>

#include <array>
#include <functional>

namespace marvento::icongen {

namespace {

using Painter = std::function<void(QPainter&)>;

constexpr std::array kToolbarSizes{16, 24, 32, 48};
constexpr std::array kAppIconSizes{16, 24, 32, 48, 64, 128, 256};
const QColor kHalo(255, 255, 255, 235);

QImage paintOnGrid(int size, const Painter& paint, bool text) {
  QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter p(&image);
  p.setRenderHint(QPainter::Antialiasing);
  if (text) p.setRenderHint(QPainter::TextAntialiasing);
  p.scale(size / 16.0, size / 16.0);
  paint(p);
  p.end();
  return image;
}

void letter(QPainter& p, const QString& text, const QColor& color, bool italic = false) {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(14);
  font.setBold(!italic);
  font.setItalic(italic);
  if (italic) font.setFamily(QStringLiteral("DejaVu Serif"));
  p.setFont(font);
  // A light rim around the letter keeps a dark letter visible on a dark tool bar.
  p.setPen(kHalo);
  for (const QPointF offset :
       {QPointF(-0.8, 0), QPointF(0.8, 0), QPointF(0, -0.8), QPointF(0, 0.8), QPointF(-0.6, -0.6),
        QPointF(0.6, 0.6), QPointF(-0.6, 0.6), QPointF(0.6, -0.6)}) {
    p.drawText(QRectF(0, 0, 16, 16).translated(offset), Qt::AlignCenter, text);
  }
  p.setPen(color);
  p.drawText(QRectF(0, 0, 16, 16), Qt::AlignCenter, text);
}

void newPage(QPainter& p) {
  QPainterPath page;
  page.moveTo(3, 1.5);
  page.lineTo(10, 1.5);
  page.lineTo(13, 4.5);
  page.lineTo(13, 14.5);
  page.lineTo(3, 14.5);
  page.closeSubpath();
  p.setPen(QPen(QColor(90, 90, 90), 1));
  p.setBrush(Qt::white);
  p.drawPath(page);
  QPainterPath corner;
  corner.moveTo(10, 1.5);
  corner.lineTo(10, 4.5);
  corner.lineTo(13, 4.5);
  p.setBrush(QColor(220, 220, 220));
  p.drawPath(corner);
}

void exitWindow(QPainter& p) {
  p.setPen(QPen(QColor(60, 60, 60), 1));
  p.setBrush(Qt::white);
  p.drawRect(QRectF(1.5, 2.5, 13, 11));
  p.setBrush(QColor(0, 0, 128));
  p.drawRect(QRectF(1.5, 2.5, 13, 2.5));
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(5);
  font.setBold(true);
  p.setFont(font);
  p.setPen(QColor(200, 0, 0));
  p.drawText(QRectF(1.5, 6, 13, 7), Qt::AlignCenter, QStringLiteral("EXIT"));
}

void helpMark(QPainter& p) {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(15);
  font.setBold(true);
  p.setFont(font);
  QPainterPath mark;
  mark.addText(3.5, 14, font, QStringLiteral("?"));
  p.setPen(QPen(QColor(120, 90, 0), 0.8));
  p.setBrush(QColor(255, 215, 0));
  p.drawPath(mark);
}

// A beam antenna on its mast, seen from above, with the arrow of its turn.
void rotor(QPainter& p) {
  // Drawn twice: first wide in a light rim, which keeps the dark antenna visible on a dark
  // tool bar, then in its own colour.
  for (const QPen& pen : {QPen(kHalo, 2.8, Qt::SolidLine, Qt::RoundCap),
                          QPen(QColor(60, 60, 60), 1.2, Qt::SolidLine, Qt::RoundCap)}) {
    p.setPen(pen);
    p.drawLine(QPointF(8, 3), QPointF(8, 13));  // boom
    for (double y : {4.0, 7.0, 10.0}) {
      const double half = y < 5 ? 2.5 : 3.5;  // the director is shorter than the others
      p.drawLine(QPointF(8 - half, y), QPointF(8 + half, y));
    }
  }
  p.setBrush(QColor(90, 90, 90));
  p.setPen(QPen(kHalo, 0.8));
  p.drawEllipse(QPointF(8, 13), 1.6, 1.6);  // mast
  p.setBrush(Qt::NoBrush);
  p.setPen(QPen(QColor(0, 140, 0), 1.2, Qt::SolidLine, Qt::RoundCap));
  p.drawArc(QRectF(1.5, 1.5, 13, 13), 200 * 16, 120 * 16);
  QPainterPath head;
  head.moveTo(14.2, 9.5);
  head.lineTo(11.6, 13.6);
  head.lineTo(15.2, 13.4);
  head.closeSubpath();
  p.setPen(Qt::NoPen);
  p.setBrush(QColor(0, 140, 0));
  p.drawPath(head);
}

void globe(QPainter& p) {
  const QRectF earth(1, 1, 14, 14);
  QRadialGradient sea(QPointF(6, 5), 10);
  sea.setColorAt(0, QColor(120, 180, 255));
  sea.setColorAt(1, QColor(20, 80, 170));
  p.setPen(QPen(QColor(10, 40, 100), 0.6));
  p.setBrush(sea);
  p.drawEllipse(earth);
  p.setBrush(Qt::NoBrush);
  p.setPen(QPen(QColor(220, 235, 255, 170), 0.4));
  p.drawEllipse(QRectF(5, 1, 6, 14));
  p.drawLine(QPointF(8, 1), QPointF(8, 15));
  p.drawLine(QPointF(1, 8), QPointF(15, 8));
  p.drawArc(QRectF(1, 4.5, 14, 7), 0, 180 * 16);
  QPainterPath path;
  path.moveTo(3.5, 11);
  path.quadTo(6, 2.5, 12.5, 5);
  p.setPen(QPen(QColor(230, 30, 30), 1.3, Qt::SolidLine, Qt::RoundCap));
  p.drawPath(path);
  p.setPen(Qt::NoPen);
  p.setBrush(QColor(255, 240, 0));
  p.drawEllipse(QPointF(3.5, 11), 1.4, 1.4);
  p.setBrush(QColor(230, 30, 30));
  p.drawEllipse(QPointF(12.5, 5), 1.4, 1.4);
}

// The map: a flat disc with range rings, the own station in the middle and a path from it.
void mapDisc(QPainter& p) {
  p.setPen(QPen(QColor(20, 60, 120), 1.1));
  p.setBrush(QColor(150, 200, 240));
  p.drawEllipse(QPointF(8, 8), 6.8, 6.8);
  p.setBrush(QColor(200, 190, 130));
  p.setPen(Qt::NoPen);
  p.drawEllipse(QPointF(5.5, 9.5), 3, 2.2);
  p.setBrush(Qt::NoBrush);
  p.setPen(QPen(QColor(20, 60, 120), 0.6));
  p.drawEllipse(QPointF(8, 8), 3.6, 3.6);
  p.setPen(QPen(QColor(210, 30, 30), 1.4, Qt::SolidLine, Qt::RoundCap));
  p.drawLine(QPointF(8, 8), QPointF(12.8, 3.2));
}

Painter toolbarPainter(const QString& key) {
  if (key == u"Neu") return newPage;
  if (key == u"Rechnen") {
    return [](QPainter& p) { letter(p, QStringLiteral("R"), QColor(210, 0, 0)); };
  }
  if (key == u"Rotor") return rotor;
  if (key == u"Karte") return mapDisc;
  if (key == u"Beenden") return exitWindow;
  if (key == u"Grundeinstellungen") {
    return [](QPainter& p) { letter(p, QStringLiteral("G"), QColor(0, 0, 210)); };
  }
  if (key == u"Info") {
    return [](QPainter& p) { letter(p, QStringLiteral("i"), Qt::black, true); };
  }
  if (key == u"Hilfe") return helpMark;
  return {};
}

bool writePng(const QImage& image, const QString& path, QString* error) {
  if (!QDir().mkpath(QFileInfo(path).path())) {
    *error = QStringLiteral("cannot create the folder of %1").arg(path);
    return false;
  }
  if (!image.save(path, "PNG")) {
    *error = QStringLiteral("cannot write %1").arg(path);
    return false;
  }
  return true;
}

}  // namespace

QStringList ToolbarKeys() {
  return {QStringLiteral("Neu"),   QStringLiteral("Rechnen"), QStringLiteral("Rotor"),
          QStringLiteral("Karte"), QStringLiteral("Beenden"), QStringLiteral("Grundeinstellungen"),
          QStringLiteral("Info"),  QStringLiteral("Hilfe")};
}

std::span<const int> ToolbarSizes() {
  return kToolbarSizes;
}

std::span<const int> AppIconSizes() {
  return kAppIconSizes;
}

QImage PaintToolbarIcon(const QString& key, int size) {
  const Painter paint = toolbarPainter(key);
  if (!paint) return {};
  return paintOnGrid(size, paint, true);
}

QImage PaintAppIcon(int size) {
  return paintOnGrid(size, globe, false);
}

bool WriteIconResources(const QString& dir, QString* error) {
  QStringList files;
  for (const QString& key : ToolbarKeys()) {
    for (int size : ToolbarSizes()) {
      files << QStringLiteral("toolbar/%1/%2.png").arg(key).arg(size);
      if (!writePng(PaintToolbarIcon(key, size), dir + u'/' + files.back(), error)) return false;
    }
  }
  for (int size : AppIconSizes()) {
    files << QStringLiteral("app/%1.png").arg(size);
    if (!writePng(PaintAppIcon(size), dir + u'/' + files.back(), error)) return false;
  }

  QByteArray qrc = "<!DOCTYPE RCC>\n<RCC version=\"1.0\">\n<qresource prefix=\"/icons\">\n";
  for (const QString& file : files) qrc += "  <file>" + file.toUtf8() + "</file>\n";
  qrc += "</qresource>\n</RCC>\n";
  // Written last and only when whole, so that the build never takes a half set for done.
  QSaveFile out(dir + QStringLiteral("/icons.qrc"));
  if (!out.open(QIODevice::WriteOnly) || out.write(qrc) != qrc.size() || !out.commit()) {
    *error = QStringLiteral("cannot write %1/icons.qrc").arg(dir);
    return false;
  }
  return true;
}

}  // namespace marvento::icongen
