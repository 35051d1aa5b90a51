#include "distance/ComputeCommand.h"
#include "platform/Format.h"
#include "platform/MsgBoxRecorder.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>
#include <QtTest>

using namespace marvento;

namespace {

// The controls of the main window that the command works on, and the command itself.
struct Window {
  QWidget widget;
  QLineEdit* tbMyLoc = add<QLineEdit>("tbMyLoc");
  QLineEdit* tbFremdLoc = add<QLineEdit>("tbFremdLoc");
  QLineEdit* tbMyLg = add<QLineEdit>("tbMyLg");
  QLineEdit* tbMyBr = add<QLineEdit>("tbMyBr");
  QLineEdit* tbFremdLg = add<QLineEdit>("tbFremdLg");
  QLineEdit* tbFremdBr = add<QLineEdit>("tbFremdBr");
  QLabel* lblEntfernung = add<QLabel>("lblEntfernung");
  QLabel* lblRichtung = add<QLabel>("lblRichtung");
  QComboBox* Combo1 = add<QComboBox>("Combo1");
  ComputePreferences state;
  int logWrites = 0;
  ComputeCommand command{ComputeFields{tbMyLoc, tbFremdLoc, tbMyLg, tbMyBr, tbFremdLg, tbFremdBr,
                                       lblEntfernung, lblRichtung, Combo1},
                         [this] { return state; }, [this] { ++logWrites; }};

  explicit Window(bool gradDezimal = true) {
    Combo1->setEditable(true);
    Combo1->setEditText(Format(6371.00079));
    state.GradDezimal = gradDezimal;
  }
  template <typename T>
  T* add(const char* name) {
    if (!widget.layout()) new QVBoxLayout(&widget);
    auto* w = new T(&widget);
    w->setObjectName(QString::fromLatin1(name));
    widget.layout()->addWidget(w);
    return w;
  }
  // Own locator, Lg, Br, remote locator, Lg, Br.
  QList<QLineEdit*> fields() const {
    return {tbMyLoc, tbMyLg, tbMyBr, tbFremdLoc, tbFremdLg, tbFremdBr};
  }
  void type(const QStringList& texts) {
    for (int i = 0; i < 6; ++i) fields()[i]->setText(texts.value(i));
  }
  QStringList texts() const {
    QStringList out;
    for (const QLineEdit* f : fields()) out << f->text();
    return out;
  }
  QStringList remembered() const {
    const ComputeMemory& m = command.memory();
    return {m.LastMyLoc, m.LastMyLg, m.LastMyBr, m.LastFremdLoc, m.LastFremdLg, m.LastFremdBr};
  }
};

// Six field texts joined by "|": own locator, Lg, Br, remote locator, Lg, Br.
QStringList fields(const char* joined) {
  return QString::fromUtf8(joined).split(u'|');
}

}  // namespace

// The decisions themselves are tested without widgets (Compute_test); here only what the
// command does with them in the window.
class tst_Compute : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
  void appliesTheDecision_data();
  void appliesTheDecision();
  void logLineAfterTheFields();
};

void tst_Compute::appliesTheDecision_data() {
  QTest::addColumn<QString>("entries");
  QTest::addColumn<QString>("after");
  QTest::addColumn<QString>("title");  // empty: no box
  QTest::addColumn<QString>("focus");
  QTest::addColumn<QString>("entfernung");
  QTest::newRow("solved") << "jo62qm|||jo31nk||"
                          << "JO62QM|13,375|52,5208333333333|JO31NK|7,125|51,4375"
                          << ""
                          << "tbFremdBr"
                          << " 444,53 km";
  QTest::newRow("own station empty") << "|||jo31nk||"
                                     << "|||jo31nk||"
                                     << " Unvollständige Eingabe !"
                                     << "tbMyLoc"
                                     << "alt";
  // The own side is written before the remote side is refused; the cursor stays.
  QTest::newRow("remote locator too long") << "jo62qm|||jo31nk12345||"
                                           << "JO62QM|13,375|52,5208333333333|JO31NK12345||"
                                           << " Falsche Eingabe !"
                                           << "tbFremdBr"
                                           << "alt";
  QTest::newRow("positions coincide")
      << "jo62qm|||jo62qm||"
      << "JO62QM|13,375|52,5208333333333|JO62QM|13,375|52,5208333333333"
      << " Bitte Bandmaß benutzen ! "
      << "tbFremdBr"
      << " 0 ";
}

void tst_Compute::appliesTheDecision() {
  QFETCH(QString, entries);
  QFETCH(QString, after);
  QFETCH(QString, title);
  QFETCH(QString, focus);
  QFETCH(QString, entfernung);
  Window w;
  w.widget.show();
  w.widget.activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(&w.widget));
  w.tbFremdBr->setFocus();
  w.lblEntfernung->setText("alt");
  w.type(fields(entries.toUtf8().constData()));
  for (QLineEdit* f : w.fields()) f->end(false);

  MsgBoxRecorder rec;
  w.command.Compute();
  QCOMPARE(w.texts(), fields(after.toUtf8().constData()));
  const QStringList typed = fields(entries.toUtf8().constData());
  for (int i = 0; i < 6; ++i) {
    // A field the command wrote shows its text from the start.
    const bool written = w.fields()[i]->text() != typed[i] || typed[i].isEmpty();
    if (written) QCOMPARE(w.fields()[i]->cursorPosition(), 0);
  }
  QCOMPARE(w.lblEntfernung->text(), entfernung);
  QCOMPARE(rec.count(), title.isEmpty() ? 0 : 1);
  if (!title.isEmpty()) {
    QCOMPARE(rec.last().title, title);
    QCOMPARE(rec.entries().front().beepsBefore, 1);
  }
  QCOMPARE(QApplication::focusWidget()->objectName(), focus);
  QCOMPARE(w.remembered().join(u'|'),
           title.isEmpty() || entfernung == " 0 " ? after : QString("|||||"));
}

// The log reads the own locator field: it must hold the run's locator when the line is asked for.
void tst_Compute::logLineAfterTheFields() {
  Window w;
  MsgBoxRecorder rec;
  w.state.logOn = true;
  QStringList logged;
  ComputeCommand command{ComputeFields{w.tbMyLoc, w.tbFremdLoc, w.tbMyLg, w.tbMyBr, w.tbFremdLg,
                                       w.tbFremdBr, w.lblEntfernung, w.lblRichtung, w.Combo1},
                         [&] { return w.state; }, [&] { logged << w.tbMyLoc->text(); }};
  w.type(fields("|13,4|52,52|jo31nk||"));
  command.Compute();
  w.tbMyLoc->setText("jo62ql");
  command.Compute();
  QCOMPARE(logged, QStringList({"JO62QM", "JO62QL"}));
  QCOMPARE(rec.count(), 0);
}

QTEST_MAIN(tst_Compute)
#include "tst_Compute.moc"
