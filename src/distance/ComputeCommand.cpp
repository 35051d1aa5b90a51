#include "distance/ComputeCommand.h"

#include "platform/MsgBox.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

namespace marvento {

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

QLineEdit* ComputeCommand::field(ComputeField f) const {
  switch (f) {
    case ComputeField::MyLoc: return m_fields.tbMyLoc;
    case ComputeField::MyLg: return m_fields.tbMyLg;
    case ComputeField::MyBr: return m_fields.tbMyBr;
    case ComputeField::FremdLoc: return m_fields.tbFremdLoc;
    case ComputeField::FremdLg: return m_fields.tbFremdLg;
    case ComputeField::FremdBr: return m_fields.tbFremdBr;
  }
  return nullptr;
}

void ComputeCommand::Compute() {
  ComputeTexts texts;
  for (std::size_t i = 0; i < kComputeFieldCount; ++i) {
    texts.text[i] = field(static_cast<ComputeField>(i))->text();
  }
  ComputeOutcome out =
      DecideCompute(std::move(texts), m_fields.Combo1->currentText(), std::move(m_memory),
                    m_preferences ? m_preferences() : ComputePreferences{});

  for (std::size_t i = 0; i < kComputeFieldCount; ++i) {
    if (!out.written[i]) continue;
    QLineEdit* edit = field(static_cast<ComputeField>(i));
    edit->setText(out.fields.text[i]);
    edit->setCursorPosition(0);
  }
  if (out.entfernung) m_fields.lblEntfernung->setText(*out.entfernung);
  if (out.richtung) m_fields.lblRichtung->setText(*out.richtung);
  m_memory = std::move(out.memory);
  if (out.writeLog && m_writeGpsLog) m_writeGpsLog();
  if (out.beep) Beep();
  if (out.refusal) {
    MsgBox(out.refusal->prompt, out.refusal->style, out.refusal->title);
    if (out.refusal->focus) field(*out.refusal->focus)->setFocus();
  }
}

}  // namespace marvento
