#include "app/Module1.h"
#include "distance/Compute.h"
#include "platform/Format.h"
#include "platform/MsgBoxRecorder.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QVBoxLayout>
#include <QtTest>

#include <memory>

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
  Module1 state;
  int logWrites = 0;
  ComputeCommand command{ComputeFields{tbMyLoc, tbFremdLoc, tbMyLg, tbMyBr, tbFremdLg, tbFremdBr,
                                       lblEntfernung, lblRichtung, Combo1},
                         state, [this] { ++logWrites; }};

  Window() {
    Combo1->setEditable(true);
    Combo1->setEditText(Format(6371.00079));
    state.GradDezimal = true;
    state.Loc10st = false;
    state.GpsStatus = kGpsAus;
  }

  template <typename T>
  T* add(const char* name) {
    if (!widget.layout()) new QVBoxLayout(&widget);
    auto* w = new T(&widget);
    w->setObjectName(QString::fromLatin1(name));
    widget.layout()->addWidget(w);
    return w;
  }

  QList<QLineEdit*> fields() const {
    return {tbMyLoc, tbMyLg, tbMyBr, tbFremdLoc, tbFremdLg, tbFremdBr};
  }
  // Fields in the order own locator, Lg, Br, remote locator, Lg, Br.
  void type(const QStringList& texts) {
    const auto f = fields();
    for (int i = 0; i < f.size(); ++i) f[i]->setText(texts.value(i));
  }
  QStringList texts() const {
    QStringList out;
    for (const QLineEdit* f : fields()) out << f->text();
    return out;
  }
};

QStringList memoryTexts(const ComputeMemory& m) {
  return {m.LastMyLoc, m.LastMyLg, m.LastMyBr, m.LastFremdLoc, m.LastFremdLg, m.LastFremdBr};
}

}  // namespace

class tst_Compute : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }

  void workedExample();
  void failures_data();
  void failures();
  void plusRemoteLocator();
  void coincidingPositions_data();
  void coincidingPositions();
  void allCoordinatesTypedFirst();
  void typedCoordinatesThroughLocator_data();
  void typedCoordinatesThroughLocator();
  void gpsLog_data();
  void gpsLog();
  void handlerRemembersAsTyped();
  void bothSidesChanged();
  void oldLocatorStaysAsTyped();
  void zeroCountsAsUnknown_data();
  void zeroCountsAsUnknown();
  void strangeInput_data();
  void strangeInput();
};

// A fresh start with two locators, then the user edits one thing after another.
void tst_Compute::workedExample() {
  struct Step {
    const char* name;
    int field;  // index into Window::fields(); -1: change nothing
    QString text;
    int field2;
    QString text2;
    QStringList expected;  // own locator, Lg, Br, remote locator, Lg, Br
    const char* entfernung;
    const char* richtung;
  };
  const QStringList step1 = {"JO62QM", "13,375", "52,5208333333333", "JO31NK", "7,125", "51,4375"};
  const QStringList step3 = {"JO62QM", "13,375", "52,5208333333333",
                             "JN58TD", "11,625", "48,1458333333333"};
  const QStringList step4 = {"JO62QM", "13,375", "52,5208333333333", "JN58SE", "11,5", "48,2"};
  const QStringList step5 = {"JO62QM", "13,4", "52,52", "JN58SE", "11,5", "48,2"};
  const QStringList step6 = {"JO62QM", "13,375",           "52,5208333333333",
                             "JN58SE", "11,5416666666667", "48,1875"};
  const Step steps[] = {
      {"1 route A", 0, "jo62qm", 3, "jo31nk", step1, " 444,53 km", "256,761 °"},
      {"2 route F", -1, {}, -1, {}, step1, " 444,53 km", "256,761 °"},
      {"3 route C", 3, "JN58TD", -1, {}, step3, " 502,04 km", "195,002 °"},
      {"4 route D", 4, "11,5", 5, "48,2", step4, " 498,48 km", "196,201 °"},
      {"5 route B", 1, "13,4", 2, "52,52", step5, " 498,87 km", "196,41 °"},
      {"6 route A", 5, "", -1, {}, step6, " 499,05 km", "195,817 °"},
  };

  Window w;
  MsgBoxRecorder rec;
  for (const Step& s : steps) {
    const auto f = w.fields();
    if (s.field >= 0) f[s.field]->setText(s.text);
    if (s.field2 >= 0) f[s.field2]->setText(s.text2);
    // Cleared so that a run that does nothing cannot pass for one that solves again.
    w.lblEntfernung->clear();
    w.lblRichtung->clear();
    w.command.Compute();
    QVERIFY2(rec.count() == 0, s.name);
    QCOMPARE(w.texts(), s.expected);
    QCOMPARE(w.lblEntfernung->text(), QString::fromUtf8(s.entfernung));
    QCOMPARE(w.lblRichtung->text(), QString::fromUtf8(s.richtung));
    QCOMPARE(memoryTexts(w.command.memory()), s.expected);
  }
  QCOMPARE(rec.beeps(), 0);
}

