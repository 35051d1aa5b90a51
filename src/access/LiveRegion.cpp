#include "access/LiveRegion.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace marvento {

namespace {

QAccessibleInterface* notificationFactory(const QString& key, QObject* object) {
  if (key == QLatin1String("marvento::LiveRegion")) {
    if (auto* widget = qobject_cast<QWidget*>(object)) {
      return new QAccessibleWidget(widget, QAccessible::Notification);
    }
  }
  return nullptr;
}

}  // namespace

LiveRegion::LiveRegion(QWidget* parent) : QWidget(parent) {
  static const bool installed = [] {
    QAccessible::installFactory(notificationFactory);
    return true;
  }();
  (void)installed;
  setObjectName(QStringLiteral("lbAnsage"));
  setFocusPolicy(Qt::NoFocus);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setGeometry(0, 0, 1, 1);
  hide();
}

void LiveRegion::say(const QString& text) {
  if (text.isEmpty()) return;
  // The name goes first, so that a reader that asks on the show finds the new text.
  setAccessibleName(text);
  hide();
  show();
  emit said(text);
}

}  // namespace marvento
