// pdfgen INPUT.html OUTPUT.pdf
// Lays out an HTML page as Qt's rich text understands it on A4 pages and writes it as a PDF,
// with "Seite n von m" at the foot of each page. The document's <title> becomes the PDF title.

#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QGuiApplication>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QTextDocument>
#include <QTextStream>
#include <QUrl>

#include <cstdio>

namespace {

constexpr int kResolution = 600;  // dots per inch of the PDF's coordinate space
constexpr double kFooterMm = 10.0;

int fromMm(double mm) {
  return static_cast<int>(mm / 25.4 * kResolution + 0.5);
}

int fail(const QString& message) {
  std::fprintf(stderr, "pdfgen: %s\n", qPrintable(message));
  return 1;
}

}  // namespace

int main(int argc, char* argv[]) {
  // Fonts need a platform plugin, and a build machine may have no display.
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);
  const QStringList args = QGuiApplication::arguments();
  if (args.size() != 3) return fail(QStringLiteral("usage: pdfgen INPUT.html OUTPUT.pdf"));

  QFile input(args.at(1));
  if (!input.open(QIODevice::ReadOnly)) return fail(QStringLiteral("cannot read ") + args.at(1));
  const QString html = QString::fromUtf8(input.readAll());

  const QString outPath = args.at(2);
  const QString partPath = outPath + QStringLiteral(".part");
  {
    QPdfWriter writer(partPath);
    writer.setResolution(kResolution);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(22, 18, 22, 12), QPageLayout::Millimeter);
    writer.setCreator(QStringLiteral("Marvento pdfgen"));

    QTextDocument doc;
    doc.documentLayout()->setPaintDevice(&writer);
    doc.setDefaultFont(QFont(QStringLiteral("DejaVu Sans"), 10));
    doc.setDocumentMargin(0);
    // Pictures in the manual sit beside its source.
    doc.setBaseUrl(QUrl::fromLocalFile(QFileInfo(args.at(1)).absolutePath() + QStringLiteral("/")));
    doc.setHtml(html);
    writer.setTitle(doc.metaInformation(QTextDocument::DocumentTitle));

    const int footer = fromMm(kFooterMm);
    const QSizeF body(writer.width(), writer.height() - footer);
    doc.setPageSize(body);
    const int pages = doc.pageCount();

    QPainter painter;
    if (!painter.begin(&writer)) return fail(QStringLiteral("cannot write ") + partPath);
    QFont footerFont(QStringLiteral("DejaVu Sans"), 8);
    for (int page = 0; page < pages; ++page) {
      if (page > 0) writer.newPage();
      painter.save();
      painter.translate(0, -page * body.height());
      QAbstractTextDocumentLayout::PaintContext context;
      context.clip = QRectF(0, page * body.height(), body.width(), body.height());
      // The layout only skips blocks outside the clip; a block that spans the page break
      // would otherwise be drawn on both pages.
      painter.setClipRect(context.clip);
      doc.documentLayout()->draw(&painter, context);
      painter.restore();

      painter.setFont(footerFont);
      painter.setPen(QColor(90, 90, 90));
      const QRectF footerRect(0, body.height(), body.width(), footer);
      painter.drawText(footerRect, Qt::AlignHCenter | Qt::AlignBottom,
                       QStringLiteral("Seite %1 von %2").arg(page + 1).arg(pages));
    }
    painter.end();
  }
  // Replace the old file only once the new one is complete.
  QFile::remove(outPath);
  if (!QFile::rename(partPath, outPath)) return fail(QStringLiteral("cannot write ") + outPath);
  return 0;
}
