#include "app/frmMain.h"

#include "access/Announcer.h"
#include "app/FieldFit.h"
#include "app/Icons.h"
#include "app/InstanceGuard.h"
#include "app/MainAccess.h"
#include "app/SettingsStore.h"
#include "app/StatusPanels.h"
#include "contest/AdifCommand.h"
#include "contest/ContestFigures.h"
#include "contest/frmContestLog.h"
#include "distance/ComputeCommand.h"
#include "distance/Coordinates.h"
#include "distance/GreatCircle.h"
#include "distance/ReverseBearing.h"
#include "gps/EntryLock.h"
#include "gps/GpsExchange.h"
#include "gps/GpsLog.h"
#include "gps/GpsPoll.h"
#include "height/HeightEvaluate.h"
#include "height/HeightReport.h"
#include "height/HeightTable.h"
#include "help/ShowHelp.h"
#include "help/frmAbout.h"
#include "map/MapLink.h"
#include "options/Preferences.h"
#include "options/frmOptions.h"
#include "platform/Clock.h"
#include "platform/CommControl.h"
#include "platform/Contrast.h"
#include "platform/Format.h"
#include "platform/MsgBox.h"
#include "platform/Settings.h"
#include "platform/Timer.h"
#include "platform/Twips.h"
#include "rover/RoverLink.h"
#include "station/StationAddress.h"
#include "station/StationLinks.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDate>
#include <QDialog>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QRegularExpressionValidator>
#include <QStatusBar>
#include <QTime>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace marvento {

namespace {

// Positions in twips count from the top of the client area with the tool bar in it; the
// fields here sit below the tool bar, so they move up by its height.
constexpr double kToolBarTwips = 540;
constexpr double kColumns[] = {240, 2460, 4380};
constexpr double kColumnWidth[] = {1935, 1800, 1800};
constexpr double kClientWidth = 6420;
constexpr double kFieldHeight = 345;
constexpr double kLabelHeight = 255;

QColor ReadableOn(const QColor& background, const QColor& preferred) {
  return QColor::fromRgb(ReadableTextOn(background.rgb(), preferred.rgb()));
}

}  // namespace

struct frmMain::Subsystems {
  std::unique_ptr<ComputeCommand> compute;
  std::unique_ptr<HeightTable> heights;
  std::unique_ptr<GpsPoll> poll;
  std::unique_ptr<GpsLog> log;
  EntryControls entry;
  std::unique_ptr<StationLinks> links;
  RoverLink* rover = nullptr;
  MapLink* map = nullptr;
};

std::function<void()>& frmMain::exitProcess() {
  static std::function<void()> exit = [] { std::_Exit(0); };
  return exit;
}

