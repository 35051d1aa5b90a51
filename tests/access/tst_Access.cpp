#include "access/LiveRegion.h"
#include "app/frmMain.h"
#include "platform/AccessibleTexts.h"
#include "platform/Contrast.h"
#include "platform/MsgBox.h"
#include "support/ProgramFixture.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFileDialog>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QSignalSpy>
#include <QStyle>
#include <QStyleFactory>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <map>
#include <optional>

using namespace marvento;

namespace {

// The three desktops the windows must stay readable on.
QPalette lightPalette() {
  std::unique_ptr<QStyle> fusion(QStyleFactory::create(QStringLiteral("Fusion")));
  return fusion->standardPalette();
}

// The dark Fusion palette as it is widely passed around, tool tips in white on white
// included: a theme mistake that the program must survive.
QPalette darkPalette() {
  QPalette p(Qt::white, QColor(53, 53, 53), QColor(90, 90, 90), QColor(25, 25, 25),
             QColor(35, 35, 35), Qt::white, Qt::red, QColor(42, 42, 42), QColor(53, 53, 53));
  p.setColor(QPalette::AlternateBase, QColor(66, 66, 66));
  p.setColor(QPalette::ToolTipBase, Qt::white);
  p.setColor(QPalette::ToolTipText, Qt::white);
  p.setColor(QPalette::Highlight, QColor(42, 130, 218));
  p.setColor(QPalette::HighlightedText, Qt::black);
  p.setColor(QPalette::Link, QColor(42, 130, 218));
  return p;
}

// White and yellow on black, as high-contrast themes have it.
QPalette highContrastPalette() {
  QPalette p(Qt::white, Qt::black, Qt::white, Qt::white, Qt::white, Qt::white, Qt::white, Qt::black,
             Qt::black);
  p.setColor(QPalette::ToolTipBase, Qt::black);
  p.setColor(QPalette::ToolTipText, Qt::yellow);
  p.setColor(QPalette::Highlight, Qt::yellow);
  p.setColor(QPalette::HighlightedText, Qt::black);
  return p;
}

// The colour a widget's text stands on: its own background where it paints one, else that
// of the nearest parent that does, else the window's.
QColor backgroundOf(const QWidget* widget) {
  for (const QWidget* w = widget; w; w = w->parentWidget()) {
    if (w->autoFillBackground() || w->isWindow()) return w->palette().color(w->backgroundRole());
  }
  return widget->palette().color(QPalette::Window);
}

struct TextColours {
  QColor text;
  QColor background;
};

// What Qt's styles paint a control's text with; nothing for controls without text.
std::optional<TextColours> textColours(const QWidget* widget) {
  const QPalette& p = widget->palette();
  auto* combo = qobject_cast<const QComboBox*>(widget);
  if (qobject_cast<const QLineEdit*>(widget) || (combo && combo->isEditable()))
    return TextColours{p.color(QPalette::Text), p.color(QPalette::Base)};
  if (combo || widget->inherits("QPushButton"))
    return TextColours{p.color(QPalette::ButtonText), p.color(QPalette::Button)};
  if (qobject_cast<const QAbstractButton*>(widget) || qobject_cast<const QGroupBox*>(widget)) {
    return TextColours{p.color(QPalette::WindowText), backgroundOf(widget)};
  }
  if (auto* label = qobject_cast<const QLabel*>(widget); label && !label->text().isEmpty()) {
    return TextColours{p.color(label->foregroundRole()), backgroundOf(label)};
  }
  return std::nullopt;
}

QString describe(const QWidget* w) {
  return QStringLiteral("%1 (%2)").arg(w->objectName(),
                                       QString::fromLatin1(w->metaObject()->className()));
}

bool shown(const QWidget* w, const QWidget* window) {
  return w->isVisibleTo(const_cast<QWidget*>(window)) && w->width() > 1 && w->height() > 1;
}

// Every control that takes the focus, and every button, has a role and a German name.
QStringList unnamedControls(QWidget* window) {
  QStringList problems;
  for (QWidget* w : window->findChildren<QWidget*>()) {
    if (!shown(w, window)) continue;
    const bool focusable = (w->focusPolicy() & Qt::TabFocus) == Qt::TabFocus;
    if (!focusable && !qobject_cast<QAbstractButton*>(w)) continue;
    // The list of a combo box, the view of a dialog's button box and the text of a spin box
    // are parts of their control, reached through it (Qt gives the spin box's own text no
    // interface of its own: screen readers read the spin box).
    if (w->inherits("QAbstractItemView") || w->inherits("QScrollBar")) continue;
    if (w->parentWidget() && w->parentWidget()->inherits("QAbstractSpinBox")) continue;
    QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(w);
    if (!iface) {
      problems << describe(w) + QStringLiteral(": no accessible interface");
      continue;
    }
    const QString name = iface->text(QAccessible::Name).trimmed();
    if (iface->role() == QAccessible::NoRole || iface->role() == QAccessible::Client) {
      problems << describe(w) + QStringLiteral(": no role");
    }
    if (name.isEmpty()) {
      problems << describe(w) + QStringLiteral(": no name");
    } else if (name == w->objectName()) {
      problems << describe(w) + QStringLiteral(": named by its object name");
    }
  }
  return problems;
}

// Access keys by scope: the window (its labels, buttons, frames and menu bar) and each menu.
std::map<QString, QStringList> mnemonics(QWidget* window) {
  std::map<QString, QStringList> scopes;
  auto add = [&](const QString& scope, const QString& text) {
    const QKeySequence key = QKeySequence::mnemonic(text);
    if (!key.isEmpty()) scopes[scope] << key.toString() + u' ' + QString(text).remove(u'&');
  };
  const QString windowScope = window->objectName();
  for (QWidget* w : window->findChildren<QWidget*>()) {
    if (!w->isVisibleTo(window) || w->window() != window) continue;
    if (auto* label = qobject_cast<QLabel*>(w); label && label->buddy())
      add(windowScope, label->text());
    if (auto* button = qobject_cast<QAbstractButton*>(w)) add(windowScope, button->text());
    if (auto* box = qobject_cast<QGroupBox*>(w)) add(windowScope, box->title());
  }
  if (auto* main = qobject_cast<QMainWindow*>(window)) {
    for (QAction* top : main->menuBar()->actions()) {
      add(windowScope, top->text());
      if (QMenu* menu = top->menu()) {
        for (QAction* item : menu->actions()) {
          if (!item->isSeparator()) add(menu->objectName(), item->text());
        }
      }
    }
  }
  return scopes;
}

QStringList clashes(const std::map<QString, QStringList>& scopes) {
  QStringList problems;
  for (const auto& [scope, keys] : scopes) {
    std::map<QString, QStringList> byKey;
    for (const QString& entry : keys) byKey[entry.section(u' ', 0, 0)] << entry.section(u' ', 1);
    for (const auto& [key, owners] : byKey) {
      if (owners.size() > 1) {
        problems
            << QStringLiteral("%1: %2 for %3").arg(scope, key, owners.join(QStringLiteral(", ")));
      }
    }
  }
  return problems;
}

QStringList poorContrast(QWidget* window) {
  QStringList problems;
  for (QWidget* w : window->findChildren<QWidget*>()) {
    // A disabled control may fade: that is how it says it cannot be used now.
    if (!shown(w, window) || !w->isEnabled() || w->window() != window) continue;
    const std::optional<TextColours> c = textColours(w);
    if (!c) continue;
    const double ratio = ContrastRatio(c->text.rgb(), c->background.rgb());
    if (ratio < kTextContrast) {
      problems << QStringLiteral("%1: %2 on %3 is %4:1")
                      .arg(describe(w), c->text.name(), c->background.name())
                      .arg(ratio, 0, 'f', 2);
    }
  }
  return problems;
}

// Opens every window that the main window's menus reach, one after the other, hands each to
// `visit` while it shows and closes it again; the main window comes first. A window that a
// later change adds to a menu is met here without a line of this test changing.
void visitReachableWindows(frmMain* main, const std::function<void(QWidget*)>& visit) {
  visit(main);
  // Commands that leave the program, start another program or only toggle a mark.
  // Quitting ends the test, the manual is another program, and the spoken locator opens no
  // window (its speech is tested against the real service in tst_RoverSpeech).
  const QStringList skipped = {QStringLiteral("mnuBeenden"), QStringLiteral("mnuHilfe"),
                               QStringLiteral("mnuAnsage")};
  for (QAction* top : main->menuBar()->actions()) {
    QMenu* menu = top->menu();
    if (!menu) continue;
    for (QAction* item : menu->actions()) {
      if (item->isSeparator() || item->isCheckable() || skipped.contains(item->objectName()))
        continue;
      QList<QPointer<QWidget>> before;
      for (QWidget* w : QApplication::topLevelWidgets()) {
        if (w->isVisible()) before << w;
      }
      QTimer closer;
      closer.setInterval(20);
      QObject::connect(&closer, &QTimer::timeout, [&] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal) return;
        closer.stop();
        // Qt's own file dialog speaks Qt's words; it is not the program's to name.
        if (!qobject_cast<QFileDialog*>(modal)) visit(modal);
        if (auto* dialog = qobject_cast<QDialog*>(modal)) dialog->reject();
      });
      closer.start();
      item->trigger();
      closer.stop();
      for (QWidget* w : QApplication::topLevelWidgets()) {
        if (w->isVisible() && !before.contains(w) && !w->inherits("QMenu")) {
          visit(w);
          w->close();
        }
      }
    }
  }
}

}  // namespace

