#include "options/frmOptions.h"

#include "platform/Twips.h"

#include "gps/GpsExchange.h"
#include "gps/GpsdClient.h"
#include "options/PortList.h"
#include "platform/AccessibleTexts.h"
#include "platform/CommControl.h"
#include "platform/Format.h"
#include "platform/MsgBox.h"
#include "platform/Numbers.h"
#include "platform/Settings.h"
#include "station/StationAddress.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QShowEvent>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <cmath>

namespace marvento {

namespace {

constexpr std::array kRates = {1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};
constexpr std::array kIntervals = {10, 15, 20, 25, 30, 35, 40, 45, 50, 60};
constexpr int kRateFallbackIndex = 2;  // "4800"

constexpr double kOffsetLeftTwips = 700.0;
constexpr double kOffsetTopTwips = 600.0;

QComboBox* makeCombo(QWidget* parent, const char* name, const QString& toolTip) {
  auto* combo = new QComboBox(parent);
  combo->setObjectName(QString::fromLatin1(name));
  combo->setEditable(true);
  // Typing a value that is not in the list must not add it to the list.
  combo->setInsertPolicy(QComboBox::NoInsert);
  combo->setToolTip(toolTip);
  return combo;
}

QLabel* makeLabel(QWidget* parent, const char* name, const QString& caption, QWidget* buddy) {
  auto* label = new QLabel(caption, parent);
  label->setObjectName(QString::fromLatin1(name));
  if (buddy != nullptr) label->setBuddy(buddy);
  return label;
}

template <typename Button>
Button* makeButton(QWidget* parent, const char* name, const QString& caption,
                   const QString& toolTip) {
  auto* button = new Button(caption, parent);
  button->setObjectName(QString::fromLatin1(name));
  button->setToolTip(toolTip);
  return button;
}

}  // namespace

std::int32_t IntervalSecondsOf(const QString& text) {
  // Limited before the conversion, so that no text can overflow it.
  const double seconds = std::clamp(RoundHalfEven(Val(text)), 10.0, 65.0);
  return static_cast<std::int32_t>(seconds);
}

frmOptions::frmOptions(const Preferences& current, CommControl* probe, QWidget* parent)
    : QDialog(parent), m_chosen(current), m_probe(probe) {
  build();
  Form_Load();
}

void frmOptions::build() {
  setObjectName(QStringLiteral("frmOptions"));
  setWindowTitle(QStringLiteral("Grundeinstellungen Marvento"));
  setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                 Qt::WindowCloseButtonHint | Qt::MSWindowsFixedSizeDialogHint);

  QFont bold = font();
  bold.setBold(true);
  QFont normal = font();
  normal.setBold(false);  // set explicitly, or the children would take the frames' bold

  m_Command2 = makeButton<QPushButton>(this, "Command2", QStringLiteral("&Abbrechen"),
                                       QStringLiteral(" Einstellungen bleiben unverändert "));
  m_Command1 = makeButton<QPushButton>(this, "Command1", QStringLiteral("&OK"),
                                       QStringLiteral(" Änderungen werden übernommen "));
  m_Command1->setDefault(true);

  auto* label1 = makeLabel(
      this, "Label1", QStringLiteral("Daten vom GPS-Empfänger im NMEA 0183-Protokoll"), nullptr);
  label1->setFont(bold);

  m_Combo3 = makeCombo(this, "Combo3", QStringLiteral(" GPS-Datenintervall "));
  auto* label4 = makeLabel(this, "Label4", QStringLiteral("a&lle"), m_Combo3);
  auto* label5 = makeLabel(this, "Label5", QStringLiteral("Sekunden"), nullptr);
  m_Combo1 = makeCombo(this, "Combo1", QStringLiteral(" Com1...Com29, oder gpsd "));
  auto* label2 = makeLabel(this, "Label2", QStringLiteral("&Schnittstelle:"), m_Combo1);
  m_Combo2 = makeCombo(this, "Combo2", QStringLiteral(" Bit pro Sekunde "));
  auto* label3 = makeLabel(this, "Label3", QStringLiteral("&Baudrate:"), m_Combo2);

  // A groove of a light and a dark line under the top rows, in the theme's shades.
  auto rule = [this](const char* name, QPalette::ColorRole shade) {
    auto* line = new QFrame(this);
    line->setObjectName(QString::fromLatin1(name));
    line->setFixedHeight(1);
    line->setAutoFillBackground(true);
    line->setBackgroundRole(shade);
    return line;
  };
  auto* line1 = rule("Line1", QPalette::Light);
  auto* line2 = rule("Line2", QPalette::Mid);

