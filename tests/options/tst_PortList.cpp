#include "options/PortList.h"

#include "platform/CommControl.h"
#include "support/Pty.h"

#include <QComboBox>
#include <QGuiApplication>
#include <QSerialPort>
#include <QTemporaryDir>
#include <QtTest>

#include <map>
#include <memory>

using marvento::CommControl;
using marvento::test::Pty;

class tst_PortList : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    QVERIFY(m_config.isValid());
    qputenv("XDG_CONFIG_HOME", m_config.path().toLocal8Bit());
  }
  void init() { marvento::test::SetNoPortDevices(); }
  void cleanup() { marvento::test::ClearPortDevices(); }

  // Errors count missing and busy ports and refused openings.
  void scan() {
    const struct {
      QList<int> freePorts, busyPorts;
      const char* settings;
      int comNumberBefore;
      QStringList list;
      int comNumber, busyPort, errors;  // busyPort 0: the scan met none
    } cases[] = {
        {{1, 3}, {}, "4800,N,8,1", 5, {"Com1", "Com3"}, 3, 0, 27},  // beyond them: the last
        {{}, {}, "4800,N,8,1", 4, {}, 4, 0, 29},
        {{9}, {4, 12}, "4800,N,8,1", 1, {"Com4", "Com9", "Com12"}, 1, 12, 28},  // higher stays
        {{}, {29}, "4800,N,8,1", 6, {"Com29"}, 6, 29, 29},
        {{4}, {}, "abc,N,8,1", 9, {"Com4"}, 4, 0, 29},  // an unreadable rate: free
    };
    for (const auto& c : cases) {
      marvento::test::SetNoPortDevices();
      std::map<int, std::unique_ptr<Pty>> ptys;
      std::vector<std::unique_ptr<QSerialPort>> holders;
      for (const int number : c.freePorts + c.busyPorts) {
        auto& pty = ptys[number] = std::make_unique<Pty>();
        QVERIFY(pty->ok());
        marvento::test::SetPortDevice(number, pty->path());
      }
      for (const int number : c.busyPorts) {
        auto& holder = holders.emplace_back(std::make_unique<QSerialPort>(ptys[number]->path()));
        QVERIFY(holder->open(QIODevice::ReadWrite));
      }
      CommControl control;
      control.setSettings(c.settings);
      QComboBox combo;
      combo.setEditable(true);
      combo.addItem(QStringLiteral("left over"));

      const marvento::PortScanOutcome outcome =
          marvento::FillPortList(combo, control, static_cast<std::int16_t>(c.comNumberBefore));
      QStringList shown;
      for (int i = 0; i < combo.count(); ++i) shown << combo.itemText(i);
      QCOMPARE(shown, c.list);
      QCOMPARE(combo.currentIndex(), combo.count() - 1);
      QCOMPARE(outcome.comNumber, c.comNumber);
      QCOMPARE(outcome.busyPort.value_or(0), c.busyPort);
      QCOMPARE(outcome.errorCount, c.errors);
      QVERIFY(!outcome.gaveUp && !control.portOpen());
      QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
    }
  }

  // With the control left open by someone, both steps fail for every port: the scan stops
  // at the 40th failure, inside port 20.
  void givesUpAtTheErrorLimit() {
    Pty held, free;
    QVERIFY(held.ok() && free.ok());
    marvento::test::SetPortDevice(5, held.path());
    marvento::test::SetPortDevice(25, free.path());
    CommControl control;
    QVERIFY(control.setCommPort(5).ok());
    QVERIFY(control.setPortOpen(true).ok());

    QComboBox combo;
    combo.setEditable(true);
    const marvento::PortScanOutcome outcome = marvento::FillPortList(combo, control, 7);

    QVERIFY(outcome.gaveUp);
    QCOMPARE(outcome.errorCount, 40);
    QCOMPARE(combo.count(), 19);
    QCOMPARE(combo.currentIndex(), -1);
    QCOMPARE(outcome.busyPort, std::optional<std::int16_t>(20));
    QCOMPARE(outcome.comNumber, 7);
    QVERIFY(control.portOpen());
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
  }

 private:
  QTemporaryDir m_config;
};

QTEST_MAIN(tst_PortList)
#include "tst_PortList.moc"
