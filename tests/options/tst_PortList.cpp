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
using marvento::Module1;
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

  void scan_data();
  void scan();
  void givesUpAtTheErrorLimit();

 private:
  QTemporaryDir m_config;
};

void tst_PortList::scan_data() {
  QTest::addColumn<QList<int>>("freePorts");
  QTest::addColumn<QList<int>>("busyPorts");
  QTest::addColumn<QString>("settings");
  QTest::addColumn<int>("comNumberBefore");
  QTest::addColumn<int>("busyPortBefore");
  QTest::addColumn<QStringList>("list");
  QTest::addColumn<int>("comNumber");
  QTest::addColumn<int>("busyPort");
  QTest::addColumn<int>("errors");  // missing and busy ports and refused openings

  const QStringList com1com3{"Com1", "Com3"};
  QTest::newRow("Com1 and Com3, stored 3")
      << QList<int>{1, 3} << QList<int>{} << "4800,N,8,1" << 3 << 0 << com1com3 << 3 << 0 << 27;
  QTest::newRow("Com1 and Com3, stored 1")
      << QList<int>{1, 3} << QList<int>{} << "4800,N,8,1" << 1 << 0 << com1com3 << 1 << 0 << 27;
  QTest::newRow("Com1 and Com3, stored 5 beyond them")
      << QList<int>{1, 3} << QList<int>{} << "4800,N,8,1" << 5 << 0 << com1com3 << 3 << 0 << 27;
  QTest::newRow("no port at all") << QList<int>{} << QList<int>{} << "4800,N,8,1" << 4 << 0
                                  << QStringList{} << 4 << 0 << 29;
  QTest::newRow("no port at all keeps an earlier busy port")
      << QList<int>{} << QList<int>{} << "4800,N,8,1" << 4 << 7 << QStringList{} << 4 << 7 << 29;
  QTest::newRow("Com2 busy, stored 2, corrected to the free Com1")
      << QList<int>{1} << QList<int>{2} << "4800,N,8,1" << 2 << 0 << QStringList{"Com1", "Com2"}
      << 1 << 2 << 28;
  QTest::newRow("two busy ports: the higher one stays")
      << QList<int>{9} << QList<int>{4, 12} << "4800,N,8,1" << 1 << 0
      << QStringList{"Com4", "Com9", "Com12"} << 1 << 12 << 28;
  QTest::newRow("only busy: number unchanged") << QList<int>{} << QList<int>{29} << "4800,N,8,1"
                                               << 6 << 0 << QStringList{"Com29"} << 6 << 29 << 29;
  QTest::newRow("unreadable rate counts the port as free")
      << QList<int>{4} << QList<int>{} << "abc,N,8,1" << 9 << 0 << QStringList{"Com4"} << 4 << 0
      << 29;
}

void tst_PortList::scan() {
  QFETCH(QList<int>, freePorts);
  QFETCH(QList<int>, busyPorts);
  QFETCH(QString, settings);
  QFETCH(int, comNumberBefore);
  QFETCH(int, busyPortBefore);
  QFETCH(QStringList, list);
  QFETCH(int, comNumber);
  QFETCH(int, busyPort);
  QFETCH(int, errors);

  std::map<int, std::unique_ptr<Pty>> ptys;
  std::vector<std::unique_ptr<QSerialPort>> holders;
  for (const int number : freePorts + busyPorts) {
    auto& pty = ptys[number] = std::make_unique<Pty>();
    QVERIFY(pty->ok());
    marvento::test::SetPortDevice(number, pty->path());
  }
  for (const int number : busyPorts) {
    auto& holder = holders.emplace_back(std::make_unique<QSerialPort>(ptys[number]->path()));
    QVERIFY(holder->open(QIODevice::ReadWrite));
  }

  Module1 state;
  state.ComNumber = static_cast<std::int16_t>(comNumberBefore);
  state.BusyPort = static_cast<std::int16_t>(busyPortBefore);
  CommControl control;
  control.setSettings(settings);
  QComboBox combo;
  combo.setEditable(true);
  combo.addItem(QStringLiteral("left over"));

  const marvento::PortScanOutcome outcome = marvento::FillPortList(combo, control, state);

  QStringList shown;
  for (int i = 0; i < combo.count(); ++i) {
    shown << combo.itemText(i);
    const int number = combo.itemText(i).mid(3).toInt();
    QCOMPARE(combo.itemData(i, Qt::ToolTipRole).toString(), ptys.at(number)->path());
  }
  QCOMPARE(shown, list);
  QCOMPARE(combo.currentIndex(), combo.count() - 1);
  QCOMPARE(state.ComNumber, comNumber);
  QCOMPARE(state.BusyPort, busyPort);
  QCOMPARE(outcome.errorCount, errors);
  QVERIFY(!outcome.gaveUp);
  QVERIFY(!control.portOpen());
  QCOMPARE(control.commPort(), 29);
  QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
}

// With the control left open by someone, both steps fail for every port: the scan stops
// at the 40th failure, inside port 20.
void tst_PortList::givesUpAtTheErrorLimit() {
  Pty held, free;
  QVERIFY(held.ok() && free.ok());
  marvento::test::SetPortDevice(5, held.path());
  marvento::test::SetPortDevice(25, free.path());
  CommControl control;
  QVERIFY(control.setCommPort(5).ok());
  QVERIFY(control.setPortOpen(true).ok());

  Module1 state;
  state.ComNumber = 7;
  QComboBox combo;
  combo.setEditable(true);
  const marvento::PortScanOutcome outcome = marvento::FillPortList(combo, control, state);

  QVERIFY(outcome.gaveUp);
  QCOMPARE(outcome.errorCount, 40);
  QCOMPARE(combo.count(), 19);
  QCOMPARE(combo.itemText(0), QStringLiteral("Com1"));
  QCOMPARE(combo.itemText(18), QStringLiteral("Com19"));
  QCOMPARE(combo.currentIndex(), -1);
  QCOMPARE(state.BusyPort, 20);
  QCOMPARE(state.ComNumber, 7);
  QVERIFY(control.portOpen());
  QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
}

QTEST_MAIN(tst_PortList)
#include "tst_PortList.moc"
