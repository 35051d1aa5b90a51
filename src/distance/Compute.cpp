#include "distance/Compute.h"

#include "distance/Coordinates.h"
#include "distance/GreatCircle.h"
#include "distance/RunError.h"
#include "locator/CoordsToLocator.h"
#include "locator/LocatorToCoords.h"
#include "locator/QraToCoords.h"

#include <cmath>

namespace marvento {

namespace {

using F = ComputeField;

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

constexpr int kExclamation = 48;
constexpr int kInformation = 64;

struct Position {
  double Lg = 0;
  double Br = 0;
};

enum class Side { Own, Remote };

// How a step ended: go on, the run ends (its refusal is in the outcome), or a run-time
// error that the run's end turns into a beep and perhaps a remark.
struct [[nodiscard]] Step {
  enum Kind { Next, End, Fault };
  Kind kind = Next;
  int error = 0;
  bool goOn() const { return kind == Next; }
};
constexpr Step next() {
  return {};
}
constexpr Step end() {
  return {Step::End, 0};
}
constexpr Step fault(int error) {
  return {Step::Fault, error};
}

// A position, or the step that ended the run instead.
struct Located {
  Position at;
  Step step;
};

// One run: what was typed, what it decides.
struct Run {
  const ComputeTexts entry;  // the field texts without blanks at both ends
  const ComputePreferences prefs;
  ComputeOutcome out;

