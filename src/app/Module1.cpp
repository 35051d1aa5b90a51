#include "app/Module1.h"

#include "app/Icons.h"
#include "app/SettingsStore.h"
#include "app/frmMain.h"
#include "locator/QraToCoords.h"
#include "platform/Timer.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>

namespace marvento {

Module1& State() {
  static Module1 state;
  return state;
}

void Main() {
  QApplication::setApplicationName(QStringLiteral("Marvento"));
  QApplication::setOrganizationName(QStringLiteral("Marvento"));
  QApplication::setApplicationVersion(QStringLiteral("4.4.0"));
  QApplication::setWindowIcon(AppIcon());
  QGuiApplication::setDesktopFileName(QStringLiteral("org.marvento.Marvento"));

  Module1& state = State();
  state.MainForm = new frmMain(state);
  state.CrLf = QStringLiteral("\r\n");
  const StartupSettings settings = ReadStartupSettings(state);
  state.KfOffsets = kKfOffsets;

  frmMain* window = state.MainForm;
  window->Form_Load();
  window->lbInfo->clear();
  window->Timer1->setInterval(settings.interval.milliseconds);
  window->Combo1->setCurrentIndex(settings.radiusPosition);
  SetTimerEnabled(window->Timer1, state.GpsStatus != kGpsAus);
  if (window->tbMyLoc->text().isEmpty()) window->tbMyLoc->setText(state.MyHomeLoc.trimmed());
  window->show();
  QCoreApplication::processEvents();
}

}  // namespace marvento
