#pragma once

#include <QWidget>

namespace marvento {

// An invisible spot of a window through which the program speaks to a screen reader. It
// stands in the accessibility tree as a notification; each message becomes its name, and
// the spot is shown anew, which screen readers (Orca among them) take as a notification to
// read at once. A sighted user sees nothing of it.
class LiveRegion : public QWidget {
  Q_OBJECT

 public:
  explicit LiveRegion(QWidget* parent);

  void say(const QString& text);

 signals:
  // Each message, as the screen reader gets it; also where no screen reader listens.
  void said(const QString& text);
};

}  // namespace marvento