class tst_Access : public test::ProgramTest {
  Q_OBJECT

  MsgBoxHandler m_previousBox;
  BeepHandler m_previousBeep;

  frmMain* show() {
    frmMain* main = start();
    main->show();
    QCoreApplication::processEvents();
    return main;
  }

 private slots:
  void initTestCase() {
    QApplication::setStyle(QStringLiteral("Fusion"));
    // Message boxes come up for real, so that they are walked as well.
    m_previousBox = SetMsgBoxHandler({});
    m_previousBeep = SetBeepHandler([] {});
  }
  void cleanupTestCase() {
    SetMsgBoxHandler(std::move(m_previousBox));
    SetBeepHandler(std::move(m_previousBeep));
  }
  void init() {
    QVERIFY(begin());
    // A table of names that has drifted from its window.
    QTest::failOnWarning(QRegularExpression(QStringLiteral("for its accessible name")));
  }
  void cleanup() {
    end();
    QApplication::setPalette(lightPalette());
  }

  void everyControlHasAGermanNameAndNoAccessKeyClashes() {
    frmMain* main = show();
    QStringList visited;
    QStringList problems;
    visitReachableWindows(main, [&](QWidget* window) {
      const QString title = window->windowTitle().trimmed();
      visited << title;
      for (const QString& p : unnamedControls(window)) problems << title + QStringLiteral(": ") + p;
      for (const QString& p : clashes(mnemonics(window)))
        problems << title + QStringLiteral(": ") + p;
    });
    // The window, the settings dialog, the About box and at least one message box.
    for (const char* title :
         {"Marvento", "Grundeinstellungen Marvento", "Info Marvento", "GPS-Höhe"})
      QVERIFY2(visited.contains(QString::fromUtf8(title)), qPrintable(visited.join(u'|')));
    QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
  }

