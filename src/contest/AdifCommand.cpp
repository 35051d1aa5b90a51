#include "contest/AdifCommand.h"

#include "contest/AdifComplete.h"
#include "platform/MsgBox.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QProgressDialog>
#include <QThread>

#include <atomic>

namespace marvento {

void CompleteAdifInteractive(QWidget* parent, const QString& homeLocator) {
  const QString title = QStringLiteral(" ADIF ergänzen");
  const QString in =
      QFileDialog::getOpenFileName(parent, QStringLiteral("ADIF-Log öffnen"), QString(),
                                   QStringLiteral("ADIF-Logs (*.adi *.ADI);;Alle Dateien (*)"));
  if (in.isEmpty()) return;
  AdifOptions options;
  for (;;) {
    bool ok = false;
    const QString locator = QInputDialog::getText(
        parent, title,
        QStringLiteral(
            "Eigener Locator für QSOs ohne MY_GRIDSQUARE (leer: nur QSOs mit MY_GRIDSQUARE):"),
        QLineEdit::Normal, options.locator.isEmpty() ? homeLocator : options.locator, &ok);
    if (!ok) return;
    options.locator = locator.trimmed().toUpper();
    if (options.locator.isEmpty() || LocatorCentre(options.locator)) break;
    MsgBox(QStringLiteral("Der Locator %1 ist ungültig.").arg(options.locator), vbExclamation,
           title);
  }
  options.replace = MsgBox(QStringLiteral("Vorhandene Angaben DISTANCE und ANT_AZ ersetzen?\n\n"
                                          "OK: ersetzen, Abbrechen: behalten"),
                           vbOKCancel + vbQuestion, title) == vbOK;
  const QFileInfo info(in);
  const QString out = QFileDialog::getSaveFileName(
      parent, QStringLiteral("Ergänztes ADIF-Log speichern"),
      info.dir().filePath(info.completeBaseName() + QStringLiteral("-ergaenzt.adi")),
      QStringLiteral("ADIF-Logs (*.adi *.ADI);;Alle Dateien (*)"));
  if (out.isEmpty()) return;

  QProgressDialog progress(QStringLiteral("Ergänze %1 …").arg(info.fileName()),
                           QStringLiteral("Abbrechen"), 0, 1000, parent);
  progress.setObjectName(QStringLiteral("dlgAdifProgress"));
  progress.setWindowTitle(title);
  progress.setWindowModality(Qt::WindowModal);
  progress.setMinimumDuration(300);
  std::atomic_bool stop{false};
  std::atomic<int> permille{0};
  AdifResult result;
  QThread* worker = QThread::create([&] {
    EdiProgress p;
    p.cancel = &stop;
    p.step = [&](qint64 done, qint64 total) {
      permille = total > 0 ? static_cast<int>(done * 1000 / total) : 0;
    };
    result = CompleteAdifFile(in, out, options, p);
  });
  worker->start(QThread::LowPriority);
  // The window keeps answering while the file is written.
  while (!worker->wait(50)) {
    progress.setValue(permille);
    if (progress.wasCanceled()) stop = true;
    QCoreApplication::processEvents();
  }
  delete worker;
  progress.reset();
  if (!result.ok()) {
    MsgBox(result.error, vbExclamation, title);
    return;
  }
  MsgBox(QStringLiteral("%1 geschrieben.\n\n%2").arg(out, result.report().join(u'\n')),
         vbInformation, title);
}

}  // namespace marvento
