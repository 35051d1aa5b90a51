#include "contest/frmContestLog.h"

#include "contest/ContestLogModel.h"
#include "contest/EdiFix.h"
#include "platform/AccessibleTexts.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QThread>
#include <QVBoxLayout>

#include <utility>

namespace marvento {

namespace {
// Rows of the summary's lists; the table shows them all.
constexpr int kListedRows = 200;
}  // namespace

frmContestLog::frmContestLog(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmContestLog"));
  setWindowTitle(QStringLiteral("Contest-Log prüfen"));
  setAttribute(Qt::WA_DeleteOnClose);

  m_model = new ContestLogModel(this);
  m_proxy = new QSortFilterProxyModel(this);
  m_proxy->setSourceModel(m_model);
  m_table = new QTableView(this);
  m_table->setObjectName(QStringLiteral("tblQsos"));
  m_table->setModel(m_proxy);
  m_table->setSortingEnabled(true);
  m_table->sortByColumn(-1, Qt::AscendingOrder);
  m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
  m_table->verticalHeader()->hide();
  m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);

  m_summary = new QPlainTextEdit(this);
  m_summary->setObjectName(QStringLiteral("txtSummary"));
  m_summary->setReadOnly(true);
  m_summary->setMaximumHeight(fontMetrics().lineSpacing() * 12);

  m_progress = new QProgressBar(this);
  m_progress->setObjectName(QStringLiteral("prgRead"));
  m_progress->setRange(0, 1000);
  m_progress->hide();
  m_status = new QLabel(this);
  m_status->setObjectName(QStringLiteral("lblStatus"));

  m_open = new QPushButton(QStringLiteral("Ö&ffnen…"), this);
  m_open->setObjectName(QStringLiteral("cmdOpen"));
  m_save = new QPushButton(QStringLiteral("&Korrigiert speichern…"), this);
  m_save->setObjectName(QStringLiteral("cmdSave"));
  m_save->setEnabled(false);
  m_cancel = new QPushButton(QStringLiteral("&Abbrechen"), this);
  m_cancel->setObjectName(QStringLiteral("cmdCancel"));
  m_cancel->hide();
  auto* close = new QPushButton(QStringLiteral("&Schließen"), this);
  close->setObjectName(QStringLiteral("cmdClose"));
  connect(m_open, &QPushButton::clicked, this, &frmContestLog::chooseAndOpen);
  connect(m_save, &QPushButton::clicked, this, &frmContestLog::chooseAndSave);
  connect(m_cancel, &QPushButton::clicked, this, &frmContestLog::cancel);
  connect(close, &QPushButton::clicked, this, &QDialog::close);
  SetAccessibleTexts(
      this, {
                {"tblQsos", QStringLiteral("QSOs des Logs"),
                 QStringLiteral("Datum, Zeit, Rufzeichen, Locator, Punkte laut Log, Punkte "
                                "nach Marvento, Unterschied, Richtung; Spaltenköpfe sortieren")},
                {"txtSummary", QStringLiteral("Zusammenfassung"),
                 QStringLiteral("QSOs, Doppel, Punktsummen, ODX, Großfelder und die "
                                "Unterschiede nach Art")},
                {"prgRead", QStringLiteral("Fortschritt beim Lesen"), QString()},
                {"cmdOpen", QString(), QStringLiteral("EDI-Log öffnen")},
                {"cmdSave", QString(),
                 QStringLiteral("schreibt eine neue Datei mit den nachgerechneten Punkten")},
            });

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(m_open);
  buttons->addWidget(m_save);
  buttons->addWidget(m_cancel);
  buttons->addStretch();
  buttons->addWidget(close);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(m_summary);
  layout->addWidget(m_table, 1);
  layout->addWidget(m_progress);
  layout->addWidget(m_status);
  layout->addLayout(buttons);
  resize(760, 560);
}

frmContestLog::~frmContestLog() {
  m_stop = true;
  if (m_worker) m_worker->wait();
}

