#include "distance/Compute.h"

#include "distance/Coordinates.h"
#include "distance/GreatCircle.h"
#include "distance/RunError.h"
#include "locator/CoordsToLocator.h"
#include "locator/LocatorToCoords.h"
#include "locator/QraToCoords.h"
#include "platform/MsgBox.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

#include <cmath>

namespace marvento {

namespace {

// Blanks only: a tab or line end typed into a field is part of the entry.
QString trimBlanks(const QString& text) {
  qsizetype first = 0;
  qsizetype last = text.size();
  while (first < last && text[first] == u' ') ++first;
  while (last > first && text[last - 1] == u' ') --last;
  return text.mid(first, last - first);
}

// Character by character, so that the length the checks looked at does not change
// (QString::toUpper turns a sharp s into two letters).
QString upperCase(QString text) {
  for (QChar& c : text) c = c.toUpper();
  return text;
}

const QString kIncomplete = QStringLiteral(" Unvollständige Eingabe !");

// A field that the command writes shows its text from the start, degrees and the first
// letters of a locator first, also where the text is the one it held already.
void write(QLineEdit* field, const QString& text) {
  field->setText(text);
  field->setCursorPosition(0);
}

}  // namespace

Route PickRoute(const ComputeEntries& entry, const ComputeMemory& memory) {
  if (entry.MyLg.isEmpty() || entry.MyBr.isEmpty() || entry.FremdLg.isEmpty() ||
      entry.FremdBr.isEmpty()) {
    return Route::A;
  }
  if (entry.MyLg != memory.LastMyLg || entry.MyBr != memory.LastMyBr) return Route::B;
  if (entry.FremdLoc.isEmpty() || entry.FremdLoc != memory.LastFremdLoc) return Route::C;
  if (entry.FremdLg != memory.LastFremdLg || entry.FremdBr != memory.LastFremdBr) return Route::D;
  if (entry.MyLoc.isEmpty() || entry.MyLoc != memory.LastMyLoc) return Route::E;
  return Route::F;
}

ComputeCommand::ComputeCommand(const ComputeFields& fields,
                               std::function<ComputePreferences()> preferences,
                               std::function<void()> writeGpsLog)
    : m_fields(fields),
      m_preferences(std::move(preferences)),
      m_writeGpsLog(std::move(writeGpsLog)) {
  Q_ASSERT(fields.tbMyLoc && fields.tbFremdLoc && fields.tbMyLg && fields.tbMyBr &&
           fields.tbFremdLg && fields.tbFremdBr && fields.lblEntfernung && fields.lblRichtung &&
           fields.Combo1);
}

void ComputeCommand::Compute() {
  m_prefs = m_preferences ? m_preferences() : ComputePreferences{};
  m_entry = {};
  m_WorkLoc.clear();
  m_WorkLg = 0;
  m_WorkBr = 0;
  m_CoordLg.clear();
  m_CoordBr.clear();
  m_MySide = false;

  const Step step = Run();
  if (step.kind == Step::Fault) HandleError(step.error);
}

ComputeCommand::Step ComputeCommand::Run() {
  const ComputeFields& f = m_fields;
  m_entry.FremdLoc = trimBlanks(f.tbFremdLoc->text());
  m_entry.MyLoc = trimBlanks(f.tbMyLoc->text());
  m_entry.MyLg = trimBlanks(f.tbMyLg->text());
  m_entry.MyBr = trimBlanks(f.tbMyBr->text());
  m_entry.FremdLg = trimBlanks(f.tbFremdLg->text());
  m_entry.FremdBr = trimBlanks(f.tbFremdBr->text());

  if (m_entry.MyLoc.isEmpty() && (m_entry.MyLg.isEmpty() || m_entry.MyBr.isEmpty())) {
    Beep();
    MsgBox(QStringLiteral("Mein Locator"), vbExclamation, kIncomplete);
    f.tbMyLoc->setFocus();
    return end();
  }
  if (m_entry.FremdLoc.isEmpty() && (m_entry.FremdLg.isEmpty() || m_entry.FremdBr.isEmpty())) {
    Beep();
    MsgBox(QStringLiteral("Fremdlocator"), vbExclamation, kIncomplete);
    f.tbFremdLoc->setFocus();
    return end();
  }

  Step s;
  switch (PickRoute(m_entry, m_memory)) {
    case Route::A:
      if (s = ResolveMySide(); !s.goOn()) return s;
      if (s = ResolveFremdSide(); !s.goOn()) return s;
      if (s = SolveDistance(); !s.goOn()) return s;
      LogIfOn();
      RememberAll(true);
      break;
    case Route::B:
      if (s = OwnCoordsToLocator(); !s.goOn()) return s;
      if (s = SolveDistance(); !s.goOn()) return s;
      RememberAll(true);
      break;
    case Route::C:
      if (s = ResolveFremdSide(); !s.goOn()) return s;
      if (s = SolveDistance(); !s.goOn()) return s;
      RememberRemote();
      break;
    case Route::D:
      if (s = RemoteCoordsToLocator(); !s.goOn()) return s;
      if (s = SolveDistance(); !s.goOn()) return s;
      RememberRemote();
      break;
    case Route::E:
      if (s = ResolveMySide(); !s.goOn()) return s;
      if (s = SolveDistance(); !s.goOn()) return s;
      LogIfOn();
      RememberOwn();
      break;
    case Route::F:
      if (s = SolveDistance(); !s.goOn()) return s;
      RememberAll(true);
      break;
  }
  return next();
}

ComputeCommand::Step ComputeCommand::OwnCoordsToLocator() {
  m_CoordLg = m_entry.MyLg;
  m_CoordBr = m_entry.MyBr;
  if (Step s = ParseCoordinates(); !s.goOn()) return s;
  m_memory.MyBr = m_WorkBr;
  m_memory.MyLg = m_WorkLg;
  write(m_fields.tbMyLoc, CoordsToLocator(m_WorkLg, m_WorkBr, m_prefs.Loc10st));
  // Compared with the field as the command found it, not with the locator just made.
  if (m_memory.LastMyLoc != m_entry.MyLoc) LogIfOn();
  return next();
}

ComputeCommand::Step ComputeCommand::RemoteCoordsToLocator() {
  m_CoordLg = m_entry.FremdLg;
  m_CoordBr = m_entry.FremdBr;
  if (Step s = ParseCoordinates(); !s.goOn()) return s;
  m_memory.FremdBr = m_WorkBr;
  m_memory.FremdLg = m_WorkLg;
  write(m_fields.tbFremdLoc, CoordsToLocator(m_WorkLg, m_WorkBr, m_prefs.Loc10st));
  return next();
}

ComputeCommand::Step ComputeCommand::ResolveMySide() {
  m_WorkLoc = m_entry.MyLoc;
  if (m_WorkLoc.isEmpty() && !m_entry.MyLg.isEmpty() && !m_entry.MyBr.isEmpty()) {
    m_CoordLg = m_entry.MyLg;
    m_CoordBr = m_entry.MyBr;
    if (Step s = ParseCoordinates(); !s.goOn()) return s;
    m_memory.MyBr = m_WorkBr;
    m_memory.MyLg = m_WorkLg;
    m_WorkLoc = CoordsToLocator(m_WorkLg, m_WorkBr, m_prefs.Loc10st);
    write(m_fields.tbMyLoc, m_WorkLoc);
  }
  if (Step s = CheckLength(); !s.goOn()) return s;
  m_MySide = true;
  m_WorkLoc = upperCase(m_WorkLoc);
  if (Step s = LocatorToFields(); !s.goOn()) return s;
  m_memory.MyBr = m_WorkBr;
  m_memory.MyLg = m_WorkLg;
  write(m_fields.tbMyLoc, m_WorkLoc);
  return next();
}

ComputeCommand::Step ComputeCommand::ResolveFremdSide() {
  m_MySide = false;
  m_WorkLoc = m_entry.FremdLoc;
  // "+" stands for "no remote station yet": nothing to show, nothing to say.
  if (m_WorkLoc == u"+") return end();
  m_WorkLoc = upperCase(m_WorkLoc);
  write(m_fields.tbFremdLoc, m_WorkLoc);
  if (Step s = LocatorToFields(); !s.goOn()) return s;
  m_memory.FremdBr = m_WorkBr;
  m_memory.FremdLg = m_WorkLg;
  return next();
}

ComputeCommand::Step ComputeCommand::LocatorToFields() {
  if (m_WorkLoc.size() == 5) {
    const QString error = QraToCoords(m_WorkLoc, m_WorkLg, m_WorkBr);
    if (!error.isEmpty()) {
      Beep();
      MsgBox(m_WorkLoc, vbExclamation, error);
      return end();
    }
  }
  if (m_WorkLoc.isEmpty() && !m_entry.FremdLg.isEmpty() && !m_entry.FremdBr.isEmpty()) {
    m_CoordLg = m_entry.FremdLg;
    m_CoordBr = m_entry.FremdBr;
    if (Step s = ParseCoordinates(); !s.goOn()) return s;
    m_memory.FremdBr = m_WorkBr;
    m_memory.FremdLg = m_WorkLg;
    m_WorkLoc = CoordsToLocator(m_WorkLg, m_WorkBr, m_prefs.Loc10st);
    write(m_fields.tbFremdLoc, m_WorkLoc);
  }
  if (Step s = CheckLength(); !s.goOn()) return s;
  if (m_WorkLoc.size() > 5 && !LocatorToCoords(m_WorkLoc, m_WorkLg, m_WorkBr)) return end();
  return m_MySide ? WriteCoordinates(m_fields.tbMyLg, m_fields.tbMyBr)
                  : WriteCoordinates(m_fields.tbFremdLg, m_fields.tbFremdBr);
}

ComputeCommand::Step ComputeCommand::CheckLength() {
  if (m_WorkLoc.size() >= 5 && m_WorkLoc.size() <= 10) return next();
  Beep();
  MsgBox(m_WorkLoc, vbExclamation, QStringLiteral(" Falsche Eingabe !"));
  return end();
}

ComputeCommand::Step ComputeCommand::SolveDistance() {
  // A side without numbers yet: the first run after start can reach here through route B
  // or D with the other side typed but not yet read.
  if (!m_memory.MyBr || !m_memory.MyLg) {
    m_CoordLg = m_entry.MyLg;
    m_CoordBr = m_entry.MyBr;
    if (Step s = ParseCoordinates(); !s.goOn()) return s;
    m_memory.MyBr = m_WorkBr;
    m_memory.MyLg = m_WorkLg;
    write(m_fields.tbMyLoc, CoordsToLocator(m_WorkLg, m_WorkBr, m_prefs.Loc10st));
  }
  if (!m_memory.FremdBr || !m_memory.FremdLg) {
    m_CoordLg = m_entry.FremdLg;
    m_CoordBr = m_entry.FremdBr;
    if (Step s = ParseCoordinates(); !s.goOn()) return s;
    m_memory.FremdBr = m_WorkBr;
    m_memory.FremdLg = m_WorkLg;
    write(m_fields.tbFremdLoc, CoordsToLocator(m_WorkLg, m_WorkBr, m_prefs.Loc10st));
  }

  const double myLg = *m_memory.MyLg;
  const double myBr = *m_memory.MyBr;
  const double fremdLg = *m_memory.FremdLg;
  const double fremdBr = *m_memory.FremdBr;
  const double dLg = myLg - fremdLg;
  const double dBr = myBr - fremdBr;
  if (std::fabs(dLg) < 8.33e-07 && std::fabs(dBr) < 1.27e-06) return fault(kDivisionByZero);
  if (std::fabs(dLg) > 360 && std::fabs(dBr) > 180) return fault(kInvalidCall);

  const int error =
      ShowDistanceBearing(myBr, fremdBr, myLg, fremdLg, m_fields.Combo1->currentText(),
                          m_fields.lblEntfernung, m_fields.lblRichtung);
  return error ? fault(error) : next();
}

ComputeCommand::Step ComputeCommand::ParseCoordinates() {
  const CoordinateRead read = marvento::ParseCoordinates(m_CoordLg, m_CoordBr, m_prefs.GradDezimal);
  if (read.ok) {
    m_WorkLg = read.Lg;
    m_WorkBr = read.Br;
    return next();
  }
  MsgBox(read.prompt, vbExclamation, kCoordinateTitle);
  return end();
}

ComputeCommand::Step ComputeCommand::WriteCoordinates(QLineEdit* lgField, QLineEdit* brField) {
  const auto lg = CoordinateText(m_WorkLg, m_prefs.GradDezimal);
  if (!lg) return fault(kOverflow);
  write(lgField, *lg);
  const auto br = CoordinateText(m_WorkBr, m_prefs.GradDezimal);
  if (!br) return fault(kOverflow);
  write(brField, *br);
  return next();
}

void ComputeCommand::LogIfOn() {
  if (m_prefs.logOn && m_writeGpsLog) m_writeGpsLog();
}

void ComputeCommand::HandleError(int error) {
  RememberAll(false);
  Beep();
  if (error == kInvalidCall) {
    m_fields.lblEntfernung->setText(QStringLiteral(" > 20000 km "));
    MsgBox(QStringLiteral("Entfernung: > 20000 km"), vbInformation,
           QStringLiteral(" Bitte auf astronomische Navigation übergehen ! "));
  } else if (error == kDivisionByZero) {
    m_fields.lblEntfernung->setText(QStringLiteral(" 0 "));
    MsgBox(QStringLiteral("Entfernung: < 1 m"), vbInformation,
           QStringLiteral(" Bitte Bandmaß benutzen ! "));
  }
}

void ComputeCommand::RememberAll(bool capitals) {
  RememberOwn();
  RememberRemote();
  if (capitals) {
    m_memory.LastFremdLoc = upperCase(m_memory.LastFremdLoc);
    m_memory.LastMyLoc = upperCase(m_memory.LastMyLoc);
  }
}

void ComputeCommand::RememberOwn() {
  m_memory.LastMyLoc = trimBlanks(m_fields.tbMyLoc->text());
  m_memory.LastMyLg = trimBlanks(m_fields.tbMyLg->text());
  m_memory.LastMyBr = trimBlanks(m_fields.tbMyBr->text());
}

void ComputeCommand::RememberRemote() {
  m_memory.LastFremdLoc = trimBlanks(m_fields.tbFremdLoc->text());
  m_memory.LastFremdLg = trimBlanks(m_fields.tbFremdLg->text());
  m_memory.LastFremdBr = trimBlanks(m_fields.tbFremdBr->text());
}

}  // namespace marvento
