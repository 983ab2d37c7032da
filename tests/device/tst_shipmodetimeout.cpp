// A utility daemon that takes the question for the ship mode and never answers: the call ends with the bus
// time-out and the boot-loader environment decides. One row only, since the time-out is 25 seconds.
#include "messagelog.h"
#include "patience.h"
#include "recordingtools.h"
#include "settingsfile.h"
#include "utilitydaemon.h"
#include "zbsettingsmain.h"

#include <QtCore/QElapsedTimer>
#include <QtTest/QtTest>

class TestShipModeTimeOut : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void silentDaemonIsWaitedForUntilTheBusTimeOut();
};

void TestShipModeTimeOut::silentDaemonIsWaitedForUntilTheBusTimeOut()
{
    RecordingTools tools;
    tools.setOutput(QStringLiteral("fw_printenv"), "2\n", {RecordingTools::print(), RecordingTools::stay()});
    QVERIFY(tools.isReady());
    UtilityDaemon daemon;
    QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(daemon.ignoreNextCall());
    const MessageLog log;

    QElapsedTimer timer;
    timer.start();
    QVERIFY(settings.isMilitaryShipped());
    QVERIFY2(timer.elapsed() > 20000 && timer.elapsed() < 26000 + oneWait.anyAttempt,
             QByteArray::number(timer.elapsed()).constData());
    QCOMPARE(log.texts().size(), 1);
    QVERIFY2(log.texts().first().startsWith(QLatin1String(
                 "DBus Reply(getShip) is inValid  QDBusError(\"org.freedesktop.DBus.Error.NoReply\", \"")),
             qPrintable(log.texts().first()));
    SettingsFile::removeAll();
}

QTEST_GUILESS_MAIN(TestShipModeTimeOut)
#include "tst_shipmodetimeout.moc"
