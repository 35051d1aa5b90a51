#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class QLabel;
class QLineEdit;
class QTimer;

namespace marvento {

class Clock;

// The date in the machine's short form, with four-digit years ("18.11.2026" in German).
QString LogDateText(QDate date);

// Appends text to a regular file, creating it if missing: all of it, or nothing (the file is
// cut back to its old length when the disk fills up). A symbolic link or any other kind of
// file in its place is refused and left as it is. Nothing on success, else a German reason
// with the full path.
std::optional<QString> AppendToFile(const QString& path, const QString& text);

// The controls the log reads (panel2 is the second status panel) and writes.
struct GpsLogView {
  QLabel* panel2 = nullptr;
  QLineEdit* tbMyLoc = nullptr;
  QLabel* lbInfo = nullptr;
  QTimer* Timer1 = nullptr;
};

// The track of places passed, "GPS_Protokoll.txt" in the current directory: lines of date,
// GPS time and locator (UTF-8, CR LF), never two in a row with the same locator or the same
// time.
class GpsLog {
 public:
  static inline const QString kFileName = QStringLiteral("GPS_Protokoll.txt");

  // receptionOn tells whether GPS reception is on at the moment of a write.
  GpsLog(std::function<bool()> receptionOn, const GpsLogView& view, Clock& clock);

  // Appends a line if both the panel time and tbMyLoc differ from the last line written.
  // Timer1 is stopped around the write while reception is on and started again after it,
  // also when the write fails; a failure is told in lbInfo and the line is tried again at
  // the next call.
  void WriteGpsLog();

  // The failure of the last write, until a line is written again; empty when all is well.
  const QString& warning() const { return m_warning; }
  // Puts the pending warning back into lbInfo (a poll clears the label).
  void showWarning();

  const QString& LastLogTime() const { return m_lastLogTime; }
  const QString& LastLogLoc() const { return m_lastLogLoc; }

 private:
  std::function<bool()> m_receptionOn;
  GpsLogView m_view;
  Clock& m_clock;
  QString m_lastLogTime;
  QString m_lastLogLoc;
  QString m_warning;
};

}  // namespace marvento