  auto makeFrame = [&](const char* name, const QString& caption) {
    auto* frame = new QGroupBox(caption, this);
    frame->setObjectName(QString::fromLatin1(name));
    frame->setFont(bold);
    return frame;
  };
  auto* frame1 = makeFrame("Frame1", QStringLiteral("GPS-Empfang"));
  m_Option1_0 = makeButton<QRadioButton>(frame1, "Option1_0", QStringLiteral("&Ein"),
                                         QStringLiteral(" GPS-Empfänger übermittelt Daten "));
  m_Option1_1 = makeButton<QRadioButton>(frame1, "Option1_1", QStringLiteral("A&us"),
                                         QStringLiteral(" GPS-Empfänger nicht aktiv "));
  m_Check1 = makeButton<QCheckBox>(frame1, "Check1", QStringLiteral("GPS-&Zeit"),
                                   QStringLiteral(" GPS-Zeit (Min/Sek) übernehmen "));
  auto* frame2 = makeFrame("Frame2", QStringLiteral("Graddarstellung"));
  m_Option3 = makeButton<QRadioButton>(frame2, "Option3", QStringLiteral("&Grd/Min/Sek"),
                                       QStringLiteral(" in Grad, Minuten u. Sekunden "));
  m_Option4 = makeButton<QRadioButton>(frame2, "Option4", QStringLiteral("&Dezimal"),
                                       QStringLiteral(" Dezimal mit Komma "));
  auto* frame3 = makeFrame("Frame3", QStringLiteral("Locatordarstellung"));
  m_Option2_0 = makeButton<QRadioButton>(frame3, "Option2_0", QStringLiteral("&6 st."),
                                         QStringLiteral(" normal "));
  m_Option2_1 = makeButton<QRadioButton>(frame3, "Option2_1", QStringLiteral("&10 st."),
                                         QStringLiteral(" hohe Genauigkeit "));

  m_Text1 = new QLineEdit(this);
  m_Text1->setObjectName(QStringLiteral("Text1"));
  m_Text1->setMaxLength(10);
  m_Text1->setToolTip(QStringLiteral(" Eigener Locator/Vorgabe  "));
  auto* label6 = makeLabel(this, "Label6", QStringLiteral("My &Home - Loc:"), m_Text1);

  m_tbGpsd = new QLineEdit(this);
  m_tbGpsd->setObjectName(QStringLiteral("tbGpsd"));
  m_tbGpsd->setToolTip(QStringLiteral(" Rechner:Port von gpsd, wenn die Schnittstelle gpsd ist "));
  auto* labelGpsd = makeLabel(this, "LabelGpsd", QStringLiteral("g&psd-Adresse:"), m_tbGpsd);

  auto* frame4 = makeFrame("Frame4", QStringLiteral("Stationsprogramme"));
  auto* frame4Layout = new QGridLayout(frame4);
  struct StationCaption {
    const char* check;
    const char* field;
    QString caption;
    QString toolTip;
  };
  const std::array<StationCaption, 3> stationCaptions = {{
      {"chkWsjtx", "tbWsjtx", QStringLiteral("&WSJT-X"),
       QStringLiteral(" Eigenen Locator an WSJT-X senden (UDP-Server von WSJT-X) ")},
      {"chkJs8Call", "tbJs8Call", QStringLiteral("&JS8Call"),
       QStringLiteral(" Eigenen Locator an JS8Call senden (TCP-API von JS8Call) ")},
      {"chkRotor", "tbRotor", QStringLiteral("&Rotor"),
       QStringLiteral(" Antenne über rotctld (hamlib) drehen ")},
  }};
  for (std::size_t i = 0; i < m_stations.size(); ++i) {
    StationRow& row = m_stations[i];
    row.on = makeButton<QCheckBox>(frame4, stationCaptions[i].check, stationCaptions[i].caption,
                                   stationCaptions[i].toolTip);
    row.on->setFont(normal);
    row.address = new QLineEdit(frame4);
    row.address->setObjectName(QString::fromLatin1(stationCaptions[i].field));
    row.address->setToolTip(QStringLiteral(" Rechner:Port "));
    row.address->setFont(normal);
    row.address->setEnabled(false);
    connect(row.on, &QCheckBox::toggled, row.address, &QLineEdit::setEnabled);
    frame4Layout->addWidget(row.on, static_cast<int>(i), 0);
    frame4Layout->addWidget(row.address, static_cast<int>(i), 1);
  }