void tst_Compute::failures_data() {
  QTest::addColumn<QStringList>("entries");
  QTest::addColumn<bool>("gradDezimal");
  QTest::addColumn<QString>("radius");
  QTest::addColumn<int>("boxes");
  QTest::addColumn<QString>("prompt");
  QTest::addColumn<QString>("title");
  QTest::addColumn<int>("style");
  QTest::addColumn<int>("beeps");
  QTest::addColumn<QString>("focus");
  QTest::addColumn<QStringList>("fieldsAfter");  // empty: as typed
  QTest::addColumn<QString>("entfernung");       // empty: the label keeps its text
  QTest::addColumn<bool>("remembered");

  const QString incomplete = " Unvollständige Eingabe !";
  const QString radius = "6371,00079";
  const QStringList none;
  QTest::newRow("1 own station empty")
      << QStringList{"", "", "", "jo31nk", "", ""} << true << radius << 1 << "Mein Locator"
      << incomplete << 48 << 1 << "tbMyLoc" << none << "" << false;
  QTest::newRow("1 own latitude missing")
      << QStringList{"", "13,4", "", "jo31nk", "", ""} << true << radius << 1 << "Mein Locator"
      << incomplete << 48 << 1 << "tbMyLoc" << none << "" << false;
  QTest::newRow("2 remote station empty")
      << QStringList{"jo62qm", "", "", "", "7", ""} << true << radius << 1 << "Fremdlocator"
      << incomplete << 48 << 1 << "tbFremdLoc" << none << "" << false;
  QTest::newRow("3 own locator too short")
      << QStringList{"jo6", "", "", "jo31nk", "", ""} << true << radius << 1 << "jo6"
      << " Falsche Eingabe !" << 48 << 1 << "" << none << "" << false;
  // The own side is already written when the remote side is refused.
  QTest::newRow("3 remote locator too long")
      << QStringList{"jo62qm", "", "", "jo31nk12345", "", ""} << true << radius << 1
      << "JO31NK12345"
      << " Falsche Eingabe !" << 48 << 1 << ""
      << QStringList{"JO62QM", "13,375", "52,5208333333333", "JO31NK12345", "", ""} << "" << false;
  QTest::newRow("4 small field I")
      << QStringList{"jo62qm", "", "", "ek74i", "", ""} << true << radius << 1 << "EK74I"
      << " KF falsch !" << 48 << 1 << ""
      << QStringList{"JO62QM", "13,375", "52,5208333333333", "EK74I", "", ""} << "" << false;
  QTest::newRow("4 old locator without digits")
      << QStringList{"ekx4h", "", "", "jo31nk", "", ""} << true << radius << 1 << "EKX4H"
      << " Falscher Locator !" << 48 << 1 << "" << none << "" << false;
  QTest::newRow("5 subsquare above X")
      << QStringList{"jo62qm", "", "", "jo62ym", "", ""} << true << radius << 1 << "JO62YM"
      << " Falscher Locator !" << 48 << 1 << ""
      << QStringList{"JO62QM", "13,375", "52,5208333333333", "JO62YM", "", ""} << "" << false;
  QTest::newRow("6 decimal longitude at the limit")
      << QStringList{"", "180", "52", "jo31nk", "", ""} << true << radius << 1
      << " ( max ±179,9999999°\" ) "
      << " Falsche Gradeingabe !" << 48 << 0 << "" << none << "" << false;
  QTest::newRow("6 minute mark before the degree mark")
      << QStringList{"", "13'22°30\"", "52°0'0\"", "jo31nk", "", ""} << false << radius << 1
      << "13'22°30\" ( wie x°x'x\" ) "
      << " Falsche Gradeingabe !" << 48 << 0 << "" << none << "" << false;
  QTest::newRow("6 latitude without seconds mark")
      << QStringList{"", "13°0'0\"", "52°0'0", "jo31nk", "", ""} << false << radius << 1
      << "52°0'0 ( wie x°x'x\" ) "
      << " Falsche Gradeingabe !" << 48 << 0 << "" << none << "" << false;
  QTest::newRow("7 positions coincide")
      << QStringList{"jo62qm", "", "", "jo62qm", "", ""} << true << radius << 1
      << "Entfernung: < 1 m"
      << " Bitte Bandmaß benutzen ! " << 64 << 1 << ""
      << QStringList{"JO62QM", "13,375", "52,5208333333333", "JO62QM", "13,375", "52,5208333333333"}
      << " 0 " << true;
  // Any other run-time error: remembered, a beep, no box, labels as they were.
  QTest::newRow("radius overflows")
      << QStringList{"jo62qm", "", "", "jo31nk", "", ""} << true << "1E999" << 0 << ""
      << "" << 0 << 1 << ""
      << QStringList{"JO62QM", "13,375", "52,5208333333333", "JO31NK", "7,125", "51,4375"} << ""
      << true;
}

