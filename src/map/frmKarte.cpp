#include "map/frmKarte.h"

#include "access/LiveRegion.h"
#include "map/MapView.h"
#include "platform/AccessibleTexts.h"
#include "platform/MsgBox.h"
#include "platform/Settings.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDate>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QMenuBar>
#include <QPainter>
#include <QPdfWriter>
#include <QSpinBox>
#include <QVBoxLayout>

namespace marvento {

namespace {

struct LayerItem {
  MapLayer layer;
  const char* text;
};
const LayerItem kLayerItems[] = {
    {LayerLand, "&Land und Meer"},  {LayerCoast, "&Küsten"},
    {LayerBorders, "&Grenzen"},     {LayerRings, "&Entfernungsringe und Richtungen"},
    {LayerGrid, "L&ocator-Gitter"}, {LayerStations, "&Stationen und Weg"},
    {LayerRotor, "&Rotor"},         {LayerTrack, "GPS-S&pur"},
    {LayerNight, "&Tag und Nacht"},
};

}  // namespace

frmKarte::frmKarte(QWidget* parent) : QMainWindow(parent, Qt::Window) {
  setObjectName(QStringLiteral("frmKarte"));
  setWindowTitle(QStringLiteral("Marvento – Karte"));
  setAttribute(Qt::WA_DeleteOnClose, false);

  auto* central = new QWidget(this);
  auto* layout = new QVBoxLayout(central);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  InstallMapAccessible();
  picKarte = new MapView(central);
  lbKarteInfo = new QLabel(central);
  lbKarteInfo->setObjectName(QStringLiteral("lbKarteInfo"));
  lbKarteInfo->setIndent(4);
  lbKarteInfo->setTextInteractionFlags(Qt::TextSelectableByMouse);
  layout->addWidget(picKarte, 1);
  layout->addWidget(lbKarteInfo);
  setCentralWidget(central);
  connect(picKarte, &MapView::hovered, lbKarteInfo, &QLabel::setText);
  // The keyboard cursor's readout is spoken; the mouse's would talk at every move.
  auto* live = new LiveRegion(this);
  connect(picKarte, &MapView::keyCursorRead, live, &LiveRegion::say);
  SetAccessibleTexts(
      this, {
                {"picKarte", QStringLiteral("Karte"),
                 QStringLiteral("Pfeiltasten verschieben, Umschalt+Pfeiltasten bewegen das "
                                "Fadenkreuz, Eingabe übernimmt den Punkt als Gegenstation, Plus "
                                "und Minus vergrößern und verkleinern, Pos1 zeigt die ganze Erde")},
                {"lbKarteInfo", QString(),
                 QStringLiteral("Infozeile der Karte: Locator, Entfernung und Richtung des "
                                "Punkts unter dem Zeiger")},
            });

  QMenu* file = menuBar()->addMenu(QStringLiteral("&Datei"));
  file->setObjectName(QStringLiteral("mnuKarteDatei"));
  mnuSpeichern = file->addAction(QStringLiteral("&Speichern unter…"), this, &frmKarte::saveAs);
  mnuSpeichern->setObjectName(QStringLiteral("mnuKarteSpeichern"));
  mnuSpeichern->setShortcut(QKeySequence::SaveAs);
  file->addAction(QStringLiteral("S&chließen"), QKeySequence::Close, this, &QWidget::close);

  QMenu* view = menuBar()->addMenu(QStringLiteral("&Ansicht"));
  view->setObjectName(QStringLiteral("mnuKarteAnsicht"));
  view->addAction(QStringLiteral("&Ganze Erde (Pos1)"), this, [this] { picKarte->wholeEarth(); });
  view->addAction(QStringLiteral("&Vergrößern (+)"), this,
                  [this] { picKarte->setZoom(picKarte->zoom() * 1.5); });
  view->addAction(QStringLiteral("V&erkleinern (−)"), this,
                  [this] { picKarte->setZoom(picKarte->zoom() / 1.5); });

  QMenu* layers = menuBar()->addMenu(QStringLiteral("&Ebenen"));
  layers->setObjectName(QStringLiteral("mnuKarteEbenen"));
  bool ok = false;
  const unsigned stored =
      GetMapSetting(MapSettingKey::Layers, QString::number(LayerAll)).toUInt(&ok);
  picKarte->setLayers(ok ? stored : LayerAll);
  for (const LayerItem& item : kLayerItems) {
    QAction* a = layers->addAction(QString::fromUtf8(item.text));
    a->setCheckable(true);
    a->setChecked(picKarte->layers() & item.layer);
    const MapLayer layer = item.layer;
    connect(a, &QAction::toggled, this, [this, layer](bool on) {
      picKarte->setLayers(on ? picKarte->layers() | layer : picKarte->layers() & ~layer);
      saveSettings();
    });
  }

  resize(760, 640);
  const QStringList g = GetMapSetting(MapSettingKey::Geometry, {}).split(u',');
  if (g.size() == 4) {
    int v[4];
    bool all = true;
    for (int i = 0; i < 4; ++i) {
      v[i] = g[i].trimmed().toInt(&ok);
      all = all && ok;
    }
    if (all && v[2] >= 200 && v[3] >= 200 && v[2] < 20000 && v[3] < 20000) {
      move(v[0], v[1]);
      resize(v[2], v[3]);
    }
  }
  picKarte->setFocus();
}

frmKarte::~frmKarte() = default;

void frmKarte::closeEvent(QCloseEvent* event) {
  saveSettings();
  event->accept();
}

void frmKarte::saveSettings() {
  SaveMapSetting(MapSettingKey::Geometry,
                 QStringLiteral("%1,%2,%3,%4").arg(x()).arg(y()).arg(width()).arg(height()));
  SaveMapSetting(MapSettingKey::Zoom, QString::number(picKarte->zoom(), 'g', 8));
  SaveMapSetting(MapSettingKey::Layers, QString::number(picKarte->layers()));
}

QString frmKarte::title() const {
  const AzimuthalProjection& p = picKarte->projection();
  return QStringLiteral("Marvento – Karte um %1, %2, Radius %3 km")
      .arg(picKarte->centreName(),
           QLocale().toString(QDate::currentDate(), QStringLiteral("dd.MM.yyyy")),
           QLocale().toString(p.radiusKm(), 'f', 0));
}

bool frmKarte::savePdf(const QString& path, QPageSize::PageSizeId paper,
                       QPageLayout::Orientation orientation) {
  QPdfWriter writer(path);
  writer.setResolution(300);
  writer.setTitle(title());
  writer.setCreator(QStringLiteral("Marvento"));
  writer.setPageLayout(QPageLayout(QPageSize(paper), orientation, QMarginsF(12, 12, 12, 12)));
  QPainter painter;
  if (!painter.begin(&writer)) return false;
  const QRect page = painter.viewport();
  QFont f = painter.font();
  f.setPointSizeF(14);
  painter.setFont(f);
  const int titleHeight = painter.fontMetrics().height() * 2;
  painter.drawText(QRect(0, 0, page.width(), titleHeight), Qt::AlignLeft | Qt::AlignTop, title());
  painter.translate(0, titleHeight);
  f.setPointSizeF(8);
  painter.setFont(f);
  picKarte->render(painter, QSize(page.width(), page.height() - titleHeight));
  return painter.end();
}

bool frmKarte::savePng(const QString& path, QSize size) {
  QImage image(size, QImage::Format_RGB32);
  QPainter painter(&image);
  picKarte->render(painter, size);
  painter.end();
  return image.save(path, "PNG");
}

void frmKarte::saveAs() {
  QString filter;
  QString path = QFileDialog::getSaveFileName(
      this, QStringLiteral("Karte speichern unter"), QStringLiteral("Karte.pdf"),
      QStringLiteral("PDF (*.pdf);;PNG-Bild (*.png)"), &filter);
  if (path.isEmpty()) return;
  const bool png = filter.contains(QStringLiteral("*.png")) ||
                   path.endsWith(QStringLiteral(".png"), Qt::CaseInsensitive);
  QDialog dialog(this);
  dialog.setWindowTitle(QStringLiteral("Karte speichern"));
  auto* form = new QFormLayout(&dialog);
  auto* paper = new QComboBox(&dialog);
  auto* w = new QSpinBox(&dialog);
  auto* h = new QSpinBox(&dialog);
  if (png) {
    w->setRange(200, 10000);
    h->setRange(200, 10000);
    w->setValue(picKarte->width() * 2);
    h->setValue(picKarte->height() * 2);
    form->addRow(QStringLiteral("&Breite (Pixel):"), w);
    form->addRow(QStringLiteral("&Höhe (Pixel):"), h);
  } else {
    paper->addItems({QStringLiteral("A4 Hochformat"), QStringLiteral("A4 Querformat"),
                     QStringLiteral("A3 Hochformat"), QStringLiteral("A3 Querformat")});
    form->addRow(QStringLiteral("&Papier:"), paper);
  }
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
  connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  form->addRow(buttons);
  if (dialog.exec() != QDialog::Accepted) return;
  bool ok = false;
  if (png) {
    ok = savePng(path, QSize(w->value(), h->value()));
  } else {
    const int i = paper->currentIndex();
    ok = savePdf(path, i < 2 ? QPageSize::A4 : QPageSize::A3,
                 i % 2 ? QPageLayout::Landscape : QPageLayout::Portrait);
  }
  if (!ok) {
    MsgBox(QStringLiteral("Die Karte konnte nicht gespeichert werden:\n") + path, vbCritical,
           QStringLiteral(" Karte speichern"));
  }
}

}  // namespace marvento