  auto* frame5 = makeFrame("Frame5", QStringLiteral("Unterwegs"));
  auto* frame5Layout = new QGridLayout(frame5);
  m_chkAnsagen = makeButton<QCheckBox>(
      frame5, "chkAnsagen", QStringLiteral("A&nsagen"),
      QStringLiteral(" Neue Felder, die nächste Feldgrenze und den GPS-Empfang ansagen "));
  m_cbBuchstabieren = new QComboBox(frame5);
  m_cbBuchstabieren->setObjectName(QStringLiteral("cbBuchstabieren"));
  m_cbBuchstabieren->setToolTip(QStringLiteral(" Wie der Locator angesagt wird "));
  m_cbBuchstabieren->addItems({QStringLiteral("ICAO-Alphabet"), QStringLiteral("Buchstaben")});
  m_cbFeldStufe = new QComboBox(frame5);
  m_cbFeldStufe->setObjectName(QStringLiteral("cbFeldStufe"));
  m_cbFeldStufe->setToolTip(QStringLiteral(" Nach welchen Feldern unterwegs gezählt wird "));
  m_cbFeldStufe->addItems(
      {QStringLiteral("4 Zeichen (JO62)"), QStringLiteral("6 Zeichen (JO62RM)")});
  m_sbFeldrand = new QSpinBox(frame5);
  m_sbFeldrand->setObjectName(QStringLiteral("sbFeldrand"));
  m_sbFeldrand->setToolTip(
      QStringLiteral(" So weit muss die Position im neuen Feld liegen, bevor es zählt "));
  m_sbFeldrand->setRange(0, kMaxMarginM);
  m_sbFeldrand->setSingleStep(5);
  m_sbFeldrand->setSuffix(QStringLiteral(" m"));
  const auto frame5Label = [&](const char* name, const QString& text, QWidget* buddy) {
    auto* l = makeLabel(frame5, name, text, buddy);
    l->setFont(normal);
    return l;
  };
  frame5Layout->addWidget(m_chkAnsagen, 0, 0);
  frame5Layout->addWidget(
      frame5Label("LabelBuchstabieren", QStringLiteral("Bu&chstabieren:"), m_cbBuchstabieren), 0,
      1);
  frame5Layout->addWidget(m_cbBuchstabieren, 0, 2);
  frame5Layout->addWidget(frame5Label("LabelFeldStufe", QStringLiteral("&Felder:"), m_cbFeldStufe),
                          1, 0);
  frame5Layout->addWidget(m_cbFeldStufe, 1, 1);
  frame5Layout->addWidget(
      frame5Label("LabelFeldrand", QStringLiteral("Abstand &im neuen Feld:"), m_sbFeldrand), 1, 2);
  frame5Layout->addWidget(m_sbFeldrand, 1, 3);
  for (QWidget* w : {static_cast<QWidget*>(m_chkAnsagen), static_cast<QWidget*>(m_cbBuchstabieren),
                     static_cast<QWidget*>(m_cbFeldStufe), static_cast<QWidget*>(m_sbFeldrand)}) {
    w->setFont(normal);
  }

  // The frames' bold caption is not meant for what they hold.
  for (QWidget* child : {static_cast<QWidget*>(m_Option1_0), static_cast<QWidget*>(m_Option1_1),
                         static_cast<QWidget*>(m_Check1), static_cast<QWidget*>(m_Option3),
                         static_cast<QWidget*>(m_Option4), static_cast<QWidget*>(m_Option2_0),
                         static_cast<QWidget*>(m_Option2_1)}) {
    child->setFont(normal);
  }

  auto* frame1Layout = new QVBoxLayout(frame1);
  frame1Layout->addWidget(m_Option1_0);
  frame1Layout->addWidget(m_Option1_1);
  frame1Layout->addWidget(m_Check1);
  auto* frame2Layout = new QVBoxLayout(frame2);
  frame2Layout->addWidget(m_Option3);
  frame2Layout->addWidget(m_Option4);
  frame2Layout->addStretch();
  auto* frame3Layout = new QVBoxLayout(frame3);
  frame3Layout->addWidget(m_Option2_0);
  frame3Layout->addWidget(m_Option2_1);
  frame3Layout->addStretch();