frmMain::frmMain(Module1& state, QWidget* parent)
    : QMainWindow(parent), m_state(state), m_sub(std::make_unique<Subsystems>()) {
  setObjectName(QStringLiteral("frmMain"));
  setWindowTitle(QStringLiteral("Marvento"));
  setWindowIcon(AppIcon());
  setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                 Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint |
                 Qt::WindowCloseButtonHint);

  Timer1 = new QTimer(this);
  Timer1->setObjectName(QStringLiteral("Timer1"));
  Timer1->setInterval(65535);
  connect(Timer1, &QTimer::timeout, this, &frmMain::Timer1_Timer);

  MSComm1 = new CommControl(this);
  MSComm1->setObjectName(QStringLiteral("MSComm1"));

  buildMenus();
  buildToolBar();
  buildControls();
  buildStatusBar();
  fitWidth();
  setFixedSize(sizeHint());
  auto* figures = new ContestFigures(lblPunkte, lblWgs84, this);
  connect(this, &frmMain::computed, figures, &ContestFigures::show);

  const ComputeFields fields{tbMyLoc,   tbFremdLoc,    tbMyLg,      tbMyBr, tbFremdLg,
                             tbFremdBr, lblEntfernung, lblRichtung, Combo1};
  connect(tbMyLoc, &QLineEdit::textChanged, this, &frmMain::tbMyLoc_Change);

  m_sub->compute = std::make_unique<ComputeCommand>(
      fields,
      [this] {
        return ComputePreferences{m_state.GradDezimal, m_state.Loc10st,
                                  GpsOn(m_state) && m_state.ProtokollOn};
      },
      [this] { WriteGpsLog(); });

  const GpsPollView pollView{lbInfo,    lbKurs,    tbMyLoc, tbMyLg, tbMyBr, tbFremdLoc,
                             tbFremdLg, tbFremdBr, Panel2,  Timer1, MSComm1};
  GpsPollHooks hooks;
  hooks.Settings = [this] {
    return GpsPollSettings{m_state.ComPort, m_state.GpsdAddress, m_state.BusyPort,
                           GpsOn(m_state),  m_state.GradDezimal, m_state.GpsZeit};
  };
  hooks.ReceptionOff = [this] {
    SetGpsOn(m_state, false);
    Panel1->setText(statusText());
    emit receptionOff();
  };
  hooks.Compute = [this] { fixComputed(); };
  hooks.FixTaken = [this](const GpsFix& fix) { emit fixTaken(fix); };
  hooks.HeightSample = [this](const QString& alt, const QString& unit, const QString& sats) {
    HeightSample(alt, unit, sats);
  };
  hooks.UnlockEntry = [this] { UnlockEntry(); };
  m_sub->poll = std::make_unique<GpsPoll>(pollView, std::move(hooks), SystemClock());
  m_sub->log = std::make_unique<GpsLog>([this] { return GpsOn(m_state); },
                                        GpsLogView{Panel2, tbMyLoc, lbInfo, Timer1}, SystemClock());
  m_sub->links = std::make_unique<StationLinks>();
  connect(m_sub->links.get(), &StationLinks::rotorSwitched, this, [this](bool on) {
    Panel6->setText(QStringLiteral("Rotor ?"));
    Panel6->setVisible(on);
    refit();
  });
  connect(m_sub->links.get(), &StationLinks::rotorAzimuth, this, &frmMain::showRotor);
  connect(m_sub->links.get(), &StationLinks::notice, lbInfo, &QLabel::setText);
  RoverHooks roverHooks;
  roverHooks.receptionOn = [this] { return GpsOn(m_state); };
  roverHooks.pollIntervalMs = [this] { return Timer1->interval(); };
  roverHooks.writeLog = [this] {
    if (m_state.ProtokollOn) WriteGpsLog();
  };
  roverHooks.tellLocator = [this](const QString& locator) { m_sub->links->ownLocator(locator); };
  m_sub->rover = new RoverLink(
      {this, lbFeldrand, lbInfo, Label4, tbMyLoc, lblEntfernung, lblRichtung, sbStatusBar},
      std::move(roverHooks), this);
  connect(this, &frmMain::fixTaken, m_sub->rover, &RoverLink::takeFix);
  connect(this, &frmMain::receptionOff, m_sub->rover, &RoverLink::receptionOff);
  m_sub->map = new MapLink(this);
  connect(this, &frmMain::computed, m_sub->map, &MapLink::computed);
  connect(this, &frmMain::fixTaken, m_sub->map, &MapLink::fixTaken);
  connect(m_sub->links.get(), &StationLinks::rotorAzimuth, m_sub->map, &MapLink::rotorAzimuth);
  connect(m_sub->links.get(), &StationLinks::rotorTurned, m_sub->map, &MapLink::rotorTurned);
  connect(m_sub->map, &MapLink::remoteChosen, this, &frmMain::takeRemote);
  connect(m_sub->rover, &RoverLink::boundaryAhead, m_sub->map, &MapLink::boundaryAhead);

  // A poll fences off everything but tbFremdLoc; the menu entries go with their menus so
  // that no shortcut starts a command inside a poll.
  m_sub->entry.widgets = {tbToolBar, Combo1, tbMyLoc, tbMyLg, tbMyBr, tbFremdLg, tbFremdBr};
  m_sub->entry.actions = {mnuAktion->menuAction(), mnuHelp->menuAction()};
  for (QMenu* menu : {mnuAktion, mnuHelp}) {
    for (QAction* item : menu->actions()) {
      if (!item->isSeparator()) m_sub->entry.actions << item;
    }
  }
  qApp->installEventFilter(this);

  // What a screen reader says of the window and what it is told when something changes.
  SetMainAccessibleTexts(this);
  auto* announcer =
      new Announcer({lblEntfernung, lblRichtung, lbInfo, lbKurs, Panel3, sbStatusBar}, this);
  connect(this, &frmMain::computed, announcer, &Announcer::computed);
  connect(this, &frmMain::fixTaken, announcer, &Announcer::fixTaken);
  mnuHelp->addAction(announcer->readStatusAction());
}

frmMain::~frmMain() {
  qApp->removeEventFilter(this);
}