  // A drifted table of names is reported, and the checks themselves find what they are meant
  // to find.
  void checksRefuseAClashAndANamelessField() {
    QDialog dialog;
    dialog.setObjectName(QStringLiteral("probe"));
    auto* first = new QLabel(QStringLiteral("&Ein"), &dialog);
    auto* second = new QLabel(QStringLiteral("all&e"), &dialog);
    auto* field = new QLineEdit(&dialog);
    field->setObjectName(QStringLiteral("tbProbe"));
    QTest::ignoreMessage(QtWarningMsg, "No control tbGone in probe for its accessible name");
    SetAccessibleTexts(&dialog,
                       {{"tbProbe", QStringLiteral("Probe"), QStringLiteral("Beschreibung")},
                        {"tbGone", QStringLiteral("Fort"), QString()}});
    QCOMPARE(field->accessibleName(), QStringLiteral("Probe"));
    QCOMPARE(field->accessibleDescription(), QStringLiteral("Beschreibung"));
    field->setGeometry(0, 0, 80, 20);
    first->setBuddy(field);
    second->setBuddy(field);
    field->setAccessibleName(QStringLiteral("tbProbe"));
    QCOMPARE(clashes(mnemonics(&dialog)).size(), 1);
    QCOMPARE(unnamedControls(&dialog).size(), 1);
    auto* poor = new QLabel(QStringLiteral("grau"), &dialog);
    poor->setGeometry(0, 30, 80, 20);
    QPalette p = poor->palette();
    p.setColor(QPalette::WindowText, QColor(0xbb, 0xbb, 0xbb));
    poor->setPalette(p);
    QCOMPARE(poorContrast(&dialog).size(), 1);
  }

  void textStaysReadable_data() {
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("Fusion hell") << lightPalette();
    QTest::newRow("Fusion dunkel") << darkPalette();
    QTest::newRow("hoher Kontrast") << highContrastPalette();
  }
  void textStaysReadable() {
    QFETCH(QPalette, palette);
    QApplication::setPalette(palette);
    frmMain* main = show();
    // Results and info lines hold text, as after a computation with a message.
    main->tbMyLoc->setText(QStringLiteral("JO62QM"));
    main->tbFremdLoc->setText(QStringLiteral("JN58TD"));
    main->Compute();
    main->lbInfo->setText(QStringLiteral("1. Versuch/Keine Daten"));
    main->lbKurs->setText(QStringLiteral("12 km/h, Kurs 90°"));
    QStringList problems;
    visitReachableWindows(main, [&](QWidget* window) {
      const QString title = window->windowTitle().trimmed();
      for (const QString& p : poorContrast(window)) problems << title + QStringLiteral(": ") + p;
    });
    QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
  }

