#include "app/Module1.h"

#include "app/Icons.h"
#include "app/SettingsStore.h"
#include "app/frmMain.h"
#include "platform/Timer.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLibraryInfo>
#include <QLineEdit>
#include <QTimer>
#include <QTranslator>

namespace marvento {

namespace {

// What Qt draws itself (context menus of the fields, key names in the menus, standard
// buttons) speaks German like the rest of the program, whatever the system's language.
void LoadQtTranslations() {
  if (qApp->findChild<QTranslator*>(QStringLiteral("qtTranslations"))) return;
  const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
  for (const QString& name : {QStringLiteral("qtbase_de"), QStringLiteral("qt_de")}) {
    auto* translator = new QTranslator(qApp);
    if (!translator->load(name, folder)) {
      delete translator;
      continue;
    }
    translator->setObjectName(QStringLiteral("qtTranslations"));
    QCoreApplication::installTranslator(translator);
  }
}

}  // namespace

Module1& State() {
  static Module1 state;
  return state;
}

frmMain* Main() {
  QApplication::setApplicationName(QStringLiteral("Marvento"));
  QApplication::setOrganizationName(QStringLiteral("Marvento"));
  QApplication::setApplicationVersion(QStringLiteral("4.4.0"));
  QApplication::setWindowIcon(AppIcon());
  QGuiApplication::setDesktopFileName(QStringLiteral("org.marvento.Marvento"));
  LoadQtTranslations();

  Module1& state = State();
  auto* window = new frmMain(state);
  const StartupSettings settings = ReadStartupSettings(state);

  window->Form_Load();
  window->lbInfo->clear();
  window->showNotice(ReplacedSettingsText(settings.replaced));
  window->Timer1->setInterval(settings.interval.milliseconds);
  window->Combo1->setCurrentIndex(settings.radiusPosition);
  SetTimerEnabled(window->Timer1, !GpsOff(state));
  if (window->tbMyLoc->text().isEmpty()) window->tbMyLoc->setText(state.MyHomeLoc.trimmed());
  window->show();
  QCoreApplication::processEvents();
  return window;
}

}  // namespace marvento