void frmMain::buildControls() {
  auto* client = new QWidget(this);
  client->setObjectName(QStringLiteral("client"));
  setCentralWidget(client);

  // Everything is placed once the fields know how wide the font makes them.
  struct Placed {
    QWidget* widget;
    int column;
    double top;
    double height;
  };
  std::vector<Placed> placed;

  auto label = [&](const char* name, const QString& text, int column, double top) {
    auto* l = new QLabel(text, client);
    l->setObjectName(QString::fromLatin1(name));
    placed.push_back({l, column, top, kLabelHeight});
    return l;
  };
  auto field = [&](const char* name, const QString& tip, int column, double top, bool centred) {
    auto* f = new QLineEdit(client);
    f->setObjectName(QString::fromLatin1(name));
    f->setToolTip(tip);
    placed.push_back({f, column, top, kFieldHeight});
    if (centred) f->setAlignment(Qt::AlignCenter);
    ShowTextFromStart(f);
    return f;
  };
  auto result = [&](const char* name, const QString& text, const QString& tip, int column) {
    auto* r = new QLabel(text, client);
    r->setObjectName(QString::fromLatin1(name));
    r->setToolTip(tip);
    placed.push_back({r, column, 3120, kFieldHeight});
    r->setAlignment(Qt::AlignCenter);
    r->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    r->setAutoFillBackground(true);
    // In the colours of an entry field, which every desktop theme keeps readable, also
    // when the theme changes while the program runs.
    r->setBackgroundRole(QPalette::Base);
    r->setForegroundRole(QPalette::Text);
    // Reached with Tab, so that a screen reader user hears the result where it stands.
    r->setFocusPolicy(Qt::TabFocus);
    return r;
  };
  auto rule = [&](const char* name, double top, QPalette::ColorRole shade) {
    auto* line = new QFrame(client);
    line->setObjectName(QString::fromLatin1(name));
    line->setGeometry(0, TwipsToPx(top - kToolBarTwips), TwipsToPx(kClientWidth), 1);
    line->setAutoFillBackground(true);
    line->setBackgroundRole(shade);
    return line;
  };

  // The groove takes the theme's shades, so that it stays a groove on a dark desktop.
  Line1 = rule("Line1", kToolBarTwips, QPalette::Mid);
  Line2 = rule("Line2", kToolBarTwips + 15, QPalette::Light);
  Line3 = rule("Line3", 2700, QPalette::Mid);

  // The locator fields take at most 10 typed characters; a text that the program puts there
  // (a home locator edited in the settings file) stays whole, for the locator check to refuse.
  const QRegularExpression tenTyped(QStringLiteral("^.{0,10}$"),
                                    QRegularExpression::DotMatchesEverythingOption);
  Label4 = label("Label4", QStringLiteral("&Mein Locator"), 0, 660);
  tbMyLoc = field("tbMyLoc", QStringLiteral(" Eigener Locator "), 0, 960, false);
  tbMyLoc->setValidator(new QRegularExpressionValidator(tenTyped, tbMyLoc));
  Label1 = label("Label1", QStringLiteral("&Fremdlocator"), 0, 1620);
  tbFremdLoc = field("tbFremdLoc", QStringLiteral(" Locator der Gegenstation "), 0, 1920, false);
  tbFremdLoc->setValidator(new QRegularExpressionValidator(tenTyped, tbFremdLoc));
  Label5 = label("Label5", QStringLiteral("östl. &Länge [°]"), 1, 660);
  tbMyLg = field("tbMyLg", QStringLiteral(" Eigene östl. Länge "), 1, 960, true);
  Label6 = label("Label6", QStringLiteral("nördl. &Breite [°]"), 2, 660);
  tbMyBr = field("tbMyBr", QStringLiteral(" Eigene nördl. Breite "), 2, 960, true);
  tbFremdLg = field("tbFremdLg", QStringLiteral(" östl. Länge der Gegenstation "), 1, 1920, true);
  tbFremdBr = field("tbFremdBr", QStringLiteral(" nördl. Breite der Gegenstation "), 2, 1920, true);
  Label7 = label("Label7", QStringLiteral("&Erdradius (km)"), 0, 2820);

  Combo1 = new QComboBox(client);
  Combo1->setObjectName(QStringLiteral("Combo1"));
  Combo1->setEditable(true);
  Combo1->setInsertPolicy(QComboBox::NoInsert);
  Combo1->setToolTip(QStringLiteral(" Erdradius als Berechnungsgrundlage "));
  placed.push_back({Combo1, 0, 3120, kFieldHeight});
  Combo1->setEditText(QStringLiteral("Combo1"));

  Label2 = label("Label2", QStringLiteral("Entfernung"), 1, 2820);
  lblEntfernung = result("lblEntfernung", QStringLiteral("Entfernung"),
                         QStringLiteral(" Entfernung zur Gegenstation "), 1);
  Label3 = label("Label3", QStringLiteral("Richtung"), 2, 2820);
  lblRichtung = result("lblRichtung", QStringLiteral("Richtung"),
                       QStringLiteral(" Richtung zur Gegenstation "), 2);

  // Each column is as wide as its widest text needs, at least as wide as on a small font.
  const int locatorWidth = FieldWidthFor(*tbMyLoc, WidestLocatorText(tbMyLoc->fontMetrics()));
  const int coordinateWidth = FieldWidthFor(*tbMyLg, WidestCoordinateText(tbMyLg->fontMetrics()));
  int width[3] = {std::max(TwipsToPx(kColumnWidth[0]), locatorWidth),
                  std::max(TwipsToPx(kColumnWidth[1]), coordinateWidth),
                  std::max(TwipsToPx(kColumnWidth[2]), coordinateWidth)};
  int left[3] = {TwipsToPx(kColumns[0]), 0, 0};
  for (int c = 1; c < 3; ++c) {
    const double gap = kColumns[c] - kColumns[c - 1] - kColumnWidth[c - 1];
    left[c] = left[c - 1] + width[c - 1] + TwipsToPx(gap);
  }
  for (const Placed& p : placed) {
    p.widget->setGeometry(left[p.column], TwipsToPx(p.top - kToolBarTwips), width[p.column],
                          TwipsToPx(p.height));
  }
  const int clientWidth =
      left[2] + width[2] + TwipsToPx(kClientWidth - kColumns[2] - kColumnWidth[2]);

  auto infoLine = [&](const char* name, const QString& text, int top, int lines) {
    auto* l = new QLabel(text, client);
    l->setObjectName(QString::fromLatin1(name));
    l->setAlignment(Qt::AlignCenter);
    QFont font = l->font();
    font.setBold(true);
    l->setFont(font);
    const int height =
        std::max(TwipsToPx(kLabelHeight) * lines, l->fontMetrics().lineSpacing() * lines + 2);
    l->setGeometry(0, top, clientWidth, height);
    // In the colours of a tool tip; a theme whose tool tip text does not stand out from its
    // background gets black or white instead.
    l->setAutoFillBackground(true);
    QPalette palette = l->palette();
    palette.setColor(QPalette::Window, palette.color(QPalette::ToolTipBase));
    palette.setColor(QPalette::WindowText, ReadableOn(palette.color(QPalette::ToolTipBase),
                                                      palette.color(QPalette::ToolTipText)));
    l->setPalette(palette);
    return l;
  };
  // GPS messages carry a try count in front and the reason behind: two lines keep both.
  lbInfo = infoLine("lbInfo", QStringLiteral("Info:"), TwipsToPx(3480 - kToolBarTwips), 2);
  lbInfo->setWordWrap(true);
  lbKurs = infoLine("lbKurs", QStringLiteral("Kurs"), lbInfo->geometry().bottom() + 1, 1);
  lbFeldrand = infoLine("lbFeldrand", QString(), lbKurs->geometry().bottom() + 1, 1);
  // The contest figures under the results, filled by ContestFigures.
  auto contestLine = [&](const char* name, int top) {
    auto* l = new QLabel(client);
    l->setObjectName(QString::fromLatin1(name));
    l->setAlignment(Qt::AlignCenter);
    l->setGeometry(0, top, clientWidth,
                   std::max(TwipsToPx(kLabelHeight), l->fontMetrics().lineSpacing() + 2));
    return l;
  };
  lblPunkte = contestLine("lblPunkte", lbFeldrand->geometry().bottom() + 1);
  lblWgs84 = contestLine("lblWgs84", lblPunkte->geometry().bottom() + 1);
  client->setFixedSize(clientWidth, lblWgs84->geometry().bottom() + 1 + TwipsToPx(90));

  Label4->setBuddy(tbMyLoc);
  Label1->setBuddy(tbFremdLoc);
  Label5->setBuddy(tbMyLg);
  Label6->setBuddy(tbMyBr);
  Label7->setBuddy(Combo1);

  // Tab order: the fields as the eye reads them, then the radius and the two results.
  QWidget* order[] = {tbMyLoc,   tbFremdLoc, tbMyLg,        tbMyBr,     tbFremdLg,
                      tbFremdBr, Combo1,     lblEntfernung, lblRichtung};
  for (std::size_t i = 1; i < std::size(order); ++i) setTabOrder(order[i - 1], order[i]);
}