  auto* intervalRow = new QHBoxLayout;
  intervalRow->addWidget(label1);
  intervalRow->addStretch();
  intervalRow->addWidget(label4);
  intervalRow->addWidget(m_Combo3);
  intervalRow->addWidget(label5);

  auto* groove = new QVBoxLayout;
  groove->setSpacing(0);
  groove->addWidget(line2);
  groove->addWidget(line1);

  auto* portRow = new QHBoxLayout;
  portRow->addWidget(label2);
  portRow->addWidget(m_Combo1, 1);
  portRow->addSpacing(16);
  portRow->addWidget(label3);
  portRow->addWidget(m_Combo2, 1);

  auto* gpsdRow = new QHBoxLayout;
  gpsdRow->addWidget(labelGpsd);
  gpsdRow->addWidget(m_tbGpsd, 1);

  auto* frameRow = new QHBoxLayout;
  frameRow->addWidget(frame1);
  frameRow->addWidget(frame2);
  frameRow->addWidget(frame3);

  auto* bottomRow = new QHBoxLayout;
  bottomRow->addWidget(label6);
  bottomRow->addWidget(m_Text1);
  bottomRow->addStretch();
  bottomRow->addWidget(m_Command1);
  bottomRow->addWidget(m_Command2);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(intervalRow);
  layout->addLayout(groove);
  layout->addLayout(portRow);
  layout->addLayout(gpsdRow);
  layout->addLayout(frameRow);
  layout->addWidget(frame4);
  layout->addWidget(frame5);
  layout->addLayout(bottomRow);
  setFixedSize(sizeHint());

  QWidget* const tabOrder[] = {m_Command2,
                               m_Command1,
                               m_Combo3,
                               m_Combo1,
                               m_Combo2,
                               m_Option1_0,
                               m_Option1_1,
                               m_Check1,
                               m_Option3,
                               m_Option4,
                               m_Option2_0,
                               m_Option2_1,
                               m_tbGpsd,
                               m_stations[0].on,
                               m_stations[0].address,
                               m_stations[1].on,
                               m_stations[1].address,
                               m_stations[2].on,
                               m_stations[2].address,
                               m_chkAnsagen,
                               m_cbBuchstabieren,
                               m_cbFeldStufe,
                               m_sbFeldrand,
                               m_Text1};
  for (std::size_t i = 1; i < std::size(tabOrder); ++i) {
    setTabOrder(tabOrder[i - 1], tabOrder[i]);
  }
  m_Command2->setFocus();

  SetAccessibleTexts(
      this,
      {
          {"Combo3", QStringLiteral("Abfrage alle … Sekunden"),
           QStringLiteral("Abstand der GPS-Abfragen, 10 bis 65 Sekunden")},
          {"Combo1", QStringLiteral("Schnittstelle"),
           QStringLiteral("Com1 bis Com29, ein Gerätepfad wie /dev/ttyUSB0, oder gpsd")},
          {"Combo2", QStringLiteral("Baudrate"), QStringLiteral("Bit pro Sekunde")},
          {"Option1_0", QStringLiteral("GPS-Empfang ein"), QString()},
          {"Option1_1", QStringLiteral("GPS-Empfang aus"), QString()},
          {"Check1", QStringLiteral("GPS-Zeit übernehmen"),
           QStringLiteral("Minuten und Sekunden der Rechneruhr nach dem GPS-Empfänger stellen")},
          {"Option3", QStringLiteral("Grad, Minuten, Sekunden"),
           QStringLiteral("Koordinaten wie 13°22'30\"")},
          {"Option4", QStringLiteral("Dezimalgrad"), QStringLiteral("Koordinaten wie 13,375")},
          {"Option2_0", QStringLiteral("Locator mit 6 Stellen"), QStringLiteral("wie JO62QM")},
          {"Option2_1", QStringLiteral("Locator mit 10 Stellen"),
           QStringLiteral("hohe Genauigkeit, wie JO62QM12AB")},
          {"Text1", QStringLiteral("Home-Locator"),
           QStringLiteral("eigener Locator, mit dem das Programm ohne GPS beginnt")},
          {"tbGpsd", QStringLiteral("gpsd-Adresse"),
           QStringLiteral("Rechner:Port, zum Beispiel localhost:2947")},
          {"chkWsjtx", QStringLiteral("WSJT-X"),
           QStringLiteral("eigenen Locator an WSJT-X senden")},
          {"tbWsjtx", QStringLiteral("Adresse von WSJT-X"),
           QStringLiteral("Rechner:Port des UDP-Servers, zum Beispiel 127.0.0.1:2237")},
          {"chkJs8Call", QStringLiteral("JS8Call"),
           QStringLiteral("eigenen Locator an JS8Call senden")},
          {"tbJs8Call", QStringLiteral("Adresse von JS8Call"),
           QStringLiteral("Rechner:Port der TCP-API, zum Beispiel 127.0.0.1:2442")},
          {"chkRotor", QStringLiteral("Rotor"), QStringLiteral("Antenne über rotctld drehen")},
          {"tbRotor", QStringLiteral("Adresse von rotctld"),
           QStringLiteral("Rechner:Port, zum Beispiel 127.0.0.1:4533")},
          {"Command1", QStringLiteral("OK"), QStringLiteral("Änderungen übernehmen")},
          {"Command2", QStringLiteral("Abbrechen"),
           QStringLiteral("Einstellungen bleiben unverändert")},
      });