void tst_Compute::failures() {
  QFETCH(QStringList, entries);
  QFETCH(bool, gradDezimal);
  QFETCH(QString, radius);
  QFETCH(int, boxes);
  QFETCH(QString, prompt);
  QFETCH(QString, title);
  QFETCH(int, style);
  QFETCH(int, beeps);
  QFETCH(QString, focus);
  QFETCH(QStringList, fieldsAfter);
  QFETCH(QString, entfernung);
  QFETCH(bool, remembered);

  Window w;
  w.state.GradDezimal = gradDezimal;
  w.Combo1->setEditText(radius);
  w.widget.show();
  w.widget.activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(&w.widget));
  w.tbFremdBr->setFocus();
  w.lblEntfernung->setText("alt");
  w.lblRichtung->setText("alt °");
  w.type(entries);

  MsgBoxRecorder rec;
  w.command.Compute();

  QCOMPARE(rec.count(), boxes);
  QCOMPARE(rec.beeps(), beeps);
  if (boxes == 1) {
    QCOMPARE(rec.last().prompt, prompt);
    QCOMPARE(rec.last().title, title);
    QCOMPARE(rec.last().style, style);
    QCOMPARE(rec.entries().front().beepsBefore, beeps);
  }
  QCOMPARE(w.texts(), fieldsAfter.isEmpty() ? entries : fieldsAfter);
  QCOMPARE(w.lblEntfernung->text(), entfernung.isEmpty() ? QString("alt") : entfernung);
  QCOMPARE(w.lblRichtung->text(), QString("alt °"));
  // Remembered without capitals, exactly as the fields stand.
  QCOMPARE(memoryTexts(w.command.memory()), remembered ? w.texts() : QStringList(6, QString()));
  const QString expectedFocus = focus.isEmpty() ? QString("tbFremdBr") : focus;
  QCOMPARE(QApplication::focusWidget() ? QApplication::focusWidget()->objectName() : QString(),
           expectedFocus);

  // Nothing was remembered after a refusal, so the same command sees the same differences.
  if (!remembered) {
    rec.clear();
    w.command.Compute();
    QCOMPARE(rec.count(), boxes);
  }
}

void tst_Compute::plusRemoteLocator() {
  Window w;
  MsgBoxRecorder rec;
  w.lblEntfernung->setText("alt");
  w.lblRichtung->setText("alt °");

  // Route A: the own side is resolved, then the command stops without a word.
  w.type({"jo62qm", "", "", "+", "", ""});
  w.command.Compute();
  QCOMPARE(w.texts(), QStringList({"JO62QM", "13,375", "52,5208333333333", "+", "", ""}));
  QCOMPARE(w.lblEntfernung->text(), QString("alt"));
  QCOMPARE(memoryTexts(w.command.memory()), QStringList(6, QString()));

  // Route C after a good run: ends likewise, nothing remembered.
  w.tbFremdLoc->setText("jo31nk");
  w.command.Compute();
  QCOMPARE(w.lblEntfernung->text(), QString(" 444,53 km"));
  w.tbFremdLoc->setText("+");
  w.lblEntfernung->setText("alt");
  w.command.Compute();
  QCOMPARE(w.lblEntfernung->text(), QString("alt"));
  QCOMPARE(w.command.memory().LastFremdLoc, QString("JO31NK"));

  // Route B remembers the "+" as any text; route D then replaces it by a real locator.
  w.tbMyLg->setText("13,4");
  w.command.Compute();
  QCOMPARE(w.command.memory().LastFremdLoc, QString("+"));
  QCOMPARE(w.lblEntfernung->text(), QString(" 446,17 km"));
  w.tbFremdLg->setText("7,2");
  w.command.Compute();
  QCOMPARE(w.tbFremdLoc->text(), QString("JO31OK"));
  QCOMPARE(rec.count(), 0);
  QCOMPARE(rec.beeps(), 0);
}