void frmMain::buildMenus() {
  auto action = [&](QMenu* menu, const char* name, const QString& text, const QKeySequence& key,
                    void (frmMain::*slot)()) {
    auto* a = menu->addAction(text);
    a->setObjectName(QString::fromUtf8(name));
    if (!key.isEmpty()) a->setShortcut(key);
    connect(a, &QAction::triggered, this, slot);
    return a;
  };
  auto separator = [&](QMenu* menu, const char* name) {
    menu->addSeparator()->setObjectName(QString::fromLatin1(name));
  };

  mnuAktion = menuBar()->addMenu(QStringLiteral("&Aktion"));
  mnuAktion->setObjectName(QStringLiteral("mnuAktion"));
  mnuNeu = action(mnuAktion, "mnuNeu", QStringLiteral("&Neu"), QKeySequence(Qt::CTRL | Qt::Key_N),
                  &frmMain::mnuNeu_Click);
  mnuRechnen = action(mnuAktion, "mnuRechnen", QStringLiteral("&Rechnen"),
                      QKeySequence(Qt::CTRL | Qt::Key_R), &frmMain::mnuRechnen_Click);
  separator(mnuAktion, "Sep1");
  mnuGegenRichtung = action(mnuAktion, "mnuGegenRichtung", QStringLiteral("Gegenrich&tung"),
                            QKeySequence(Qt::Key_F3), &frmMain::mnuGegenRichtung_Click);
  mnuGPS_Höhe = action(mnuAktion, "mnuGPS_Höhe", QStringLiteral("GPS-Antennen&höhe"),
                       QKeySequence(Qt::CTRL | Qt::Key_H), &frmMain::mnuGPS_Höhe_Click);
  mnuRotor = action(mnuAktion, "mnuRotor", QStringLiteral("Antenne &drehen"),
                    QKeySequence(Qt::CTRL | Qt::Key_D), &frmMain::mnuRotor_Click);
  mnuKarte = action(mnuAktion, "mnuKarte", QStringLiteral("&Karte"),
                    QKeySequence(Qt::CTRL | Qt::Key_K), &frmMain::mnuKarte_Click);
  mnuContestLog = mnuAktion->addAction(QStringLiteral("&Contest-Log prüfen…"));
  mnuContestLog->setObjectName(QStringLiteral("mnuContestLog"));
  connect(mnuContestLog, &QAction::triggered, this, [this] {
    auto* log = new frmContestLog(this);
    log->show();
    log->chooseAndOpen();
  });
  mnuAdif = mnuAktion->addAction(QStringLiteral("ADIF &ergänzen…"));
  mnuAdif->setObjectName(QStringLiteral("mnuAdif"));
  connect(mnuAdif, &QAction::triggered, this,
          [this] { CompleteAdifInteractive(this, m_state.MyHomeLoc); });
  separator(mnuAktion, "mnuSep3");
  mnuGrundeinstellungen =
      action(mnuAktion, "mnuGrundeinstellungen", QStringLiteral("&Grundeinstellungen"),
             QKeySequence(Qt::CTRL | Qt::Key_G), &frmMain::mnuGrundeinstellungen_Click);
  mnuProtokoll = action(mnuAktion, "mnuProtokoll", QStringLiteral("&Protokoll schreiben"),
                        QKeySequence(), &frmMain::mnuProtokoll_Click);
  mnuProtokoll->setCheckable(true);
  mnuStrecke = action(mnuAktion, "mnuStrecke", QStringLiteral("&Strecke speichern…"),
                      QKeySequence(), &frmMain::mnuStrecke_Click);
  mnuAnsage = action(mnuAktion, "mnuAnsage", QStringLiteral("Standort &ansagen"),
                     QKeySequence(Qt::CTRL | Qt::Key_L), &frmMain::mnuAnsage_Click);
  separator(mnuAktion, "Sep2");
  mnuBeenden = action(mnuAktion, "mnuBeenden", QStringLiteral("&Beenden"),
                      QKeySequence(Qt::CTRL | Qt::Key_B), &frmMain::mnuBeenden_Click);

  mnuHelp = menuBar()->addMenu(QStringLiteral("&Hilfe"));
  mnuHelp->setObjectName(QStringLiteral("mnuHelp"));
  mnuHilfe = action(mnuHelp, "mnuHilfe", QStringLiteral("&Hilfe"), QKeySequence(Qt::Key_F1),
                    &frmMain::mnuHilfe_Click);
  mnuInfo = action(mnuHelp, "mnuInfo", QStringLiteral("&Info"), QKeySequence(Qt::Key_F2),
                   &frmMain::mnuInfo_Click);
}

