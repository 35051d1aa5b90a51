#pragma once

#include "distance/StationPair.h"

#include <QMainWindow>
#include <QPageLayout>
#include <QPageSize>

class QLabel;
class QAction;

namespace marvento {

class MapView;

// The map window: the map (picKarte), its info line (lbKarteInfo), the layers to switch and
// the export. Size, position, zoom and layers are kept in the settings group "Karte".
class frmKarte : public QMainWindow {
  Q_OBJECT

 public:
  explicit frmKarte(QWidget* parent = nullptr);
  ~frmKarte() override;

  MapView* picKarte = nullptr;
  QLabel* lbKarteInfo = nullptr;
  QAction* mnuSpeichern = nullptr;

  // The current view as a vector PDF with a title line, or as a PNG of the given size.
  bool savePdf(const QString& path, QPageSize::PageSizeId paper,
               QPageLayout::Orientation orientation);
  bool savePng(const QString& path, QSize size);
  QString title() const;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void saveAs();
  void saveSettings();
};

}  // namespace marvento