void tst_Compute::coincidingPositions_data() {
  QTest::addColumn<QString>("fremdLg");
  QTest::addColumn<QString>("fremdBr");
  QTest::addColumn<QString>("entfernung");  // empty: coincide
  QTest::addColumn<QString>("richtung");
  QTest::newRow("same text") << "8"
                             << "50"
                             << ""
                             << "";
  QTest::newRow("latitude 0.000001 apart") << "8"
                                           << "50,000001"
                                           << ""
                                           << "";
  QTest::newRow("latitude 0.00000126 apart") << "8"
                                             << "50,00000126"
                                             << ""
                                             << "";
  QTest::newRow("latitude 0.0000013 apart") << "8"
                                            << "50,0000013"
                                            << "   0,13 m"
                                            << "0,0 °";
  QTest::newRow("longitude 0.00000083 apart") << "8,00000083"
                                              << "50"
                                              << ""
                                              << "";
  QTest::newRow("longitude 0.00000084 apart") << "8,00000084"
                                              << "50"
                                              << "   0,28 m"
                                              << "90,0 °";
}

// All four coordinates typed on a fresh start: route B, then SolveDistance reads the remote
// side; both positions are compared before anything is solved.
void tst_Compute::coincidingPositions() {
  QFETCH(QString, fremdLg);
  QFETCH(QString, fremdBr);
  QFETCH(QString, entfernung);
  QFETCH(QString, richtung);
  const bool equal = entfernung.isEmpty();
  Window w;
  MsgBoxRecorder rec;
  w.lblRichtung->setText("alt °");
  w.type({"", "8", "50", "", fremdLg, fremdBr});
  w.command.Compute();
  if (equal) {
    QCOMPARE(w.lblEntfernung->text(), QString(" 0 "));
    QCOMPARE(w.lblRichtung->text(), QString("alt °"));
    QCOMPARE(rec.count(), 1);
    QCOMPARE(rec.last().prompt, QString("Entfernung: < 1 m"));
  } else {
    QCOMPARE(rec.count(), 0);
    QCOMPARE(w.lblEntfernung->text(), entfernung);
    QCOMPARE(w.lblRichtung->text(), richtung);
  }
  // Run again: the fields were remembered either way, so route F finds no difference.
  rec.clear();
  w.command.Compute();
  QCOMPARE(rec.count(), equal ? 1 : 0);
}

void tst_Compute::allCoordinatesTypedFirst() {
  Window w;
  MsgBoxRecorder rec;
  w.type({"", "13,4", "52,52", "", "11,5", "48,2"});
  w.command.Compute();
  QCOMPARE(rec.count(), 0);
  // Neither pair is replaced by a decoded point.
  QCOMPARE(w.texts(), QStringList({"JO62QM", "13,4", "52,52", "JN58SE", "11,5", "48,2"}));
  QCOMPARE(w.lblEntfernung->text(), QString(" 498,87 km"));
  QCOMPARE(w.lblRichtung->text(), QString("196,41 °"));
}

void tst_Compute::typedCoordinatesThroughLocator_data() {
  QTest::addColumn<bool>("loc10st");
  QTest::addColumn<bool>("gradDezimal");
  QTest::addColumn<QStringList>("own");
  QTest::newRow("6 characters") << false << true
                                << QStringList{"JO62QM", "13,375", "52,5208333333333"};
  QTest::newRow("10 characters") << true << true
                                 << QStringList{"JO62QM84AT", "13,4", "52,5199652777778"};
  QTest::newRow("6 characters, degrees")
      << false << false << QStringList{"JO62QM", " 13° 22' 30\"", " 52° 31' 15\""};
}

// Route A with the own locator empty: the typed point gives way to the decoded one.
void tst_Compute::typedCoordinatesThroughLocator() {
  QFETCH(bool, loc10st);
  QFETCH(bool, gradDezimal);
  QFETCH(QStringList, own);
  Window w;
  MsgBoxRecorder rec;
  w.state.Loc10st = loc10st;
  w.state.GradDezimal = gradDezimal;
  const QString lg = gradDezimal ? "13,4" : "13° 24' 0\"";
  const QString br = gradDezimal ? "52,52" : "52° 31' 12\"";
  w.type({"", lg, br, "jo31nk", "", ""});
  w.command.Compute();
  QCOMPARE(rec.count(), 0);
  QCOMPARE(w.texts().mid(0, 3), own);
}