void frmMain::buildToolBar() {
  tbToolBar = new QToolBar(this);
  tbToolBar->setObjectName(QStringLiteral("tbToolBar"));
  tbToolBar->setMovable(false);
  tbToolBar->setFloatable(false);
  tbToolBar->setIconSize(QSize(16, 16));
  tbToolBar->toggleViewAction()->setVisible(false);
  addToolBar(Qt::TopToolBarArea, tbToolBar);
  setContextMenuPolicy(Qt::NoContextMenu);

  const QString keys[] = {QStringLiteral("Neu"),
                          QStringLiteral("Rechnen"),
                          QStringLiteral("Rotor"),
                          QStringLiteral("Karte"),
                          QStringLiteral("Beenden"),
                          QString(),
                          QStringLiteral("Grundeinstellungen"),
                          QStringLiteral("Info"),
                          QStringLiteral("Hilfe")};
  for (const QString& key : keys) {
    if (key.isEmpty()) {
      tbToolBar->addSeparator();
      continue;
    }
    QAction* button = tbToolBar->addAction(ToolbarIcon(key), QString());
    button->setObjectName(key);
    button->setToolTip(key);
    connect(button, &QAction::triggered, this, [this, key] { tbToolBar_ButtonClick(key); });
  }
}

void frmMain::buildStatusBar() {
  const StatusPanels panels = BuildStatusPanels(this);
  sbStatusBar = panels.bar;
  Panel1 = panels.settings;
  Panel2 = panels.gpsTime;
  Panel3 = panels.insertMode;
  Panel4 = panels.date;
  Panel5 = panels.time;
  Panel6 = panels.rotor;
  m_clockTimer = panels.clock;
}

void frmMain::fitWidth() {
  // The status bar may need more room than the fields where the font is large; the client
  // area, its rules and the two info lines then widen with it.
  if (m_baseClientWidth == 0) m_baseClientWidth = centralWidget()->width();
  const int width = std::max(m_baseClientWidth, sbStatusBar->sizeHint().width());
  centralWidget()->setFixedWidth(width);
  for (QWidget* line : {static_cast<QWidget*>(Line1), static_cast<QWidget*>(Line2),
                        static_cast<QWidget*>(Line3), static_cast<QWidget*>(lbInfo),
                        static_cast<QWidget*>(lbKurs), static_cast<QWidget*>(lbFeldrand)}) {
    line->resize(width, line->height());
  }
}

void frmMain::fillRadiusList() {
  const double radii[] = {6356.7747, 6367.6539915, 6371.00079, 6371.299, 6378.137, 6378.16,
                          6384.0,    6377.397,     6378.245,   6381.93,  6374.492};
  QStringList texts;
  for (double radius : radii) texts << Format(radius, u"###0.0######");
  texts << QStringLiteral(" ");
  std::sort(texts.begin(), texts.end());
  Combo1->clear();
  Combo1->addItems(texts);
  Combo1->setCurrentIndex(2);
}

void frmMain::placeWindow() {
  move(TwipsToPx(GetTwipsSetting(SettingKey::MainLeft)),
       TwipsToPx(GetTwipsSetting(SettingKey::MainTop)));
}

void frmMain::Form_Load() {
  if (m_loaded) return;
  m_loaded = true;
  if (!AcquireInstanceLock()) {
    MsgBox(QStringLiteral("Das Programm zweimal zu aktivieren ist nicht ratsam. Wenn Sie diese "
                          "Möglichkeit benötigen, so wenden Sie sich bitte an den Autor dieser "
                          "Software."),
           vbExclamation, QStringLiteral("Marvento läuft bereits "));
    exitProcess()();
    return;
  }
  m_sub->heights = std::make_unique<HeightTable>();
  mnuNeu_Click();
  placeWindow();
  fillRadiusList();
  m_clockTimer->start();
  mnuProtokoll->setChecked(m_state.ProtokollOn);
  m_sub->rover->apply(LoadRoverSettings());
  lbInfo->clear();
  lbKurs->clear();
  applyStationLinks();
}

void frmMain::applyStationLinks() {
  m_sub->links->apply();
  m_sub->links->ownLocator(tbMyLoc->text());
}

StationLinks& frmMain::stationLinks() {
  return *m_sub->links;
}

RoverLink& frmMain::rover() {
  return *m_sub->rover;
}

void frmMain::refit() {
  // The rotor panel comes and goes with its option; the window makes room for it.
  fitWidth();
  setFixedSize(sizeHint());
}

void frmMain::showRotor(std::optional<double> azimuth) {
  if (!azimuth) {
    Panel6->setText(QStringLiteral("Rotor ?"));
    return;
  }
  const double shown = std::fmod(std::round(*azimuth) + 360.0, 360.0);
  Panel6->setText(QStringLiteral("Rotor %1°").arg(static_cast<int>(shown)));
}

QString frmMain::statusText() const {
  // A device path chosen as the port is shown by the port's name, which is short and is
  // what the settings dialog lists.
  QString port = m_state.ComPort;
  if (port.startsWith(u'/')) {
    for (int number = 1; number <= 29; ++number) {
      if (PortDevice(number) == port) {
        port = QStringLiteral("Com") + QString::number(number);
        break;
      }
    }
  }
  return QStringLiteral("Status: ") + m_state.GpsStatus + QStringLiteral(" (") + port +
         QStringLiteral(")");
}

void frmMain::tbMyLoc_Change() {
  // The task bar shows the locator while minimised; each fix keeps it up to date.
  if (GpsOn(m_state) && isMinimized()) setWindowTitle(tbMyLoc->text());
}

void frmMain::Form_Resize() {
  if (isMinimized()) {
    if (GpsOn(m_state)) setWindowTitle(tbMyLoc->text());
    return;
  }
  Panel1->setText(statusText());
  setWindowTitle(QStringLiteral("Marvento"));
}

