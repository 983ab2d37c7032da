// A utility daemon that takes a call and never answers: the call ends with the bus time-out, the value is
// kept, and the next call works. One row only, since the time-out is 25 seconds.
#include "messagelog.h"
#include "settingsfile.h"
#include "utilitydaemon.h"
#include "zbsettingsmain.h"

#include <QtTest/QtTest>

class TestHungDaemon : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callEndsWithTheBusTimeOut();
};

void TestHungDaemon::callEndsWithTheBusTimeOut()
{
    SettingsFile::removeAll();
    UtilityDaemon daemon;
    QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(daemon.ignoreNextCall());
    const MessageLog log;

    QElapsedTimer timer;
    timer.start();
    settings.setSetting(QStringLiteral("brightnessLevel"), 5);
    QVERIFY2(timer.elapsed() > 20000 && timer.elapsed() < 40000,
             qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(SettingsFile::content(), QByteArray("[display]\nbrightnessLevel=5\n"));
    QCOMPARE(log.texts().size(), 1);
    QVERIFY2(log.texts().first().startsWith(
                 QLatin1String("DBus Reply(setDisplayBrightness) is inValid  "
                               "QDBusError(\"org.freedesktop.DBus.Error.NoReply\", \"")),
             qPrintable(log.texts().first()));

    settings.setSetting(QStringLiteral("brightnessLevel"), 6);
    QCOMPARE(log.texts().size(), 1);
    QCOMPARE(SettingsFile::content(), QByteArray("[display]\nbrightnessLevel=6\n"));
    SettingsFile::removeAll();
}

QTEST_GUILESS_MAIN(TestHungDaemon)
#include "tst_hungdaemon.moc"
