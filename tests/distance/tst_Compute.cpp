#include "distance/ComputeCommand.h"
#include "platform/MsgBoxRecorder.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QtTest>

using namespace marvento;

// The decisions themselves are tested without widgets (Compute_test); here only what the
// command does with them in a shown window: fields and their cursor, labels, memory, log line,
// beep, box and focus.
class tst_Compute : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
  void appliesEachDecision();
};

void tst_Compute::appliesEachDecision() {
  QWidget window;
  QList<QLineEdit*> f;  // own locator, Lg, Br, remote locator, Lg, Br
  for (int i = 0; i < 6; ++i) f << new QLineEdit(&window);
  auto* entfernung = new QLabel(QStringLiteral("alt"), &window);
  auto* richtung = new QLabel(QStringLiteral("alt"), &window);
  auto* radius = new QComboBox(&window);
  radius->setEditable(true);
  radius->setEditText(QStringLiteral("6371,00079"));
  QStringList logged;  // the own locator field as each log line reads it
  ComputeCommand command{
      ComputeFields{f[0], f[3], f[1], f[2], f[4], f[5], entfernung, richtung, radius},
      [] {
        return ComputePreferences{true, false, true};
      },
      [&] { logged << f[0]->text(); }};
  auto texts = [&] {
    QStringList t;
    for (const QLineEdit* e : f) t << e->text();
    return t.join(u'|');
  };
  auto remembered = [&] {
    const ComputeMemory& m = command.memory();
    return QStringList{m.LastMyLoc,    m.LastMyLg,    m.LastMyBr,
                       m.LastFremdLoc, m.LastFremdLg, m.LastFremdBr}
        .join(u'|');
  };
  window.show();
  window.activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(&window));
  MsgBoxRecorder rec;

  // Refused: nothing written or remembered, a beep before the box, the cursor to the field.
  f[3]->setText(QStringLiteral("jo31nk"));
  f[5]->setFocus();
  command.Compute();
  QCOMPARE(texts(), QStringLiteral("|||jo31nk||"));
  QCOMPARE(f[3]->cursorPosition(), 6);
  QCOMPARE(entfernung->text(), QStringLiteral("alt"));
  QCOMPARE(rec.count(), 1);
  QCOMPARE(rec.last().title, QStringLiteral(" Unvollständige Eingabe !"));
  QCOMPARE(rec.entries()[0].beepsBefore, 1);
  QVERIFY(f[0]->hasFocus());
  QCOMPARE(remembered(), QStringLiteral("|||||"));

  // Solved: every field shown from its start, both labels, the memory, and the log line only
  // once the own locator field holds the run's locator.
  f[0]->setText(QStringLiteral("jo62qm"));
  command.Compute();
  const QString solved = QStringLiteral("JO62QM|13,375|52,5208333333333|JO31NK|7,125|51,4375");
  QCOMPARE(texts(), solved);
  for (const QLineEdit* e : f) QCOMPARE(e->cursorPosition(), 0);
  QCOMPARE(entfernung->text(), QStringLiteral(" 444,53 km"));
  QCOMPARE(richtung->text(), QStringLiteral("256,761 °"));
  QCOMPARE(remembered(), solved);
  QCOMPARE(logged, QStringList{QStringLiteral("JO62QM")});
  QCOMPARE(rec.count(), 1);
  QCOMPARE(rec.beeps(), 1);

  // A remark on the result: the remote side and the distance label are written and
  // remembered before the box; fields not written keep their cursor, the focus stays.
  f[3]->setText(QStringLiteral("jo62qm"));
  for (QLineEdit* e : f) e->end(false);
  f[5]->setFocus();
  command.Compute();
  const QString coincide =
      QStringLiteral("JO62QM|13,375|52,5208333333333|JO62QM|13,375|52,5208333333333");
  QCOMPARE(texts(), coincide);
  for (int i = 0; i < 6; ++i)
    QCOMPARE(f[i]->cursorPosition(), i < 3 ? int(f[i]->text().size()) : 0);
  QCOMPARE(entfernung->text(), QStringLiteral(" 0 "));
  QCOMPARE(richtung->text(), QStringLiteral("256,761 °"));
  QCOMPARE(remembered(), coincide);
  QCOMPARE(rec.count(), 2);
  QCOMPARE(rec.last().title, QStringLiteral(" Bitte Bandmaß benutzen ! "));
  QCOMPARE(rec.entries()[1].beepsBefore, 1);
  QVERIFY(f[5]->hasFocus());
  QCOMPARE(logged.size(), 1);
}

QTEST_MAIN(tst_Compute)
#include "tst_Compute.moc"
