#pragma once

#include "contest/EdiCheck.h"

#include <QAbstractTableModel>

#include <memory>

namespace marvento {

// The QSOs of a checked EDI log as a table: date, time, call, locator, claimed points,
// Marvento's points, difference, bearing. Numbers are numbers, so a sort proxy orders them
// as such; rows whose claim differs are coloured by kind.
class ContestLogModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { Date, Time, Call, Locator, Claimed, Points, Difference, Bearing, ColumnCount };

  explicit ContestLogModel(QObject* parent = nullptr);

  void setLog(std::shared_ptr<const EdiCheck> log);
  const EdiCheck* log() const { return m_log.get(); }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;

 private:
  std::shared_ptr<const EdiCheck> m_log;
};

}  // namespace marvento
