#include "app/StatusPanels.h"

#include "platform/Twips.h"

#include <QDate>
#include <QLabel>
#include <QLocale>
#include <QMainWindow>
#include <QStatusBar>
#include <QTime>
#include <QTimer>

#include <algorithm>

namespace marvento {

namespace {

QString shortDate(const QDate& date) {
  // The German short form writes the year with two digits; the status bar shows all four.
  QString format = QLocale().dateFormat(QLocale::ShortFormat);
  if (!format.contains(u"yyyy")) format.replace(QStringLiteral("yy"), QStringLiteral("yyyy"));
  return QLocale().toString(date, format);
}

}  // namespace

StatusPanels BuildStatusPanels(QMainWindow* window) {
  StatusPanels p;
  p.bar = new QStatusBar(window);
  p.bar->setObjectName(QStringLiteral("sbStatusBar"));
  p.bar->setSizeGripEnabled(false);
  window->setStatusBar(p.bar);

  // Each panel is as wide as on a small font, or wider where the font needs it for its widest
  // text.
  const auto panel = [&p](const char* name, const QString& text, const QString& tip, double width,
                          const QString& widest) {
    auto* label = new QLabel(text, p.bar);
    label->setObjectName(QString::fromLatin1(name));
    label->setToolTip(tip);
    label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    label->setFixedWidth(
        std::max(TwipsToPx(width), label->fontMetrics().horizontalAdvance(widest) + 12));
    label->setIndent(2);
    p.bar->addWidget(label);
    return label;
  };
  p.settings = panel("Panel1", QStringLiteral("Status:"), QStringLiteral("Grundeinstellungen"),
                     2200, QStringLiteral("Status: GPS aus (Com29)"));
  p.gpsTime = panel("Panel2", QString(), QStringLiteral("letzte GPS-Daten (UTC)"), 1008,
                    QStringLiteral("23:59:60"));
  p.insertMode = panel("Panel3", QStringLiteral("EINFG"), QStringLiteral("Einfüge-Modus"), 800,
                       QStringLiteral("EINFG"));
  p.date = panel("Panel4", QString(), QStringLiteral("Datum"), 900, shortDate(QDate(2000, 12, 28)));
  p.time =
      panel("Panel5", QString(), QStringLiteral("System-Zeit"), 876, QStringLiteral("00:00:00"));
  p.rotor = panel("Panel6", QString(), QStringLiteral("Richtung des Rotors"), 900,
                  QStringLiteral("Rotor 359°"));
  for (QLabel* centred : {p.insertMode, p.date, p.time, p.rotor})
    centred->setAlignment(Qt::AlignCenter);
  p.rotor->setVisible(false);

  p.clock = new QTimer(window);
  p.clock->setObjectName(QStringLiteral("sbClock"));
  p.clock->setInterval(1000);
  const auto tick = [date = p.date, time = p.time] {
    date->setText(shortDate(QDate::currentDate()));
    time->setText(QTime::currentTime().toString(QStringLiteral("HH:mm:ss")));
  };
  QObject::connect(p.clock, &QTimer::timeout, p.bar, tick);
  tick();
  return p;
}

}  // namespace marvento