  connect(m_Command1, &QPushButton::clicked, this, &frmOptions::Command1_Click);
  connect(m_Command2, &QPushButton::clicked, this, &frmOptions::Command2_Click);
}

void frmOptions::Form_Load() {
  // Placed by where the main window stood at the last exit, in twips from the store.
  const double left = GetTwipsSetting(SettingKey::MainLeft) + kOffsetLeftTwips;
  const double top = GetTwipsSetting(SettingKey::MainTop) + kOffsetTopTwips;
  move(TwipsToPx(left), TwipsToPx(top));

  m_Text1->setText(m_chosen.MyHomeLoc);

  for (const int rate : kRates) m_Combo2->addItem(QString::number(rate));
  m_Combo2->addItem(QString());
  const double rate = RoundHalfEven(Val(m_chosen.ComSettings));
  int rateIndex = kRateFallbackIndex;
  for (std::size_t i = 0; i < kRates.size(); ++i) {
    if (rate == kRates[i]) rateIndex = static_cast<int>(i);
  }
  m_Combo2->setCurrentIndex(rateIndex);

  for (const int seconds : kIntervals) m_Combo3->addItem(QString::number(seconds));
  int intervalIndex = -1;
  for (std::size_t i = 0; i < kIntervals.size(); ++i) {
    if (m_chosen.GpsIntervalSeconds == kIntervals[i]) intervalIndex = static_cast<int>(i);
  }
  if (intervalIndex < 0) {
    m_Combo3->addItem(Format(static_cast<int>(m_chosen.GpsIntervalSeconds)));
    intervalIndex = m_Combo3->count() - 1;
  }
  m_Combo3->setCurrentIndex(intervalIndex);

  (m_chosen.receptionOn ? m_Option1_0 : m_Option1_1)->setChecked(true);
  (m_chosen.GradDezimal ? m_Option4 : m_Option3)->setChecked(true);
  m_Check1->setChecked(m_chosen.GpsZeit);
  (m_chosen.Loc10st ? m_Option2_1 : m_Option2_0)->setChecked(true);

  m_chkAnsagen->setChecked(m_chosen.rover.announce);
  m_cbBuchstabieren->setCurrentIndex(m_chosen.rover.spelling == Spelling::Icao ? 0 : 1);
  m_cbFeldStufe->setCurrentIndex(m_chosen.rover.level == SquareLevel::Four ? 0 : 1);
  m_sbFeldrand->setValue(m_chosen.rover.marginM);

  m_tbGpsd->setText(m_chosen.GpsdAddress.isEmpty() ? kDefaultGpsdAddress : m_chosen.GpsdAddress);
  for (std::size_t i = 0; i < m_stations.size(); ++i) {
    const StationAddress& shown = m_chosen.stations[i];
    const bool on = shown.status == StationAddress::Ok;
    m_stations[i].on->setChecked(on);
    m_stations[i].address->setText(on ? StationAddressText(shown)
                                      : DefaultStationAddressText(static_cast<StationProgram>(i)));
  }

  if (m_probe != nullptr) {
    const PortScanOutcome scan = FillPortList(*m_Combo1, *m_probe, m_chosen.ComNumber);
    m_chosen.ComNumber = scan.comNumber;
    m_busyPort = scan.busyPort;
  }
  // gpsd needs no scan: it is always offered, first, so that the scan's choice stays last.
  m_Combo1->insertItem(0, kGpsdSource);
  m_Combo1->setItemData(0, QStringLiteral(" Positionen von gpsd (Rechner:Port unten) "),
                        Qt::ToolTipRole);
}