void frmMain::Form_Activate() {
  m_activatePending = false;
  if (!GpsOn(m_state)) {
    if (tbMyLoc->text().isEmpty()) tbMyLoc->setText(m_state.MyHomeLoc);
    if (!tbMyLoc->text().isEmpty()) {
      tbFremdLoc->setFocus();
    } else {
      tbMyLoc->setFocus();
    }
    return;
  }
  // A poll that is running already brings the fresh data this activation asks for.
  if (isPolling()) return;
  startPoll([this] {
    if (GpsOn(m_state) && m_state.ProtokollOn) WriteGpsLog();
  });
}

void frmMain::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  Form_Resize();
  activateAfterDialog();
}

void frmMain::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange) Form_Resize();
}

void frmMain::mnuNeu_Click() {
  tbFremdLoc->clear();
  lblEntfernung->clear();
  lblRichtung->clear();
  tbMyLoc->clear();
  tbMyLg->clear();
  tbMyBr->clear();
  tbFremdLg->clear();
  tbFremdBr->clear();
  m_reverseShown = false;
  setWindowTitle(QStringLiteral("Marvento "));
  if (m_state.MyHomeLoc.isEmpty()) {
    tbMyLoc->setFocus();
  } else if (GpsOff(m_state)) {
    tbMyLoc->setText(m_state.MyHomeLoc);
  }
  if (m_sub->compute) emit computed(stationPair());
}

void frmMain::mnuRechnen_Click() {
  Compute();
  tbFremdLoc->setFocus();
}

void frmMain::mnuGegenRichtung_Click() {
  m_reverseShown = ReverseBearingPrompt(lblRichtung->text()).has_value();
  marvento::mnuGegenRichtung_Click(lblRichtung);
  emit computed(stationPair());
}

void frmMain::mnuKarte_Click() {
  m_sub->map->open();
}

void frmMain::takeRemote(const GeoPoint& place) {
  if (!tbFremdLg->isEnabled()) return;
  const auto lg = CoordinateText(place.lon, m_state.GradDezimal);
  const auto br = CoordinateText(place.lat, m_state.GradDezimal);
  if (!lg || !br) return;
  tbFremdLg->setText(*lg);
  tbFremdBr->setText(*br);
  Compute();
}

void frmMain::mnuRotor_Click() {
  const QString title = QStringLiteral(" Antenne drehen");
  if (!m_sub->links->rotorOn()) {
    MsgBox(QStringLiteral("Es ist kein Rotor eingestellt.\n"
                          "In den Grundeinstellungen unter „Rotor“ die Adresse von "
                          "rotctld eintragen, z. B. 127.0.0.1:4533."),
           vbExclamation, title);
    return;
  }
  const std::optional<double> bearing = BearingOfCaption(lblRichtung->text());
  if (!bearing) {
    MsgBox(QStringLiteral("Es ist noch keine Richtung berechnet.\n"
                          "Bitte zuerst beide Stationen eingeben und rechnen."),
           vbInformation, title);
    return;
  }
  m_sub->links->turnRotor(m_reverseShown ? std::fmod(*bearing + 180.0, 360.0) : *bearing);
}

void frmMain::mnuGPS_Höhe_Click() {
  if (GpsOn(m_state)) {
    QString unit;
    HeightEvaluate(*m_sub->heights, QString(), unit, QString(), true);
    return;
  }
  MsgBox(QStringLiteral("Kein GPS aktiv!        "), vbInformation, QStringLiteral(" GPS-Höhe "));
}

void frmMain::mnuGrundeinstellungen_Click() {
  // The dialog may change the port under a running exchange: that exchange ends first.
  m_sub->poll->cancel();
  const bool ticking = GpsOn(m_state) && Timer1->isActive();
  if (ticking) Timer1->stop();
  std::optional<Preferences> chosen;
  {
    frmOptions options(preferences(), MSComm1, this);
    const bool accepted = options.exec() == QDialog::Accepted;
    // The scan has met the port this program holds, whichever button closed the dialog.
    if (const auto busy = options.busyPort()) m_state.BusyPort = *busy;
    if (accepted) chosen = options.chosen();
  }
  if (chosen) applyPreferences(*chosen);
  // Abbrechen leaves reception as it was, ticking included.
  if (ticking && GpsOn(m_state)) SetTimerEnabled(Timer1, true);
  activateAfterDialog();
  Panel1->setText(statusText());
  if (GpsOn(m_state)) startPoll();
  if (isVisible()) tbFremdLoc->setFocus();
}

Preferences frmMain::preferences() const {
  Preferences p;
  static_cast<BasicSettings&>(p) = m_state;
  if (p.GpsdAddress.isEmpty()) p.GpsdAddress = kDefaultGpsdAddress;
  p.receptionOn = GpsOn(m_state);
  p.rover = m_sub->rover->settings();
  for (std::size_t i = 0; i < p.stations.size(); ++i) {
    p.stations[i] = LoadStationAddress(static_cast<StationProgram>(i));
  }
  return p;
}