const EdiCheck* frmContestLog::log() const {
  return m_log.get();
}

void frmContestLog::start(std::function<void()> work) {
  m_stop = false;
  m_open->setEnabled(false);
  m_save->setEnabled(false);
  m_cancel->show();
  m_progress->setValue(0);
  m_progress->show();
  m_worker = QThread::create(std::move(work));
  connect(m_worker, &QThread::finished, this, [this] {
    m_worker->deleteLater();
    m_worker = nullptr;
    m_progress->hide();
    m_cancel->hide();
    m_open->setEnabled(true);
    m_save->setEnabled(m_log && m_log->ok());
    // Told only now, so that whoever hears it finds the window ready for the next step.
    if (m_then) std::exchange(m_then, nullptr)();
  });
  m_worker->start(QThread::LowPriority);
}

void frmContestLog::progress(qint64 done, qint64 total) {
  m_progress->setValue(total > 0 ? static_cast<int>(done * 1000 / total) : 0);
}

void frmContestLog::cancel() {
  m_stop = true;
}

void frmContestLog::openLog(const QString& path) {
  if (m_worker) return;
  m_path = path;
  m_status->setText(QStringLiteral("Lese %1 …").arg(QFileInfo(path).fileName()));
  m_then = [this] { emit loaded(); };
  start([this, path] {
    EdiProgress p;
    p.cancel = &m_stop;
    p.step = [this](qint64 done, qint64 total) {
      QMetaObject::invokeMethod(
          this, [this, done, total] { progress(done, total); }, Qt::QueuedConnection);
    };
    auto log = std::make_shared<EdiCheck>(CheckEdiFile(path, p));
    QMetaObject::invokeMethod(
        this, [this, log] { showLog(log); }, Qt::QueuedConnection);
  });
}

void frmContestLog::showLog(std::shared_ptr<EdiCheck> log) {
  m_log = log;
  m_model->setLog(log);
  m_summary->setPlainText(log->report(kListedRows).join(u'\n'));
  m_status->setText(log->ok() ? QFileInfo(m_path).fileName() : QString());
  m_save->setEnabled(log->ok() && !m_worker);
}

void frmContestLog::chooseAndOpen() {
  const QString path =
      QFileDialog::getOpenFileName(this, QStringLiteral("EDI-Log öffnen"), QFileInfo(m_path).path(),
                                   QStringLiteral("EDI-Logs (*.edi *.EDI);;Alle Dateien (*)"));
  if (!path.isEmpty()) openLog(path);
}

void frmContestLog::saveCorrected(const QString& path) {
  if (m_worker || !m_log || !m_log->ok()) return;
  m_status->setText(QStringLiteral("Schreibe %1 …").arg(QFileInfo(path).fileName()));
  const std::shared_ptr<const EdiCheck> log = m_log;
  const QString in = m_path;
  start([this, log, in, path] {
    EdiProgress p;
    p.cancel = &m_stop;
    p.step = [this](qint64 done, qint64 total) {
      QMetaObject::invokeMethod(
          this, [this, done, total] { progress(done, total); }, Qt::QueuedConnection);
    };
    const QString error = FixEdi(in, path, *log, p);
    QMetaObject::invokeMethod(
        this,
        [this, error, path] {
          m_status->setText(error.isEmpty() ? QStringLiteral("Korrigiert gespeichert: %1").arg(path)
                                            : error);
          m_then = [this, error] { emit saved(error); };
        },
        Qt::QueuedConnection);
  });
}

void frmContestLog::chooseAndSave() {
  const QFileInfo in(m_path);
  const QString suggestion =
      in.dir().filePath(in.completeBaseName() + QStringLiteral("-korrigiert.") + in.suffix());
  const QString path =
      QFileDialog::getSaveFileName(this, QStringLiteral("Korrigiert speichern"), suggestion,
                                   QStringLiteral("EDI-Logs (*.edi *.EDI);;Alle Dateien (*)"));
  if (!path.isEmpty()) saveCorrected(path);
}

}  // namespace marvento
