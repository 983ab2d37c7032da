// The ship mode on a machine without a system bus: the boot-loader environment decides.
#include "messagelog.h"
#include "recordingtools.h"
#include "settingsfile.h"
#include "zbsettingsmain.h"

#include <QtTest/QtTest>

namespace {
const QString tool = QStringLiteral("fw_printenv");
const QStringList fallback{tool, QStringLiteral("-n"), QStringLiteral("zbShip")};
} // namespace

class TestShipModeWithoutBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void missingBusIsLoggedAndFallsBack_data();
    void missingBusIsLoggedAndFallsBack();
};

void TestShipModeWithoutBus::initTestCase()
{
    // Before anything has looked for the bus, which is looked for once in a process.
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/at/all");
}

void TestShipModeWithoutBus::cleanup()
{
    SettingsFile::removeAll();
}

void TestShipModeWithoutBus::missingBusIsLoggedAndFallsBack_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<bool>("isMilitary");
    QTest::newRow("military") << QByteArray("2\n") << true;
    QTest::newRow("another") << QByteArray("1\n") << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void TestShipModeWithoutBus::missingBusIsLoggedAndFallsBack()
{
    QFETCH(QByteArray, output);
    QFETCH(bool, isMilitary);
    RecordingTools tools;
    tools.setOutput(tool, output);
    QVERIFY(tools.isReady());
    MessageLog log;
    ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.property("isMilitaryShipped"), QVariant(isMilitary));
    log.clear();

    QCOMPARE(settings.isMilitaryShipped(), isMilitary);
    QCOMPARE(tools.commands(), QList<QStringList>({fallback, fallback}));
    const QVector<MessageLog::Message> messages = log.messages();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.first().type, QtDebugMsg);
    QCOMPARE(
        messages.first().text,
        QStringLiteral("DBus Reply(getShip) is inValid  QDBusError("
                       "\"org.freedesktop.DBus.Error.Disconnected\", \"Not connected to D-Bus server\")"));
}

QTEST_GUILESS_MAIN(TestShipModeWithoutBus)
#include "tst_shipmodewithoutbus.moc"