  // What a screen reader hears, checked where the program hands it over: the result after
  // a computation (not repeated by an unchanged GPS fix), a new info line, the insert mode,
  // the status bar on F4.
  void changesAreAnnounced() {
    frmMain* main = show();
    auto* live = main->findChild<LiveRegion*>(QStringLiteral("lbAnsage"));
    QVERIFY(live);
    QSignalSpy said(live, &LiveRegion::said);
    QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(live);
    QVERIFY(iface);
    QCOMPARE(iface->role(), QAccessible::Notification);

    QVERIFY(QTest::qWaitForWindowActive(main));
    main->tbMyLoc->setText(QStringLiteral("JO62QM"));
    main->tbFremdLoc->setText(QStringLiteral("JN58TD"));
    main->tbFremdLoc->setFocus();
    QTest::keyClick(main->tbFremdLoc, Qt::Key_Return);
    QTRY_COMPARE(said.size(), 1);
    const QString result = said.takeFirst().at(0).toString();
    QVERIFY2(result.startsWith(QStringLiteral("Entfernung ")) &&
                 result.contains(QStringLiteral(" Kilometer, Richtung ")) &&
                 result.endsWith(QStringLiteral(" Grad")),
             qPrintable(result));
    QCOMPARE(iface->text(QAccessible::Name), result);
    QVERIFY(main->lblEntfernung->accessibleName().startsWith(QStringLiteral("Entfernung ")));
    QVERIFY(main->lblEntfernung->accessibleName().contains(main->lblEntfernung->text().trimmed()));

    // A GPS fix that leaves the result as it was is not said again; a user's computation is.
    main->Compute();
    QTRY_COMPARE(said.size(), 1);
    main->Compute();
    emit main->fixTaken(GpsFix{});
    QTest::qWait(50);
    QCOMPARE(said.size(), 1);
    main->tbFremdLoc->setText(QStringLiteral("JN58TE"));
    main->Compute();
    emit main->fixTaken(GpsFix{});
    QTRY_COMPARE(said.size(), 2);
    said.clear();

    // New clears the results: nothing to say.
    main->mnuNeu->trigger();
    QTest::qWait(50);
    QCOMPARE(said.size(), 0);

    main->lbInfo->setText(QStringLiteral("3. Versuch/Keine Daten vom GPS-Empfänger"));
    QTRY_COMPARE(said.size(), 1);
    QCOMPARE(said.takeFirst().at(0).toString(), main->lbInfo->text());
    // The same line painted again is not said again.
    main->lbInfo->repaint();
    QTest::qWait(50);
    QCOMPARE(said.size(), 0);

    main->tbFremdLoc->setFocus();
    QTest::keyClick(main->tbFremdLoc, Qt::Key_Insert);
    QTRY_COMPARE(said.size(), 1);
    QCOMPARE(said.takeFirst().at(0).toString(), QStringLiteral("Überschreibmodus"));
    QCOMPARE(main->Panel3->accessibleName(), QStringLiteral("Überschreibmodus"));
    QTest::keyClick(main->tbFremdLoc, Qt::Key_Insert);
    QTRY_COMPARE(said.size(), 1);
    said.clear();

    QTest::keyClick(main, Qt::Key_F4);
    QTRY_COMPARE(said.size(), 1);
    const QString status = said.takeFirst().at(0).toString();
    for (const QString& part : {main->Panel1->text(), QStringLiteral("Einfügemodus"),
                                QStringLiteral("System-Zeit "), main->lbInfo->text()}) {
      QVERIFY2(status.contains(part), qPrintable(status + QStringLiteral(" lacks ") + part));
    }
  }

  // Tab walks the fields as the eye reads them and reaches both results; Shift+Tab goes back.
  void tabOrderReachesEveryFieldAndTheResults() {
    frmMain* main = show();
    QVERIFY(QTest::qWaitForWindowActive(main));
    main->tbMyLoc->setFocus();
    const QList<QWidget*> expected = {main->tbFremdLoc,    main->tbMyLg,     main->tbMyBr,
                                      main->tbFremdLg,     main->tbFremdBr,  main->Combo1,
                                      main->lblEntfernung, main->lblRichtung};
    for (QWidget* next : expected) {
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
      QWidget* focus = QApplication::focusWidget();
      // The radius box hands the focus to its entry field.
      if (focus && focus->parentWidget() == main->Combo1) focus = main->Combo1;
      QCOMPARE(focus ? focus->objectName() : QString(), next->objectName());
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("lblEntfernung"));
  }
};

QTEST_MAIN(tst_Access)
#include "tst_Access.moc"
