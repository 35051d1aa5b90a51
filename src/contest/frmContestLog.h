#pragma once

#include "contest/EdiCheck.h"

#include <QDialog>

#include <atomic>
#include <functional>
#include <memory>

class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QSortFilterProxyModel;
class QTableView;
class QThread;

namespace marvento {

class ContestLogModel;

// "Contest-Log prüfen": an EDI log read and checked in the background, its QSOs in a
// sortable table with the differences marked, the summary, and "Korrigiert speichern…".
class frmContestLog : public QDialog {
  Q_OBJECT

 public:
  explicit frmContestLog(QWidget* parent = nullptr);
  ~frmContestLog() override;

  // Reads and checks the file in the background; the window stays usable. loaded() tells
  // when it is done.
  void openLog(const QString& path);
  // Asks for a file and opens it.
  void chooseAndOpen();
  bool busy() const { return m_worker != nullptr; }
  const EdiCheck* log() const;
  QTableView* table() const { return m_table; }

  // Writes the corrected log to path in the background; the result arrives as saved().
  void saveCorrected(const QString& path);

 signals:
  void loaded();
  void saved(const QString& error);

 private:
  void start(std::function<void()> work);
  void progress(qint64 done, qint64 total);
  void showLog(std::shared_ptr<EdiCheck> log);
  void chooseAndSave();
  void cancel();

  QString m_path;
  ContestLogModel* m_model;
  QSortFilterProxyModel* m_proxy;
  QTableView* m_table;
  QPlainTextEdit* m_summary;
  QProgressBar* m_progress;
  QLabel* m_status;
  QPushButton* m_open;
  QPushButton* m_save;
  QPushButton* m_cancel;
  QThread* m_worker = nullptr;
  std::atomic_bool m_stop{false};
  std::shared_ptr<EdiCheck> m_log;
  std::function<void()> m_then;  // what to tell when the background work has ended
};

}  // namespace marvento
