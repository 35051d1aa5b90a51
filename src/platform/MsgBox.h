#pragma once

#include <QString>

#include <functional>

namespace marvento {

// Button and icon values of a message box, added together as the style.
enum MsgBoxStyle : int {
  vbOKOnly = 0,
  vbOKCancel = 1,
  vbCritical = 16,
  vbQuestion = 32,
  vbExclamation = 48,
  vbInformation = 64,
};

// What the user pressed.
enum MsgBoxResult : int {
  vbOK = 1,
  vbCancel = 2,
};

struct MsgBoxCall {
  QString prompt;
  int style = vbOKOnly;
  QString title;
};

// Shows a modal QMessageBox: window title = title (the application name when empty),
// text = prompt, icon and buttons by style. Returns vbOK or vbCancel.
int MsgBox(const QString& prompt, int style = vbOKOnly, const QString& title = {});

// The warning sound before most messages.
void Beep();

// Every message box and beep goes through these handlers; tests replace them.
// Each setter returns the handler it replaced.
using MsgBoxHandler = std::function<int(const MsgBoxCall&)>;
using BeepHandler = std::function<void()>;
MsgBoxHandler SetMsgBoxHandler(MsgBoxHandler handler);
BeepHandler SetBeepHandler(BeepHandler handler);

}  // namespace marvento
