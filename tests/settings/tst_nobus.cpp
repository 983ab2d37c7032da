// A machine without a system bus, or one whose bus goes away: everything that needs no bus works, quickly.
#include "childprocess.h"
#include "otherapplication.h"
#include "settingsfile.h"

#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

namespace {

constexpr qint64 quickMilliseconds = 10000;

QProcessEnvironment withBus(const QString &address)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), address);
    return environment;
}

} // namespace

class TestNoBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void settingsWorkWithoutABus_data();
    void settingsWorkWithoutABus();
    void settingsWorkWhenTheBusGoesAway();

private:
    static void setTwoSettings(OtherApplication &application);
};

void TestNoBus::init()
{
    SettingsFile::removeAll();
}

void TestNoBus::cleanup()
{
    SettingsFile::removeAll();
}

void TestNoBus::setTwoSettings(OtherApplication &application)
{
    const OtherApplication::Reply brightness = application.set(QStringLiteral("brightnessLevel"), 5);
    QCOMPARE(brightness.exception, QString());
    QVERIFY2(brightness.milliseconds < quickMilliseconds,
             qPrintable(QString::number(brightness.milliseconds)));
    QCOMPARE(application.set(QStringLiteral("dateFormat"), QStringLiteral("dd.MM.yy")).exception, QString());
    QCOMPARE(SettingsFile::content(),
             QByteArray("[dateTime]\ndateFormat=dd.MM.yy\n\n[display]\nbrightnessLevel=5\n"));
    const QStringList log = application.log();
    QCOMPARE(log.filter(QStringLiteral("DBus Reply(setDisplayBrightness) is inValid  QDBusError(\"")).size(),
             1);
    QCOMPARE(log.filter(QStringLiteral("Dbus Reply(setDateFormat) is inValid  QDBusError(\"")).size(), 1);
    QVERIFY(application.isRunning());
}

void TestNoBus::settingsWorkWithoutABus_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("nobody listens") << QStringLiteral("unix:path=/nowhere/at/all");
    QTest::newRow("no address") << QStringLiteral("rubbish");
}

void TestNoBus::settingsWorkWithoutABus()
{
    QFETCH(QString, address);
    QVERIFY(SettingsFile::write("[display]\nbrightnessLevel=3\n"));
    OtherApplication application(QStringLiteral("no bus"), withBus(address));
    const OtherApplication::Reply construction = application.construct(true);
    QCOMPARE(construction.exception, QString());
    QVERIFY2(construction.milliseconds < quickMilliseconds,
             qPrintable(QString::number(construction.milliseconds)));
    QCOMPARE(application.log()
                 .filter(QStringLiteral("failed to create the utilityd interface, is it running?"))
                 .size(),
             1);
    QCOMPARE(application.property(QStringLiteral("settingDisplayBrightness")), QVariant(3u));
    QCOMPARE(application.property(QStringLiteral("isInternetConnected")), QVariant(false));
    setTwoSettings(application);
    QCOMPARE(application.destroy().exception, QString());
    QVERIFY(application.isRunning());
}

void TestNoBus::settingsWorkWhenTheBusGoesAway()
{
    const QTemporaryDir folder;
    const QString address = QStringLiteral("unix:path=") + folder.filePath(QStringLiteral("bus"));
    QFile configuration(folder.filePath(QStringLiteral("bus.conf")));
    QVERIFY(configuration.open(QIODevice::WriteOnly));
    configuration.write(
        "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
        " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
        "<busconfig><listen>"
        + address.toUtf8()
        + "</listen><policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
          "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/></policy></busconfig>\n");
    configuration.close();
    ChildProcess bus;
    bus.start(QStringLiteral("dbus-daemon"),
              {QStringLiteral("--nofork"), QStringLiteral("--nopidfile"), QStringLiteral("--print-address"),
               QStringLiteral("--config-file=") + configuration.fileName()});
    QVERIFY2(bus.waitForReadyRead(), qPrintable(bus.errorString()));

    OtherApplication application(QStringLiteral("bus goes"), withBus(address));
    const OtherApplication::Reply withTheBus = application.construct();
    QCOMPARE(withTheBus.exception, QString());
    QVERIFY2(withTheBus.milliseconds < quickMilliseconds,
             qPrintable(QString::number(withTheBus.milliseconds)));
    bus.kill();
    QVERIFY(bus.waitForFinished());
    setTwoSettings(application);
    QCOMPARE(application.destroy().exception, QString());
    const OtherApplication::Reply without = application.construct();
    QCOMPARE(without.exception, QString());
    QVERIFY2(without.milliseconds < quickMilliseconds, qPrintable(QString::number(without.milliseconds)));
    QVERIFY(application.isRunning());
}

QTEST_GUILESS_MAIN(TestNoBus)
#include "tst_nobus.moc"