void tst_Compute::gpsLog_data() {
  QTest::addColumn<QString>("gpsStatus");
  QTest::addColumn<bool>("protokollOn");
  QTest::addColumn<QList<int>>("writes");  // log writes after each of the steps below
  QTest::newRow("GPS on, log on") << "GPS an" << true << QList<int>{1, 1, 1, 2, 2, 3, 4};
  QTest::newRow("GPS on, log off") << "GPS an" << false << QList<int>{0, 0, 0, 0, 0, 0, 0};
  QTest::newRow("GPS off, log on") << "GPS aus" << true << QList<int>{0, 0, 0, 0, 0, 0, 0};
}

// The routes that log: A, E, and B when the own locator field was changed by hand.
void tst_Compute::gpsLog() {
  QFETCH(QString, gpsStatus);
  QFETCH(bool, protokollOn);
  QFETCH(QList<int>, writes);
  Window w;
  MsgBoxRecorder rec;
  w.state.GpsStatus = gpsStatus;
  w.state.ProtokollOn = protokollOn;
  const std::function<void()> steps[] = {
      [&] {
        w.type({"jo62qm", "", "", "jo31nk", "", ""});
      },                                         // A
      [&] {},                                    // F
      [&] { w.tbFremdLoc->setText("JN58TD"); },  // C
      [&] { w.tbMyLoc->setText("JO62QL"); },     // E
      [&] { w.tbMyLg->setText("13,4"); },        // B, locator as remembered
      [&] {                                      // B, locator typed as well
        w.tbMyLg->setText("13,3");
        w.tbMyLoc->setText("JO62PM");
      },
      [&] { w.tbFremdBr->clear(); },  // A
  };
  for (int i = 0; i < writes.size(); ++i) {
    steps[i]();
    w.command.Compute();
    QCOMPARE(w.logWrites, writes[i]);
  }
  QCOMPARE(rec.count(), 0);
}

// After a run-time error the fields are remembered without capitals.
void tst_Compute::handlerRemembersAsTyped() {
  Window w;
  MsgBoxRecorder rec;
  w.type({"jo62qm", "", "", "jo31nk", "", ""});
  w.command.Compute();
  w.tbMyLg->setText("13,4");
  w.tbFremdLoc->setText("jo31nk");
  w.Combo1->setEditText("1E999");
  w.lblEntfernung->setText("alt");
  w.command.Compute();
  QCOMPARE(rec.count(), 0);
  QCOMPARE(rec.beeps(), 1);
  QCOMPARE(w.lblEntfernung->text(), QString("alt"));
  QCOMPARE(memoryTexts(w.command.memory()),
           QStringList({"JO62QM", "13,4", "52,5208333333333", "jo31nk", "7,125", "51,4375"}));
}

// Own coordinates go first; the remote change is remembered without being read.
void tst_Compute::bothSidesChanged() {
  Window w;
  MsgBoxRecorder rec;
  w.type({"jo62qm", "", "", "jo31nk", "", ""});
  w.command.Compute();
  w.tbMyLg->setText("13,4");
  w.tbMyBr->setText("52,52");
  w.tbFremdLg->setText("11,5");
  w.tbFremdBr->setText("48,2");
  w.command.Compute();
  QCOMPARE(w.texts(), QStringList({"JO62QM", "13,4", "52,52", "JO31NK", "11,5", "48,2"}));
  QCOMPARE(w.command.memory().FremdLg, 7.125);
  const QString toOldRemote = w.lblEntfernung->text();
  QVERIFY2(toOldRemote != QString(" 444,53 km") && toOldRemote.endsWith(" km"),
           qPrintable(toOldRemote));
  // The next command finds no difference and solves to the old remote numbers again.
  w.lblEntfernung->clear();
  w.command.Compute();
  QCOMPARE(w.lblEntfernung->text(), toOldRemote);
  QCOMPARE(w.tbFremdLoc->text(), QString("JO31NK"));
  QCOMPARE(rec.count(), 0);
}

void tst_Compute::oldLocatorStaysAsTyped() {
  Window w;
  MsgBoxRecorder rec;
  w.type({"jo62qm", "", "", "ek74h", "", ""});
  w.command.Compute();
  QCOMPARE(rec.count(), 0);
  QCOMPARE(w.texts().mid(3), QStringList({"EK74H", "8,63333333333333", "50,1041666666667"}));
  QCOMPARE(w.command.memory().LastFremdLoc, QString("EK74H"));
}

