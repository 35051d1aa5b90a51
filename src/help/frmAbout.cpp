#include "help/frmAbout.h"

#include "platform/Timer.h"

#include <QApplication>
#include <QCoreApplication>
#include <QFrame>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "platform/AccessibleTexts.h"
#include "platform/MsgBox.h"
#include "platform/Programs.h"

namespace marvento {

// System profilers first, as they show what the button promises; the desktops' system
// monitors after them, as the nearest thing most desktops have.
const QStringList kSysInfoPrograms = {
    QStringLiteral("hardinfo2"),
    QStringLiteral("hardinfo"),
    QStringLiteral("kinfocenter"),
    QStringLiteral("gnome-system-monitor"),
    QStringLiteral("plasma-systemmonitor"),
    QStringLiteral("ksysguard"),
    QStringLiteral("mate-system-monitor"),
    QStringLiteral("xfce4-taskmanager"),
    QStringLiteral("lxtask"),
};

namespace {

const char* const kProductName = "Marvento";
const char* const kFileDescription =
    "Locator-Programm zur Entfernungs- und Richtungsbestimmung mit oder ohne GPS";
const char* const kLegalLine =
    "Copyright © 2026 Marvento-Entwickler. Lizenz: GNU GPL, Version 3 oder später. "
    "Ohne jede Gewährleistung. Kartendaten: Natural Earth (gemeinfrei), "
    "aufbereitet von world-atlas (ISC-Lizenz).";

QLabel* makeLabel(QWidget* parent, const char* name, const QString& text) {
  auto* label = new QLabel(text, parent);
  label->setObjectName(QString::fromLatin1(name));
  label->setTextFormat(Qt::PlainText);
  return label;
}

QFrame* makeRule(QWidget* parent, const char* name, QPalette::ColorRole shade) {
  auto* rule = new QFrame(parent);
  rule->setObjectName(QString::fromLatin1(name));
  rule->setFixedHeight(1);
  rule->setAutoFillBackground(true);
  rule->setBackgroundRole(shade);
  return rule;
}

}  // namespace

frmAbout::frmAbout(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmAbout"));
  setWindowTitle(QStringLiteral("Info Marvento"));
  setWindowFlags(Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint | Qt::WindowTitleHint |
                 Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
  setWindowIcon(QApplication::windowIcon());
  setModal(true);

  m_cmdOK = new QPushButton(QStringLiteral("OK"), this);
  m_cmdOK->setObjectName(QStringLiteral("cmdOK"));
  m_cmdOK->setDefault(true);
  m_cmdSysInfo = new QPushButton(QStringLiteral("&Systeminfo..."), this);
  m_cmdSysInfo->setObjectName(QStringLiteral("cmdSysInfo"));
  m_cmdSysInfo->setAutoDefault(false);

  m_picIcon = makeLabel(this, "picIcon", {});
  m_picIcon->setFixedSize(48, 48);
  m_picIcon->setAlignment(Qt::AlignCenter);
  m_lblDisclaimer = makeLabel(this, "lblDisclaimer",
                              QStringLiteral("Bei Fehlern in der Beschaltung der Schnittstelle "
                                             "(Anschlusskabel) kann es zeitweise zum "
                                             "Hängenbleiben des Betriebssystems kommen !"));
  m_lblDisclaimer->setWordWrap(true);
  m_lblVersion = makeLabel(this, "lblVersion", QStringLiteral("Version"));
  m_lblTitle = makeLabel(this, "lblTitle", QStringLiteral("Anwendungstitel"));
  QFont titleFont = m_lblTitle->font();
  titleFont.setBold(true);
  titleFont.setPointSizeF(titleFont.pointSizeF() * 1.8);
  m_lblTitle->setFont(titleFont);
  m_lblDescription = makeLabel(this, "lblDescription", {});
  m_lblDescription->setWordWrap(true);
  m_lblBeschreibung = makeLabel(this, "lblBeschreibung", QStringLiteral("Beschreibung"));
  m_lblBeschreibung->setWordWrap(true);
  m_lblAchtung = makeLabel(this, "lblAchtung", QStringLiteral("Achtung:"));

  // A dark line over a light one reads as a groove cut into the dialog, in the theme's shades.
  auto* groove = new QVBoxLayout;
  groove->setSpacing(0);
  groove->addWidget(makeRule(this, "Line1_1", QPalette::Mid));
  groove->addWidget(makeRule(this, "Line1_0", QPalette::Light));

  auto* grid = new QGridLayout(this);
  grid->setSizeConstraint(QLayout::SetFixedSize);
  grid->setColumnMinimumWidth(1, 300);
  grid->addWidget(m_picIcon, 0, 0, 4, 1, Qt::AlignTop);
  grid->addWidget(m_lblTitle, 0, 1, 1, 2);
  grid->addWidget(m_lblVersion, 1, 1, 1, 2);
  grid->addWidget(m_lblBeschreibung, 2, 1, 1, 2);
  grid->addWidget(m_lblDescription, 3, 1, 1, 2);
  grid->setRowMinimumHeight(4, 12);
  grid->addLayout(groove, 5, 0, 1, 3);
  grid->addWidget(m_lblAchtung, 6, 0, 1, 2);
  grid->addWidget(m_cmdOK, 6, 2);
  grid->addWidget(m_lblDisclaimer, 7, 0, 1, 2, Qt::AlignTop);
  grid->addWidget(m_cmdSysInfo, 7, 2, Qt::AlignTop);

  setTabOrder(m_cmdOK, m_cmdSysInfo);
  SetAccessibleTexts(this, {
                               {"cmdOK", QStringLiteral("OK"), QStringLiteral("Info schließen")},
                               {"cmdSysInfo", QStringLiteral("Systeminfo"),
                                QStringLiteral("startet ein Programm, das den Rechner beschreibt")},
                               {"picIcon", QStringLiteral("Programmsymbol"), QString()},
                           });
  connect(m_cmdOK, &QPushButton::clicked, this, &QDialog::accept);
  connect(m_cmdSysInfo, &QPushButton::clicked, this, &frmAbout::cmdSysInfo_Click);

  Form_Load();
}

void frmAbout::Form_Load() {
  const QIcon icon = QApplication::windowIcon();
  if (!icon.isNull()) m_picIcon->setPixmap(icon.pixmap(QSize(48, 48)));
  m_lblVersion->setText(QStringLiteral("Version %1.%2.%3")
                            .arg(MARVENTO_VERSION_MAJOR)
                            .arg(MARVENTO_VERSION_MINOR)
                            .arg(MARVENTO_VERSION_PATCH));
  m_lblTitle->setText(QString::fromLatin1(kProductName));
  m_lblDescription->setText(QString::fromUtf8(kLegalLine));
  m_lblBeschreibung->setText(QString::fromUtf8(kFileDescription));
}

void frmAbout::cmdSysInfo_Click() {
  StartSysInfo();
}

void StartSysInfo() {
  for (const QString& name : kSysInfoPrograms) {
    const QString program = FindOnPath(name);
    if (program.isEmpty()) continue;
    if (StartDetached(program)) return;
    break;  // the one that is there failed; another one would surprise the user
  }
  MsgBox(QStringLiteral("Systeminformationsprogramm zurzeit nicht verfügbar."), vbOKOnly);
}

void ShowAbout(QWidget* owner, QTimer* timer1, bool gpsOn, const std::function<void()>& closed) {
  if (gpsOn) timer1->stop();
  {
    frmAbout about(owner);
    about.exec();
  }
  if (closed) closed();
  QCoreApplication::processEvents();
  if (gpsOn) SetTimerEnabled(timer1, true);
}

}  // namespace marvento
