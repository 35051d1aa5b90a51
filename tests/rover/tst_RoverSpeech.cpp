// Announcements through the real speech stack: Qt TextToSpeech's speech-dispatcher plugin, a
// speech-dispatcher started for the test, espeak-ng behind it.

#include "rover/RoverLink.h"
#include "rover/RoverSpeaker.h"

#include "platform/MsgBoxRecorder.h"
#include "support/Sanitizers.h"
#include "support/SpeechDaemon.h"

#include <QLabel>
#include <QSignalSpy>
#include <QtTest>

using namespace marvento;

class tst_RoverSpeech : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
#ifdef MARVENTO_ASAN
    // Under AddressSanitizer Qt's speech plug-in takes minutes to list the service's voices,
    // and libspeechd keeps the text of a failed connection; the normal build runs these tests.
    QSKIP("speech service tests run in the normal build");
#endif
  }
  // Three messages in a row: each reaches the daemon whole and in order, the later ones only
  // after the one before has been spoken; a crossing is spelled in the ICAO alphabet.
  void messagesReachTheSpeechServiceOneAfterTheOther() {
    test::SpeechDaemon daemon;
    if (!daemon.start())
      QSKIP("speech-dispatcher did not start here (sh tools/deps.sh installs it)");
    MsgBoxRecorder boxes;
    QLabel info;
    RoverSettings settings;
    settings.announce = true;
    RoverLink link(RoverView{nullptr, nullptr, &info}, RoverHooks{});
    link.apply(settings);
    QSignalSpy handed(&link.speaker(), &RoverSpeaker::speaking);

    GpsFix fix;
    fix.position = {52.52, 13.41};  // JO62QM
    link.takeFix(fix);
    link.say(QStringLiteral("Erste Ansage, etwas länger, damit die nächste warten muss."));
    fix.position = {52.52, 13.43};  // well inside JO62RM
    link.takeFix(fix);
    link.say(QStringLiteral("Dritte Ansage."));
    // Opening the service lists every voice it has: seconds, more under the sanitizers.
    QTRY_COMPARE_WITH_TIMEOUT(handed.count(), 1, 60000);  // the others wait for the first

    const QStringList expected = {
        QStringLiteral("Erste Ansage, etwas länger, damit die nächste warten muss."),
        // as the German voice gets it
        QStringLiteral("Neues Feld: Dschuliett Oscar sechs zwei Romeo Maik"),
        QStringLiteral("Dritte Ansage.")};
    QTRY_VERIFY2_WITH_TIMEOUT(daemon.queued().size() >= 3, qPrintable(daemon.log().right(1500)),
                              60000);
    QStringList queued = daemon.queued();
    for (QString& text : queued)
      text.remove(QStringLiteral("<speak>")).remove(QStringLiteral("</speak>"));
    QCOMPARE(queued, expected);
    QCOMPARE(handed.count(), 3);
    // Nothing was cut off: the program never asked the daemon to stop or cancel.
    const QString log = daemon.log();
    QVERIFY(log.contains(QStringLiteral("DATA:|speak"), Qt::CaseInsensitive));
    QVERIFY(!log.contains(QStringLiteral("DATA:|STOP"), Qt::CaseInsensitive));
    QVERIFY(!log.contains(QStringLiteral("DATA:|CANCEL"), Qt::CaseInsensitive));
    QVERIFY(info.text().isEmpty());
  }

  // Without a speech service the program says so once in lbInfo and stays quiet.
  void withoutAServiceSaysSoOnce() {
    qputenv("SPEECHD_ADDRESS", "unix_socket:/nonexistent/speechd.sock");
    qputenv("SPEECHD_CMD", "/bin/false");  // no daemon spawned behind the test's back
    QLabel info;
    RoverSettings settings;
    settings.announce = true;
    RoverLink link(RoverView{nullptr, nullptr, &info}, RoverHooks{});
    link.apply(settings);
    QSignalSpy told(&link.speaker(), &RoverSpeaker::unavailable);
    link.announce();
    link.say(QStringLiteral("Noch etwas."));
    link.announce();
    QTRY_VERIFY2_WITH_TIMEOUT(info.text().startsWith(u"Keine Sprachausgabe"),
                              qPrintable(info.text()), 30000);
    QTest::qWait(200);  // the later messages have reached the speaker as well
    QCOMPARE(told.count(), 1);
    QVERIFY(link.speaker().failed());
    qunsetenv("SPEECHD_ADDRESS");
    qunsetenv("SPEECHD_CMD");
  }
};

QTEST_MAIN(tst_RoverSpeech)
#include "tst_RoverSpeech.moc"