void tst_Compute::zeroCountsAsUnknown_data() {
  QTest::addColumn<bool>("gradDezimal");
  QTest::addColumn<int>("boxes");
  QTest::addColumn<QString>("myLoc");
  QTest::newRow("decimal: empty entries read as 0") << true << 0 << "JJ00AA";
  QTest::newRow("degrees: empty entries refused") << false << 1 << "JJ00AA00AA";
}

// A locator that decodes to exactly 0 leaves the own numbers "not known", so that the
// solve reads the entries as they stood when the command began.
void tst_Compute::zeroCountsAsUnknown() {
  QFETCH(bool, gradDezimal);
  QFETCH(int, boxes);
  QFETCH(QString, myLoc);
  Window w;
  MsgBoxRecorder rec;
  w.state.GradDezimal = gradDezimal;
  w.type({"jj00aa00aa", "", "", "jo31nk", "", ""});
  w.command.Compute();
  QCOMPARE(rec.count(), boxes);
  QCOMPARE(w.tbMyLoc->text(), myLoc);
  if (boxes) {
    QCOMPARE(rec.last().prompt, QString(" ( wie x°x'x\" ) "));
    QCOMPARE(rec.beeps(), 0);
    QCOMPARE(w.lblEntfernung->text(), QString());
  } else {
    QVERIFY(w.lblEntfernung->text().endsWith(" km"));
    QCOMPARE(w.command.memory().LastMyLoc, QString("JJ00AA"));
  }
}

void tst_Compute::strangeInput_data() {
  QTest::addColumn<int>("field");
  QTest::addColumn<QString>("text");
  QTest::addColumn<bool>("gradDezimal");

  const QString nul = QString(QChar(u'\0'));
  const QStringList texts = {
      QString(10000, u'A'),
      QString(10000, u'9'),
      QString(5000, u'9') + "°" + QString(5000, u'9') + "'9\"",
      "13°" + QString(10000, u'\'') + "\"",
      QString(10000, u'°'),
      nul,
      "jo" + nul + "2qm",
      nul + nul + nul + nul + nul,
      "ÄÖÜßäöü",
      "ß" + QString("jo6"),
      QString::fromUtf16(u"\U0001F4E1\U0001F4E1\U0001F4E1"),
      QString(QChar(0xD800)) + "o62qm",
      "1E999",
      "-1E999",
      "1E-999",
      "°'\"",
      "-°'\"",
      "'°\"",
      "+",
      "-",
      "    ",
      "\t\n",
      "AA00AA00AA",
      "RR99XX99XX",
  };
  const char* names[] = {"tbMyLoc", "tbMyLg", "tbMyBr", "tbFremdLoc", "tbFremdLg", "tbFremdBr"};
  for (int field = 0; field < 6; ++field) {
    for (int t = 0; t < texts.size(); ++t) {
      for (bool gradDezimal : {true, false}) {
        QTest::addRow("%s text %d %s", names[field], t, gradDezimal ? "dec" : "dms")
            << field << texts[t] << gradDezimal;
      }
    }
  }
}

// Whatever stands in a field, the command returns promptly with at most one box per run.
void tst_Compute::strangeInput() {
  QFETCH(int, field);
  QFETCH(QString, text);
  QFETCH(bool, gradDezimal);
  Window w;
  MsgBoxRecorder rec;
  w.state.GradDezimal = gradDezimal;
  w.type({"jo62qm", "", "", "jo31nk", "", ""});
  w.command.Compute();  // fills all four coordinates in the current form
  QCOMPARE(rec.count(), 0);

  QElapsedTimer clock;
  clock.start();
  for (int run = 0; run < 3; ++run) {
    rec.clear();
    w.fields()[field]->setText(text);
    w.command.Compute();
    QVERIFY2(rec.count() <= 1, qPrintable(QString::number(rec.count())));
    QVERIFY(rec.beeps() <= 1);
  }
  QVERIFY2(clock.elapsed() < 2000, qPrintable(QString::number(clock.elapsed())));
  // A solved result is always a proper caption.
  const QString e = w.lblEntfernung->text();
  QVERIFY2(e.endsWith(" km") || e.endsWith(" m") || e == " 0 ", qPrintable(e));
}

QTEST_MAIN(tst_Compute)
#include "tst_Compute.moc"
