#include "contest/ContestLogModel.h"

#include <QBrush>
#include <QColor>

namespace marvento {

ContestLogModel::ContestLogModel(QObject* parent) : QAbstractTableModel(parent) {}

void ContestLogModel::setLog(std::shared_ptr<const EdiCheck> log) {
  beginResetModel();
  m_log = std::move(log);
  endResetModel();
}

int ContestLogModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() || !m_log ? 0 : static_cast<int>(m_log->qsos.size());
}

int ContestLogModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : ColumnCount;
}

QVariant ContestLogModel::data(const QModelIndex& index, int role) const {
  if (!m_log || !index.isValid() || index.row() >= rowCount()) return {};
  const EdiQso& q = m_log->qsos[static_cast<size_t>(index.row())];
  const bool valid = q.kind != EdiQso::BadLocator;
  if (role == Qt::DisplayRole) {
    switch (index.column()) {
      case Date: return QString::fromLatin1(q.date);
      case Time: return QString::fromLatin1(q.time);
      case Call: return QString::fromLatin1(q.call);
      case Locator: return QString::fromLatin1(q.locator);
      case Claimed: return q.claimed ? QVariant(*q.claimed) : QVariant(QString());
      case Points: return q.points;
      case Difference: return q.holds() ? QVariant(0) : QVariant(q.difference());
      case Bearing: return valid ? QVariant(qRound(q.bearing * 10) / 10.0) : QVariant(QString());
      default: return {};
    }
  }
  if (role == Qt::TextAlignmentRole && index.column() >= Claimed)
    return QVariant(Qt::AlignRight | Qt::AlignVCenter);
  if (role == Qt::BackgroundRole && !q.holds()) {
    // Larger differences and bad locators in red, one point off in yellow.
    return QBrush(q.kind == EdiQso::OffByOne ? QColor(255, 240, 170) : QColor(255, 200, 200));
  }
  if (role == Qt::ForegroundRole && !q.holds()) return QBrush(Qt::black);
  if (role == Qt::ToolTipRole) {
    switch (q.kind) {
      case EdiQso::OffByOne: return QStringLiteral("Um 1 abweichend (Zeile %1)").arg(q.line);
      case EdiQso::Larger: return QStringLiteral("Größere Abweichung (Zeile %1)").arg(q.line);
      case EdiQso::BadLocator:
        return QStringLiteral("Ungültiger Locator: 0 Punkte (Zeile %1)").arg(q.line);
      case EdiQso::Duplicate: return QStringLiteral("Doppelt (D): 0 Punkte (Zeile %1)").arg(q.line);
      case EdiQso::Exact: return QStringLiteral("Stimmt (Zeile %1)").arg(q.line);
    }
  }
  return {};
}

QVariant ContestLogModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
  static const char* const names[ColumnCount] = {"Datum",     "Zeit",        "Rufzeichen",
                                                 "Locator",   "Beansprucht", "Marvento",
                                                 "Differenz", "Richtung °"};
  return section >= 0 && section < ColumnCount ? QString::fromUtf8(names[section]) : QVariant();
}

}  // namespace marvento
