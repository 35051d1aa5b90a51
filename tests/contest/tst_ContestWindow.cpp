// The contest figures in the real main window, and the log window with a real log.
#include "app/frmMain.h"
#include "contest/ContestLogModel.h"
#include "contest/EdiCheck.h"
#include "contest/frmContestLog.h"
#include "platform/MsgBoxRecorder.h"
#include "support/ProgramFixture.h"

#include <QAbstractItemModel>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <optional>

using namespace marvento;

class tst_ContestWindow : public test::ProgramTest {
  Q_OBJECT

 private slots:
  void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
  void init() { QVERIFY(begin()); }
  void cleanup() { end(); }

  // The figures and the menu's commands are there. JO62QM to JN58TD: 503 points (502.31 km on the
  // rule's sphere); on WGS84 502.311 km at 195.04° (GeodSolve for the square centres).
  void figuresFollowTheResults() {
    m_program.emplace();
    frmMain* w = m_program->window();
    MsgBoxRecorder boxes;
    QVERIFY(w->lblPunkte && w->lblWgs84 && w->mnuContestLog && w->mnuAdif);
    QVERIFY(w->mnuAktion->actions().contains(w->mnuContestLog));
    QVERIFY(w->mnuAktion->actions().contains(w->mnuAdif));
    QVERIFY(w->lblPunkte->isVisibleTo(w) && w->lblWgs84->isVisibleTo(w));
    QVERIFY(w->lblPunkte->text().isEmpty());
    w->tbMyLoc->setText(QStringLiteral("JO62QM"));
    w->tbFremdLoc->setText(QStringLiteral("JN58TD"));
    w->Compute();
    QCOMPARE(w->lblPunkte->text(), QStringLiteral("QSO-Punkte (IARU): 503"));
    QCOMPARE(w->lblWgs84->text(), QStringLiteral("WGS84: 502,311 km, Richtung 195,04°"));
    // Longer locators count by their 6-character squares.
    w->tbFremdLoc->setText(QStringLiteral("JN58TD12AB"));
    w->Compute();
    QCOMPARE(w->lblPunkte->text(), QStringLiteral("QSO-Punkte (IARU): 503"));
    w->tbFremdLoc->setText(QStringLiteral("JN58TD"));
    w->Compute();
    w->mnuGegenRichtung_Click();
    QCOMPARE(w->lblWgs84->text(), QStringLiteral("WGS84: 502,311 km, Gegenrichtung 15,04°"));
    QCOMPARE(w->lblPunkte->text(), QStringLiteral("QSO-Punkte (IARU): 503"));
    w->mnuNeu_Click();
    QVERIFY(w->lblEntfernung->text().isEmpty());
    QVERIFY(w->lblPunkte->text().isEmpty());
    QVERIFY(w->lblWgs84->text().isEmpty());
    // Both lie inside the window, below the results.
    QVERIFY(w->lblWgs84->geometry().bottom() < w->lblWgs84->parentWidget()->height());
    QVERIFY(w->lblPunkte->mapTo(w, QPoint()).y() > w->lblEntfernung->mapTo(w, QPoint()).y());
  }

  // The log is read in the background, sorted by difference, and saved corrected.
  void logWindowChecksAndCorrects() {
    m_program.emplace();
    auto* window = new frmContestLog(m_program->window());
    QSignalSpy loaded(window, &frmContestLog::loaded);
    window->show();
    window->openLog(QStringLiteral(MARVENTO_CONTEST_DATA "/differences.edi"));
    QVERIFY(loaded.wait(10000));
    QVERIFY(window->log() && window->log()->ok());
    QAbstractItemModel* model = window->table()->model();
    QCOMPARE(model->rowCount(), 10);
    QCOMPARE(model->columnCount(), int(ContestLogModel::ColumnCount));
    window->table()->sortByColumn(ContestLogModel::Difference, Qt::DescendingOrder);
    // Largest claim over the rule first: the duplicate that claims 242.
    QCOMPARE(model->index(0, ContestLogModel::Call).data().toString(), QStringLiteral("DL0GTH"));
    QCOMPARE(model->index(0, ContestLogModel::Difference).data().toInt(), 242);
    QVERIFY(model->index(0, ContestLogModel::Call).data(Qt::BackgroundRole).isValid());
    window->table()->sortByColumn(ContestLogModel::Difference, Qt::AscendingOrder);
    QCOMPARE(model->index(0, ContestLogModel::Difference).data().toInt(), -1);
    QVERIFY(!model->index(9, ContestLogModel::Call).data(Qt::BackgroundRole).isValid() ||
            model->index(9, ContestLogModel::Difference).data().toInt() != 0);
    auto* summary = window->findChild<QPlainTextEdit*>(QStringLiteral("txtSummary"));
    QVERIFY(summary && summary->toPlainText().contains(QStringLiteral("nachgerechnet 2921")));

    QTemporaryDir dir;
    const QString out = dir.filePath(QStringLiteral("fixed.edi"));
    QSignalSpy saved(window, &frmContestLog::saved);
    window->saveCorrected(out);
    QVERIFY(saved.wait(10000));
    QVERIFY(saved.last().at(0).toString().isEmpty());
    QVERIFY(CheckEdiFile(out).allHold());
    window->close();
  }

  // A large log (200,000 QSOs, 12 MB) is read while the window keeps answering: a 10-ms
  // timer never waits as long as a second.
  void largeLogKeepsTheWindowAnswering() {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("large.edi"));
    {
      QFile f(path);
      QVERIFY(f.open(QIODevice::WriteOnly));
      f.write("[REG1TEST;1]\r\nPWWLo=JO62QM\r\n[QSORecords;200000]\r\n");
      for (int i = 0; i < 200000; ++i)
        f.write("261024;1400;DL" + QByteArray::number(i) + "X;1;59;001;59;001;;JO" +
                QByteArray::number(50 + i % 30) + "AB;" + QByteArray::number(i % 700) + ";;;;\r\n");
    }
    m_program.emplace();
    auto* window = new frmContestLog(m_program->window());
    QSignalSpy loaded(window, &frmContestLog::loaded);
    window->show();
    QElapsedTimer clock;
    qint64 last = 0, longest = 0;
    QTimer tick;
    connect(&tick, &QTimer::timeout, this, [&] {
      longest = std::max(longest, clock.elapsed() - last);
      last = clock.elapsed();
    });
    clock.start();
    tick.start(10);
    window->openLog(path);
    QVERIFY(window->busy());
    QVERIFY(loaded.wait(60000));
    tick.stop();
    QCOMPARE(window->table()->model()->rowCount(), 200000);
    // Reading in the window's thread takes seconds under the sanitizers; filling the table
    // at the end is the longest pause left.
    QVERIFY2(longest < 1000, qPrintable(QStringLiteral("longest pause %1 ms").arg(longest)));
    window->close();
  }
};

QTEST_MAIN(tst_ContestWindow)
#include "tst_ContestWindow.moc"
