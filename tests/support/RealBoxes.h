#pragma once

// Lets every message box come up for real, as a modal QMessageBox, and closes each one with
// a key as the user would; keeps the titles of the boxes shown. Beeps are kept quiet.

#include "platform/MsgBox.h"

#include <QApplication>
#include <QMessageBox>
#include <QStringList>
#include <QTimer>
#include <QtTest>

namespace marvento::test {

class RealBoxes {
 public:
  explicit RealBoxes(Qt::Key closingKey = Qt::Key_Escape) : m_key(closingKey) {
    m_previousBox = SetMsgBoxHandler({});  // the real box
    m_realBox = SetMsgBoxHandler([this](const MsgBoxCall& call) {
      m_titles << call.title;
      return m_realBox(call);
    });
    m_previousBeep = SetBeepHandler([] {});
    m_closer.setInterval(30);
    QObject::connect(&m_closer, &QTimer::timeout, [this] {
      if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
        QTest::keyClick(box, m_key);
      }
    });
    m_closer.start();
  }
  ~RealBoxes() {
    m_closer.stop();
    SetMsgBoxHandler(std::move(m_previousBox));
    SetBeepHandler(std::move(m_previousBeep));
  }
  RealBoxes(const RealBoxes&) = delete;
  RealBoxes& operator=(const RealBoxes&) = delete;

  const QStringList& titles() const { return m_titles; }

 private:
  Qt::Key m_key;
  QTimer m_closer;
  QStringList m_titles;
  MsgBoxHandler m_previousBox;
  MsgBoxHandler m_realBox;
  BeepHandler m_previousBeep;
};

}  // namespace marvento::test
