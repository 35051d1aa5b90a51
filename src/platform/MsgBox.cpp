#include "platform/MsgBox.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

namespace marvento {

namespace {

int showMessageBox(const MsgBoxCall& call) {
  QMessageBox box(QApplication::activeWindow());
  box.setWindowTitle(call.title.isEmpty() ? QApplication::applicationName() : call.title);
  box.setText(call.prompt);
  box.setTextFormat(Qt::PlainText);
  switch (call.style & 0x70) {
    case vbCritical: box.setIcon(QMessageBox::Critical); break;
    case vbQuestion: box.setIcon(QMessageBox::Question); break;
    case vbExclamation: box.setIcon(QMessageBox::Warning); break;
    case vbInformation: box.setIcon(QMessageBox::Information); break;
    default: box.setIcon(QMessageBox::NoIcon); break;
  }
  if ((call.style & 0x0F) == vbOKCancel) {
    box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
    box.setDefaultButton(QMessageBox::Ok);
    box.setEscapeButton(QMessageBox::Cancel);
    box.button(QMessageBox::Cancel)->setText(QStringLiteral("Abbrechen"));
  } else {
    box.setStandardButtons(QMessageBox::Ok);
  }
  return box.exec() == QMessageBox::Cancel ? vbCancel : vbOK;
}

MsgBoxHandler& msgBoxHandler() {
  static MsgBoxHandler handler = showMessageBox;
  return handler;
}

BeepHandler& beepHandler() {
  static BeepHandler handler = [] { QApplication::beep(); };
  return handler;
}

}  // namespace

int MsgBox(const QString& prompt, int style, const QString& title) {
  return msgBoxHandler()(MsgBoxCall{prompt, style, title});
}

void Beep() {
  beepHandler()();
}

MsgBoxHandler SetMsgBoxHandler(MsgBoxHandler handler) {
  MsgBoxHandler previous = std::move(msgBoxHandler());
  msgBoxHandler() = handler ? std::move(handler) : MsgBoxHandler(showMessageBox);
  return previous;
}

BeepHandler SetBeepHandler(BeepHandler handler) {
  BeepHandler previous = std::move(beepHandler());
  beepHandler() = handler ? std::move(handler) : BeepHandler([] { QApplication::beep(); });
  return previous;
}

}  // namespace marvento
