#pragma once

#include <QString>
#include <QStringList>

#include <initializer_list>

class QWidget;

namespace marvento {

// What a screen reader says for one control of a window: the control's object name, its
// German name and, where the name does not say enough, the format it takes or the unit it
// shows. An empty description leaves the control's own (its tool tip) in place.
struct AccessibleText {
  const char* object;
  QString name;
  QString description;
};

// Gives each named control of `window` (the window itself included) its texts, and the
// label whose access key leads to the control its name, as screen readers read that. A name that
// belongs to a QAction goes to the tool bar buttons that show the action, which otherwise
// have no name at all, as they carry only an icon. A name that no control of the window has
// is reported as a warning, so that a table cannot drift from its window unnoticed.
void SetAccessibleTexts(QWidget* window, std::initializer_list<AccessibleText> texts);

}  // namespace marvento