void frmMain::applyPreferences(const Preferences& p) {
  // The next computation rebuilds the coordinates from the locators in the new form.
  const bool newForm = p.GradDezimal != m_state.GradDezimal || p.Loc10st != m_state.Loc10st;
  static_cast<BasicSettings&>(m_state) = p;
  SetGpsOn(m_state, p.receptionOn);

  Timer1->setInterval(p.GpsIntervalSeconds * 1000);
  if (p.receptionOn) {
    SetTimerEnabled(Timer1, true);
  } else {
    Timer1->stop();
    if (MSComm1->portOpen()) MSComm1->setPortOpen(false);
    lbInfo->clear();
    setWindowTitle(QStringLiteral("Marvento "));
  }
  if (newForm) {
    for (QLineEdit* field : {tbMyLg, tbMyBr, tbFremdLg, tbFremdBr}) field->clear();
  }

  // Stored at once, whatever happens to the program later; the rest is stored at the exit.
  SaveSetting(SettingKey::MyHomeLoc, p.MyHomeLoc);
  SaveSetting(SettingKey::Gpsd, p.GpsdAddress);
  for (std::size_t i = 0; i < p.stations.size(); ++i) {
    SaveStationAddress(static_cast<StationProgram>(i), p.stations[i]);
  }

  // gpsd's connection stays open only while gpsd is the source of running reception.
  if (!IsGpsdSource(m_state.ComPort) || !GpsOn(m_state)) m_sub->poll->closeGpsd();
  applyStationLinks();
  SaveRoverSettings(p.rover);
  m_sub->rover->apply(p.rover);
}

void frmMain::mnuProtokoll_Click() {
  // The action has toggled its own mark already; the flag follows it.
  m_state.ProtokollOn = mnuProtokoll->isChecked();
}

void frmMain::mnuBeenden_Click() {
  close();
}

void frmMain::mnuHilfe_Click() {
  ShowHelp();
}

void frmMain::mnuInfo_Click() {
  ShowAbout();
}

void frmMain::ShowHelp() {
  marvento::ShowHelp(QCoreApplication::applicationDirPath());
}

void frmMain::ShowAbout() {
  marvento::ShowAbout(this, Timer1, GpsOn(m_state), [this] { activateAfterDialog(); });
}

void frmMain::activateAfterDialog() {
  // Closing a modal dialog of the program activates the window; the activation runs in the
  // next DoEvents, as after the first display.
  if (m_activatePending) return;
  m_activatePending = true;
  QMetaObject::invokeMethod(this, &frmMain::Form_Activate, Qt::QueuedConnection);
}

void frmMain::HeightReport() {
  marvento::HeightReport(*m_sub->heights, tbMyLoc->text(), tbMyLg->text(), tbMyBr->text());
}

void frmMain::HeightSample(const QString& alt, const QString& unit, const QString& sats) {
  QString sampleUnit = unit;
  HeightEvaluate(*m_sub->heights, alt, sampleUnit, sats, false);
}

const HeightTable& frmMain::heights() const {
  return *m_sub->heights;
}

void frmMain::LockEntry() {
  marvento::LockEntry(m_sub->entry);
}

void frmMain::UnlockEntry() {
  marvento::UnlockEntry(m_sub->entry);
}

void frmMain::startPoll(std::function<void()> then) {
  if (isPolling()) return;
  LockEntry();
  m_sub->poll->poll(m_state.ComNumber, m_state.ComSettings, [this, then = std::move(then)] {
    if (then) then();
    if (!m_notice.isEmpty() && m_sub->poll->GpsTries() == 0) {
      lbInfo->setText(m_notice);
      m_notice.clear();
    }
    // A log line the disk refused is tried again after each poll, and its warning stays in
    // sight (a poll clears lbInfo) until a line is written; a failed try has the label.
    if (m_sub->log->warning().isEmpty()) return;
    if (GpsOn(m_state) && m_state.ProtokollOn) WriteGpsLog();
    if (m_sub->poll->GpsTries() == 0) m_sub->log->showWarning();
  });
}

void frmMain::showNotice(const QString& text) {
  if (text.isEmpty()) return;
  lbInfo->setText(text);
  if (GpsOn(m_state)) m_notice = text;
}

bool frmMain::isPolling() const {
  return m_sub->poll->isPolling();
}
void frmMain::Compute() {
  m_reverseShown = false;
  runCompute();
}

void frmMain::runCompute(bool tellLinks) {
  m_sub->compute->Compute();
  // The links send only a valid locator, and only when it has changed.
  if (tellLinks) m_sub->links->ownLocator(tbMyLoc->text());
  emit computed(stationPair());
}

StationPair frmMain::stationPair() const {
  StationPair pair;
  const ComputeMemory& m = m_sub->compute->memory();
  if (m.MyBr && m.MyLg) pair.own = GeoPoint{*m.MyBr, *m.MyLg};
  if (m.FremdBr && m.FremdLg) pair.remote = GeoPoint{*m.FremdBr, *m.FremdLg};
  pair.ownLocator = tbMyLoc->text();
  pair.remoteLocator = tbFremdLoc->text();
  const Checked radius = RadiusKm(Combo1->currentText());
  if (radius.error == 0 && std::isfinite(radius.value) && radius.value > 0) {
    pair.radiusKm = radius.value;
  }
  pair.solved = !lblEntfernung->text().trimmed().isEmpty();
  pair.reverse = m_reverseShown;
  return pair;
}

void frmMain::fixComputed() {
  // A fix keeps the user's choice of direction: F3 then Ctrl+D turns to the opposite also
  // while the position moves on. The rover tells the links the locator of a settled square
  // and handles the crossings.
  runCompute(!GpsOn(m_state));
}

void frmMain::mnuStrecke_Click() {
  m_sub->rover->saveTrack();
}

void frmMain::mnuAnsage_Click() {
  m_sub->rover->announce();
}

void frmMain::WriteGpsLog() {
  m_sub->log->WriteGpsLog();
}