  void write(F field, const QString& text) {
    out.fields[field] = text;
    out.written[static_cast<std::size_t>(field)] = true;
  }
  Step refuse(const QString& prompt, const QString& title, bool beep,
              std::optional<F> focus = std::nullopt) {
    out.beep = beep;
    out.refusal = ComputeRefusal{prompt, title, kExclamation, focus};
    return end();
  }
  void logIfOn() {
    if (prefs.logOn) out.writeLog = true;
  }
  void remember(Side side) {
    const QString loc = trimBlanks(out.fields[side == Side::Own ? F::MyLoc : F::FremdLoc]);
    const QString lg = trimBlanks(out.fields[side == Side::Own ? F::MyLg : F::FremdLg]);
    const QString br = trimBlanks(out.fields[side == Side::Own ? F::MyBr : F::FremdBr]);
    ComputeMemory& m = out.memory;
    (side == Side::Own ? m.LastMyLoc : m.LastFremdLoc) = loc;
    (side == Side::Own ? m.LastMyLg : m.LastFremdLg) = lg;
    (side == Side::Own ? m.LastMyBr : m.LastFremdBr) = br;
  }
  void rememberAll(bool capitals) {
    remember(Side::Own);
    remember(Side::Remote);
    if (capitals) {
      out.memory.LastFremdLoc = upperCase(out.memory.LastFremdLoc);
      out.memory.LastMyLoc = upperCase(out.memory.LastMyLoc);
    }
  }
  void setPosition(Side side, Position p) {
    ComputeMemory& m = out.memory;
    (side == Side::Own ? m.MyLg : m.FremdLg) = p.Lg;
    (side == Side::Own ? m.MyBr : m.FremdBr) = p.Br;
  }
};

Located readCoordinates(Run& run, const QString& lgText, const QString& brText) {
  const CoordinateRead read = ParseCoordinates(lgText, brText, run.prefs.GradDezimal);
  if (!read.ok) return {{}, run.refuse(read.prompt, kCoordinateTitle, false)};
  return {{read.Lg, read.Br}, next()};
}

Step checkLength(Run& run, const QString& loc) {
  if (loc.size() >= 5 && loc.size() <= 10) return next();
  return run.refuse(loc, QStringLiteral(" Falsche Eingabe !"), true);
}

Step writeCoordinates(Run& run, Side side, Position p) {
  const auto lg = CoordinateText(p.Lg, run.prefs.GradDezimal);
  if (!lg) return fault(kOverflow);
  run.write(side == Side::Own ? F::MyLg : F::FremdLg, *lg);
  const auto br = CoordinateText(p.Br, run.prefs.GradDezimal);
  if (!br) return fault(kOverflow);
  run.write(side == Side::Own ? F::MyBr : F::FremdBr, *br);
  return next();
}

// The coordinates of a side from its locator: the old QRA form has five characters, a
// Maidenhead locator six to ten. An empty remote locator is made from the remote coordinates.
Located locatorToFields(Run& run, QString loc, Side side) {
  Position at;
  if (loc.size() == 5) {
    const QString error = QraToCoords(loc, at.Lg, at.Br);
    if (!error.isEmpty()) return {{}, run.refuse(loc, error, true)};
  }
  if (loc.isEmpty() && !run.entry[F::FremdLg].isEmpty() && !run.entry[F::FremdBr].isEmpty()) {
    const Located typed = readCoordinates(run, run.entry[F::FremdLg], run.entry[F::FremdBr]);
    if (!typed.step.goOn()) return typed;
    run.setPosition(Side::Remote, typed.at);
    loc = CoordsToLocator(typed.at.Lg, typed.at.Br, run.prefs.Loc10st);
    run.write(F::FremdLoc, loc);
  }
  if (Step s = checkLength(run, loc); !s.goOn()) return {{}, s};
  if (loc.size() > 5) {
    const LocatorDecode d = DecodeLocator(loc);
    if (d.status != LocatorDecode::Ok) {
      return {{}, run.refuse(d.shown, QStringLiteral(" Falscher Locator !"), true)};
    }
    at = {d.Lg, d.Br};
  }
  return {at, writeCoordinates(run, side, at)};
}

Step ownCoordsToLocator(Run& run) {
  const Located typed = readCoordinates(run, run.entry[F::MyLg], run.entry[F::MyBr]);
  if (!typed.step.goOn()) return typed.step;
  run.setPosition(Side::Own, typed.at);
  run.write(F::MyLoc, CoordsToLocator(typed.at.Lg, typed.at.Br, run.prefs.Loc10st));
  // Compared with the field as the run found it, not with the locator just made.
  if (run.out.memory.LastMyLoc != run.entry[F::MyLoc]) run.logIfOn();
  return next();
}

Step remoteCoordsToLocator(Run& run) {
  const Located typed = readCoordinates(run, run.entry[F::FremdLg], run.entry[F::FremdBr]);
  if (!typed.step.goOn()) return typed.step;
  run.setPosition(Side::Remote, typed.at);
  run.write(F::FremdLoc, CoordsToLocator(typed.at.Lg, typed.at.Br, run.prefs.Loc10st));
  return next();
}

Step resolveOwnSide(Run& run) {
  QString loc = run.entry[F::MyLoc];
  if (loc.isEmpty() && !run.entry[F::MyLg].isEmpty() && !run.entry[F::MyBr].isEmpty()) {
    const Located typed = readCoordinates(run, run.entry[F::MyLg], run.entry[F::MyBr]);
    if (!typed.step.goOn()) return typed.step;
    run.setPosition(Side::Own, typed.at);
    loc = CoordsToLocator(typed.at.Lg, typed.at.Br, run.prefs.Loc10st);
    run.write(F::MyLoc, loc);
  }
  if (Step s = checkLength(run, loc); !s.goOn()) return s;
  loc = upperCase(loc);
  const Located decoded = locatorToFields(run, loc, Side::Own);
  if (!decoded.step.goOn()) return decoded.step;
  run.setPosition(Side::Own, decoded.at);
  run.write(F::MyLoc, loc);
  return next();
}

Step resolveRemoteSide(Run& run) {
  const QString typed = run.entry[F::FremdLoc];
  // "+" stands for "no remote station yet": nothing to show, nothing to say.
  if (typed == u"+") return end();
  const QString loc = upperCase(typed);
  run.write(F::FremdLoc, loc);
  const Located decoded = locatorToFields(run, loc, Side::Remote);
  if (!decoded.step.goOn()) return decoded.step;
  run.setPosition(Side::Remote, decoded.at);
  return next();
}

Step solveDistance(Run& run, const QString& radiusText) {
  ComputeMemory& m = run.out.memory;
  // A side without numbers yet: the first run after start can reach here through the
  // coordinate routes with the other side typed but not yet read.
  if (!m.MyBr || !m.MyLg) {
    const Located typed = readCoordinates(run, run.entry[F::MyLg], run.entry[F::MyBr]);
    if (!typed.step.goOn()) return typed.step;
    run.setPosition(Side::Own, typed.at);
    run.write(F::MyLoc, CoordsToLocator(typed.at.Lg, typed.at.Br, run.prefs.Loc10st));
  }
  if (!m.FremdBr || !m.FremdLg) {
    const Located typed = readCoordinates(run, run.entry[F::FremdLg], run.entry[F::FremdBr]);
    if (!typed.step.goOn()) return typed.step;
    run.setPosition(Side::Remote, typed.at);
    run.write(F::FremdLoc, CoordsToLocator(typed.at.Lg, typed.at.Br, run.prefs.Loc10st));
  }

  const double dLg = *m.MyLg - *m.FremdLg;
  const double dBr = *m.MyBr - *m.FremdBr;
  if (std::fabs(dLg) < 8.33e-07 && std::fabs(dBr) < 1.27e-06) return fault(kDivisionByZero);
  if (std::fabs(dLg) > 360 && std::fabs(dBr) > 180) return fault(kInvalidCall);

  const DistanceBearing r =
      SolveDistanceBearing(*m.MyBr, *m.FremdBr, *m.MyLg, *m.FremdLg, radiusText);
  run.out.entfernung = r.entfernung;
  run.out.richtung = r.richtung;
  return r.error ? fault(r.error) : next();
}

// The routes, step by step. Each ends by remembering what the window shows.
Step runRoute(Run& run, const QString& radiusText) {
  Step s;
  switch (run.out.route) {
    case Route::BothLocators:
      if (s = resolveOwnSide(run); !s.goOn()) return s;
      if (s = resolveRemoteSide(run); !s.goOn()) return s;
      if (s = solveDistance(run, radiusText); !s.goOn()) return s;
      run.logIfOn();
      run.rememberAll(true);
      break;
    case Route::OwnCoordinates:
      if (s = ownCoordsToLocator(run); !s.goOn()) return s;
      if (s = solveDistance(run, radiusText); !s.goOn()) return s;
      run.rememberAll(true);
      break;
    case Route::RemoteLocator:
      if (s = resolveRemoteSide(run); !s.goOn()) return s;
      if (s = solveDistance(run, radiusText); !s.goOn()) return s;
      run.remember(Side::Remote);
      break;
    case Route::RemoteCoordinates:
      if (s = remoteCoordsToLocator(run); !s.goOn()) return s;
      if (s = solveDistance(run, radiusText); !s.goOn()) return s;
      run.remember(Side::Remote);
      break;
    case Route::OwnLocator:
      if (s = resolveOwnSide(run); !s.goOn()) return s;
      if (s = solveDistance(run, radiusText); !s.goOn()) return s;
      run.logIfOn();
      run.remember(Side::Own);
      break;
    case Route::Unchanged:
      if (s = solveDistance(run, radiusText); !s.goOn()) return s;
      run.rememberAll(true);
      break;
  }
  return next();
}

// A run-time error remembers the fields as they stand and beeps; two of them have a remark.
void settleFault(Run& run, int error) {
  run.rememberAll(false);
  run.out.beep = true;
  if (error == kInvalidCall) {
    run.out.entfernung = QStringLiteral(" > 20000 km ");
    run.out.refusal =
        ComputeRefusal{QStringLiteral("Entfernung: > 20000 km"),
                       QStringLiteral(" Bitte auf astronomische Navigation übergehen ! "),
                       kInformation, std::nullopt};
  } else if (error == kDivisionByZero) {
    run.out.entfernung = QStringLiteral(" 0 ");
    run.out.refusal =
        ComputeRefusal{QStringLiteral("Entfernung: < 1 m"),
                       QStringLiteral(" Bitte Bandmaß benutzen ! "), kInformation, std::nullopt};
  }
}

}  // namespace

Route PickRoute(const ComputeTexts& entry, const ComputeMemory& memory) {
  if (entry[F::MyLg].isEmpty() || entry[F::MyBr].isEmpty() || entry[F::FremdLg].isEmpty() ||
      entry[F::FremdBr].isEmpty()) {
    return Route::BothLocators;
  }
  if (entry[F::MyLg] != memory.LastMyLg || entry[F::MyBr] != memory.LastMyBr) {
    return Route::OwnCoordinates;
  }
  if (entry[F::FremdLoc].isEmpty() || entry[F::FremdLoc] != memory.LastFremdLoc) {
    return Route::RemoteLocator;
  }
  if (entry[F::FremdLg] != memory.LastFremdLg || entry[F::FremdBr] != memory.LastFremdBr) {
    return Route::RemoteCoordinates;
  }
  if (entry[F::MyLoc].isEmpty() || entry[F::MyLoc] != memory.LastMyLoc) return Route::OwnLocator;
  return Route::Unchanged;
}

ComputeOutcome DecideCompute(ComputeTexts fields, const QString& radiusText, ComputeMemory memory,
                             const ComputePreferences& preferences) {
  ComputeTexts entry;
  for (std::size_t i = 0; i < kComputeFieldCount; ++i) entry.text[i] = trimBlanks(fields.text[i]);
  Run run{std::move(entry), preferences, {}};
  run.out.fields = std::move(fields);
  run.out.route = PickRoute(run.entry, memory);
  run.out.memory = std::move(memory);

  const QString incomplete = QStringLiteral(" Unvollständige Eingabe !");
  if (run.entry[F::MyLoc].isEmpty() &&
      (run.entry[F::MyLg].isEmpty() || run.entry[F::MyBr].isEmpty())) {
    (void)run.refuse(QStringLiteral("Mein Locator"), incomplete, true, F::MyLoc);
    return std::move(run.out);
  }
  if (run.entry[F::FremdLoc].isEmpty() &&
      (run.entry[F::FremdLg].isEmpty() || run.entry[F::FremdBr].isEmpty())) {
    (void)run.refuse(QStringLiteral("Fremdlocator"), incomplete, true, F::FremdLoc);
    return std::move(run.out);
  }

  const Step step = runRoute(run, radiusText);
  if (step.kind == Step::Fault) settleFault(run, step.error);
  return std::move(run.out);
}

}  // namespace marvento
