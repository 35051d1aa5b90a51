#pragma once

#include "platform/MsgBox.h"

#include <QList>

#include <deque>

namespace marvento {

// Stands in for message boxes and the beep while it lives: records every call and answers
// from a script of button values (vbOK when the script has run out).
class MsgBoxRecorder {
 public:
  struct Entry {
    MsgBoxCall call;
    int beepsBefore = 0;  // beeps heard before this box since the previous one
  };

  MsgBoxRecorder() {
    m_previousBox = SetMsgBoxHandler([this](const MsgBoxCall& call) {
      m_entries.push_back({call, m_pendingBeeps});
      m_pendingBeeps = 0;
      if (m_answers.empty()) return static_cast<int>(vbOK);
      const int answer = m_answers.front();
      m_answers.pop_front();
      return answer;
    });
    m_previousBeep = SetBeepHandler([this] {
      ++m_beeps;
      ++m_pendingBeeps;
    });
  }
  ~MsgBoxRecorder() {
    SetMsgBoxHandler(std::move(m_previousBox));
    SetBeepHandler(std::move(m_previousBeep));
  }
  MsgBoxRecorder(const MsgBoxRecorder&) = delete;
  MsgBoxRecorder& operator=(const MsgBoxRecorder&) = delete;

  void answer(int button) { m_answers.push_back(button); }
  const QList<Entry>& entries() const { return m_entries; }
  int count() const { return static_cast<int>(m_entries.size()); }
  const MsgBoxCall& last() const { return m_entries.back().call; }
  int beeps() const { return m_beeps; }
  void clear() {
    m_entries.clear();
    m_beeps = 0;
    m_pendingBeeps = 0;
  }

 private:
  QList<Entry> m_entries;
  std::deque<int> m_answers;
  int m_beeps = 0;
  int m_pendingBeeps = 0;
  MsgBoxHandler m_previousBox;
  BeepHandler m_previousBeep;
};

}  // namespace marvento