void frmMain::tbToolBar_ButtonClick(const QString& key) {
  if (!tbMyLoc->isEnabled()) return;
  if (key == u"Neu") {
    mnuNeu_Click();
  } else if (key == u"Rechnen") {
    Compute();
    tbFremdLoc->setFocus();
  } else if (key == u"Rotor") {
    mnuRotor_Click();
  } else if (key == u"Karte") {
    mnuKarte_Click();
  } else if (key == u"Beenden") {
    mnuBeenden_Click();
  } else if (key == u"Grundeinstellungen") {
    mnuGrundeinstellungen_Click();
  } else if (key == u"Info") {
    ShowAbout();
  } else if (key == u"Hilfe") {
    ShowHelp();
  }
}

void frmMain::Timer1_Timer() {
  if (!GpsOn(m_state)) return;
  // A tick while an exchange is waiting starts no second one.
  if (isPolling() || !tbMyLoc->isEnabled()) return;
  startPoll();
}

int frmMain::radiusListIndex() const {
  const int index = Combo1->currentIndex();
  if (index >= 0 && Combo1->itemText(index) == Combo1->currentText()) return index;
  return -1;
}

bool frmMain::insertMode() const {
  return m_insertMode;
}

bool frmMain::Form_QueryUnload() {
  const int answer = MsgBox(QStringLiteral("Programm wirklich beenden ?"), vbOKCancel | vbQuestion,
                            QStringLiteral(" ") + windowTitle() + QStringLiteral(": Programmende"));
  const bool timerWasOn = Timer1->isActive();
  Timer1->stop();
  if (answer == vbCancel) {
    // Reception goes on after a refused closing, as after every other modal question.
    if (timerWasOn && GpsOn(m_state)) SetTimerEnabled(Timer1, true);
    return false;
  }
  return true;
}

void frmMain::Form_Unload() {
  ExitSettings window;
  window.radiusPosition = radiusListIndex();
  window.minimized = isMinimized();
  window.leftTwips = static_cast<float>(PxToTwips(x()));
  window.topTwips = static_cast<float>(PxToTwips(y()));
  if (const std::optional<QString> reason = WriteExitSettings(m_state, window)) {
    Beep();
    MsgBox(QStringLiteral("Die Einstellungen konnten nicht gespeichert werden:\n") +
               SettingsFilePath() + u'\n' + *reason +
               QStringLiteral("\nDie Datei behält die Einstellungen des letzten Programmendes."),
           vbExclamation, QStringLiteral(" Marvento: Programmende"));
  }
  for (QWidget* other : QApplication::topLevelWidgets()) {
    if (other != this && other->isVisible()) other->close();
  }
}

void frmMain::closeEvent(QCloseEvent* event) {
  // The exchange ends at once with the port closed, so that the question does not stand
  // over a poll that goes on working.
  m_sub->poll->cancel();
  if (!Form_QueryUnload()) {
    event->ignore();
    return;
  }
  Form_Unload();
  ReleaseInstanceLock();
  event->accept();
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
  const auto type = event->type();
  if (type == QEvent::ToolTip && (watched == lbInfo || watched == lbKurs)) {
    // The lines may hold more than fits; the tool tip gives the whole text.
    auto* line = static_cast<QLabel*>(watched);
    line->setToolTip(line->text());
    return false;
  }
  if (type != QEvent::KeyPress && type != QEvent::KeyRelease) return false;
  if (m_passingKey) return false;
  // A key reaches the filter once for the focused control and again for each parent that
  // does not take it; only the first delivery inside this window counts.
  QWidget* focus = QApplication::focusWidget();
  const bool first = focus ? watched == focus : watched == this;
  if (!first) return false;
  if (focus && focus != this && !isAncestorOf(focus)) return false;
  if (QApplication::activeModalWidget()) return false;

  auto* key = static_cast<QKeyEvent*>(event);
  if (type == QEvent::KeyRelease) {
    if (!key->isAutoRepeat()) Form_KeyUp(key->key(), key->modifiers());
    return false;
  }
  if (key->key() == Qt::Key_Insert && key->modifiers() == Qt::NoModifier) {
    m_insertMode = !m_insertMode;
    Panel3->setEnabled(m_insertMode);
    return false;
  }
  if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
    Form_KeyPress(watched, 13, QString());
    passKeyOn(watched, event);
    return true;
  }
  const QString text = key->text();
  if (text.size() == 1 && !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
    Form_KeyPress(watched, text.at(0).unicode(), text);
  }
  return false;
}

void frmMain::passKeyOn(QObject* target, QEvent* event) {
  // A handler that showed a message box has left the window without a focused control when
  // the box closed. Were the key left to travel on, the control would ignore it and the
  // window, which receives keys when nothing has the focus, would take it for a new one:
  // a second computation, a second box. So the control gets the key here, and only here.
  const QPointer<QObject> alive(target);
  if (!alive) return;
  m_passingKey = true;
  QCoreApplication::sendEvent(target, event);
  m_passingKey = false;
  event->accept();
}

void frmMain::Form_KeyPress(QObject* target, int keyAscii, const QString& text) {
  QLineEdit* edit = qobject_cast<QLineEdit*>(target);
  if (auto* combo = qobject_cast<QComboBox*>(target); combo && combo->isEditable()) {
    edit = combo->lineEdit();
  }
  if (keyAscii == 13) {
    if (edit) edit->setText(edit->text().trimmed());
    Compute();
    return;
  }
  if (m_insertMode || !edit) return;
  if (keyAscii == 34 || keyAscii == 39 || text == u"°") {
    edit->cursorForward(false, 1);
    edit->del();
  } else if ((keyAscii >= 48 && keyAscii <= 90) || (keyAscii >= 97 && keyAscii <= 122)) {
    edit->del();
  }
}

void frmMain::Form_KeyUp(int keyCode, Qt::KeyboardModifiers modifiers) {
  if (GpsOn(m_state) && keyCode == Qt::Key_A && modifiers == Qt::ControlModifier) {
    HeightReport();
  }
}

}  // namespace marvento
