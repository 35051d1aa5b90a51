// marvento-log as a script sees it: a real process, its exit code, standard output and
// standard error.
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString kTool = QStringLiteral(MARVENTO_BUILD_DIR "/src/marvento-log");

struct Run {
  int code = -1;
  QString out, err;
};

Run run(const QStringList& args) {
  QProcess p;
  p.start(kTool, args);
  Run r;
  if (!p.waitForFinished(60000)) return r;
  r.code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
  r.out = QString::fromLocal8Bit(p.readAllStandardOutput());
  r.err = QString::fromLocal8Bit(p.readAllStandardError());
  return r;
}

QString data(const char* name) {
  return QStringLiteral(MARVENTO_CONTEST_DATA "/") + QLatin1String(name);
}

QByteArray readAll(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

}  // namespace

class tst_MarventoLog : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QVERIFY2(QFile::exists(kTool), qPrintable(kTool)); }

  void check_data() {
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("out");
    QTest::newRow("clean") << data("clean.edi") << 0 << "Ergebnis: alle Angaben stimmen.";
    QTest::newRow("differences")
        << data("differences.edi") << 1
        << "Zeile 23: 1402 OK1KIR JO70ED beansprucht 311, nachgerechnet 274";
    QTest::newRow("untidy") << data("untidy.edi") << 1 << "Zeile 21: 11 Felder statt 15";
    QTest::newRow("windows-1252") << data("cp1252.edi") << 1
                                  << "beansprucht 1030, nachgerechnet 930";
  }
  void check() {
    QFETCH(QString, file);
    QFETCH(int, code);
    QFETCH(QString, out);
    const Run r = run({QStringLiteral("check"), file});
    QCOMPARE(r.code, code);
    QVERIFY2(r.out.contains(out), qPrintable(r.out));
    QVERIFY(r.err.isEmpty());
  }

  void unreadable_data() {
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("err");
    QTest::newRow("missing file") << QStringList{"check", "/nonexistent/log.edi"} << "nicht öffnen";
    QTest::newRow("no EDI") << QStringList{"check",
                                           QStringLiteral(MARVENTO_BUILD_DIR "/CMakeCache.txt")}
                            << "[REG1TEST;1] fehlt";
    QTest::newRow("no command") << QStringList{} << "kein Befehl";
    QTest::newRow("unknown command") << QStringList{"prüfe", "x"} << "unbekannter Befehl";
    QTest::newRow("fix without output") << QStringList{"fix", data("clean.edi")} << "AUS.edi";
    QTest::newRow("bad own locator")
        << QStringList{"adif", data("clean.edi"), "/tmp/x.adi", "--locator", "XY"} << "ungültig";
  }
  void unreadable() {
    QFETCH(QStringList, args);
    QFETCH(QString, err);
    const Run r = run(args);
    QCOMPARE(r.code, 2);
    QVERIFY2(r.err.contains(err), qPrintable(r.err));
    QVERIFY(r.out.isEmpty());
  }

  void help() {
    const Run r = run({QStringLiteral("--help")});
    QCOMPARE(r.code, 0);
    for (const char* word : {"Aufruf: marvento-log", "check LOG.edi", "fix EIN.edi AUS.edi",
                             "--locator", "--replace", "Rückgabewert"})
      QVERIFY2(r.out.contains(QString::fromUtf8(word)), word);
  }

  // fix, then check: the corrected log holds; the original stays as it was.
  void fixThenCheck_data() {
    QTest::addColumn<QString>("file");
    for (const char* f : {"clean.edi", "differences.edi", "untidy.edi", "cp1252.edi"})
      QTest::newRow(f) << data(f);
  }
  void fixThenCheck() {
    QFETCH(QString, file);
    QTemporaryDir dir;
    const QString out = dir.filePath(QStringLiteral("fixed.edi"));
    const QByteArray before = readAll(file);
    const Run fixed = run({QStringLiteral("fix"), file, out});
    QCOMPARE(fixed.code, 0);
    QVERIFY(fixed.out.contains(QStringLiteral("geschrieben")));
    QCOMPARE(readAll(file), before);
    const Run checked = run({QStringLiteral("check"), out});
    QVERIFY2(checked.code == 0, qPrintable(checked.out));
    if (file.endsWith(QLatin1String("clean.edi"))) QCOMPARE(readAll(out), before);
  }

  void fixRefusesTheOriginal() {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("log.edi"));
    QVERIFY(QFile::copy(data("differences.edi"), path));
    const Run r = run({QStringLiteral("fix"), path, path});
    QCOMPARE(r.code, 2);
    QCOMPARE(readAll(path), readAll(data("differences.edi")));
  }

  void adif() {
    QTemporaryDir dir;
    const QString in = dir.filePath(QStringLiteral("in.adi")),
                  out = dir.filePath(QStringLiteral("out.adi"));
    {
      QFile f(in);
      QVERIFY(f.open(QIODevice::WriteOnly));
      f.write("<ADIF_VER:5>3.1.4<EOH>\n<CALL:5>DL1AB <GRIDSQUARE:6>JO50WN <DISTANCE:1>9 <EOR>\n");
    }
    Run r = run(
        {QStringLiteral("adif"), in, out, QStringLiteral("--locator"), QStringLiteral("JO62QM")});
    QCOMPARE(r.code, 0);
    QVERIFY2(r.out.contains(QStringLiteral("ergänzt: 1")), qPrintable(r.out));
    QCOMPARE(readAll(out), QByteArray("<ADIF_VER:5>3.1.4<EOH>\n<CALL:5>DL1AB <GRIDSQUARE:6>JO50WN "
                                      "<DISTANCE:1>9 <ANT_AZ:5>206.1 <EOR>\n"));
    r = run({QStringLiteral("adif"), in, out, QStringLiteral("--locator=JO62QM"),
             QStringLiteral("--replace")});
    QCOMPARE(r.code, 0);
    QCOMPARE(readAll(out), QByteArray("<ADIF_VER:5>3.1.4<EOH>\n<CALL:5>DL1AB <GRIDSQUARE:6>JO50WN "
                                      "<DISTANCE:5>241.4 <ANT_AZ:5>206.1 <EOR>\n"));
  }
};

QTEST_GUILESS_MAIN(tst_MarventoLog)
#include "tst_MarventoLog.moc"