void frmOptions::Form_Activate() {
  // Shows the stored name and rate even where they are not in the lists.
  m_Combo1->setEditText(m_chosen.ComPort);
  m_Combo2->setEditText(Format(Val(m_chosen.ComSettings)));
}

void frmOptions::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (!m_activated && !event->spontaneous()) {
    m_activated = true;
    Form_Activate();
  }
}

void frmOptions::Command1_Click() {
  const QString port = m_Combo1->currentText().trimmed();
  auto refuse = [this](const QString& reason) {
    MsgBox(reason, vbExclamation, QStringLiteral(" Grundeinstellungen"));
    m_Combo1->setFocus();
  };
  // Every address is checked before anything changes, so that a refusal leaves all as it was.
  const bool gpsd = IsGpsdSource(port);
  const QString gpsdAddress = m_tbGpsd->text().trimmed();
  if (gpsd && !ParseGpsdAddress(gpsdAddress)) {
    MsgBox(GpsdMessage(GpsdOutcome::BadAddress, gpsdAddress), vbExclamation,
           QStringLiteral(" Grundeinstellungen"));
    m_tbGpsd->setFocus();
    return;
  }
  std::array<StationAddress, 3> stations{};
  for (std::size_t i = 0; i < m_stations.size(); ++i) {
    if (!m_stations[i].on->isChecked()) continue;
    const QString text = m_stations[i].address->text();
    const QString problem = StationAddressProblem(text, static_cast<StationProgram>(i));
    if (!problem.isEmpty()) {
      const QString program = m_stations[i].on->text().remove(u'&');
      MsgBox(
          QStringLiteral("Die Adresse „%1“ für %2 ist ungültig.\n").arg(text.trimmed(), program) +
              problem,
          vbExclamation, QStringLiteral(" Grundeinstellungen"));
      m_stations[i].address->setFocus();
      return;
    }
    stations[i] = ParseStationAddress(text, static_cast<StationProgram>(i));
  }

  Preferences next = m_chosen;
  if (gpsd) {
    next.ComPort = kGpsdSource;
  } else if (port.startsWith(u'/')) {
    QString reason;
    const std::optional<std::int16_t> number = PortForDevice(port, reason);
    if (!number) return refuse(reason);
    next.ComPort = QStringLiteral("Com%1").arg(*number);
    next.ComNumber = *number;
    MsgBox(
        QStringLiteral("Der GPS-Empfänger an %1 wird als %2 angesprochen.").arg(port, next.ComPort),
        vbInformation, QStringLiteral(" Grundeinstellungen"));
  } else if (const std::optional<std::int16_t> number = ComNumberOf(port)) {
    // Any other number would bring up the busy-port question at every poll.
    if (*number < 1 || *number > 29) {
      return refuse(QStringLiteral("Die Schnittstelle „%1“ gibt es nicht. Bitte Com1 bis Com29 "
                                   "oder einen Gerätepfad wie /dev/ttyUSB0 angeben.")
                        .arg(port));
    }
    next.ComPort = port;
    next.ComNumber = *number;
  }
  // A name too short to carry a number, or a number beyond 16 bits, leaves the port as it was.
  next.ComSettings = m_Combo2->currentText() + QStringLiteral(",N,8,1");
  next.GpsIntervalSeconds = IntervalSecondsOf(m_Combo3->currentText());
  next.MyHomeLoc = m_Text1->text().toUpper();
  next.receptionOn = m_Option1_0->isChecked();
  next.GradDezimal = m_Option4->isChecked();
  next.GpsZeit = m_Check1->isChecked();
  next.Loc10st = m_Option2_1->isChecked();
  // A valid address typed while a port is the source is kept for a later switch to gpsd.
  if (ParseGpsdAddress(gpsdAddress)) next.GpsdAddress = gpsdAddress;
  next.stations = stations;
  next.rover.announce = m_chkAnsagen->isChecked();
  next.rover.spelling = m_cbBuchstabieren->currentIndex() == 0 ? Spelling::Icao : Spelling::Letters;
  next.rover.level = m_cbFeldStufe->currentIndex() == 0 ? SquareLevel::Four : SquareLevel::Six;
  next.rover.marginM = m_sbFeldrand->value();
  m_chosen = next;
  accept();
}

void frmOptions::Command2_Click() {
  reject();
}

}  // namespace marvento
