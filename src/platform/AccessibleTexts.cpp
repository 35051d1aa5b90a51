#include "platform/AccessibleTexts.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QDebug>
#include <QLabel>
#include <QLineEdit>
#include <QStringList>
#include <QWidget>

namespace marvento {

namespace {

void apply(QWidget* widget, const AccessibleText& text) {
  widget->setAccessibleName(text.name);
  if (!text.description.isEmpty()) widget->setAccessibleDescription(text.description);
  // Screen readers name a field after the label that points to it, where it has one, so
  // that label says the same.
  if (QWidget* window = widget->window(); window && !text.name.isEmpty()) {
    for (QLabel* label : window->findChildren<QLabel*>()) {
      if (label->buddy() == widget) label->setAccessibleName(text.name);
    }
  }
  // An editable combo box hands the focus to its own entry field, which is what the reader
  // then names.
  if (auto* combo = qobject_cast<QComboBox*>(widget); combo && combo->lineEdit()) {
    apply(combo->lineEdit(), text);
  }
}

}  // namespace

void SetAccessibleTexts(QWidget* window, std::initializer_list<AccessibleText> texts) {
  for (const AccessibleText& text : texts) {
    const QString object = QString::fromUtf8(text.object);
    if (window->objectName() == object) {
      apply(window, text);
      continue;
    }
    if (auto* widget = window->findChild<QWidget*>(object)) {
      apply(widget, text);
      continue;
    }
    auto* action = window->findChild<QAction*>(object);
    if (!action) {
      qWarning("No control %s in %s for its accessible name", text.object,
               qPrintable(window->objectName()));
      continue;
    }
    for (QObject* shown : action->associatedObjects()) {
      // A menu shows the action's own text, a tool bar holds the button; only the button
      // needs a name.
      auto* button = qobject_cast<QAbstractButton*>(shown);
      if (button && window->isAncestorOf(button)) apply(button, text);
    }
  }
}

}  // namespace marvento
