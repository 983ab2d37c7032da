// A key misspelt in QML is an error of that script and nothing else: it can be caught, nothing is stored, and
// the application lives on whether it is caught or not.
#include "qmlsession.h"
#include "settingsfile.h"

#include <zbsettingsmain.h>

#include <QtNetwork/QLocalSocket>
#include <QtTest/QtTest>

#include <stdexcept>

class TestQmlErrors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void unknownKeyIsAnErrorThatCanBeCaught_data();
    void unknownKeyIsAnErrorThatCanBeCaught();
    void unknownKeyStoresNothing();
    void statementsAfterTheErrorAreNotRun();
    void uncaughtErrorInABindingLeavesTheObjectAlive();
    void uncaughtErrorWhileTheObjectIsMadeLeavesTheObjectAlive();
    void uncaughtErrorInAHandlerOfTheBackEndLeavesTheNextHandlerAlive();
    void manyErrorsInARowAreAllCaught();
    void engineWorksOnAfterAnError();
    void callerInCppGetsTheException();
    void missingArgumentIsAnError();
};

void TestQmlErrors::init()
{
    SettingsFile::removeAll();
}

void TestQmlErrors::unknownKeyIsAnErrorThatCanBeCaught_data()
{
    QTest::addColumn<QString>("call");
    QTest::newRow("read") << QStringLiteral("ZBSettingsMain.getSetting('brightnesLevel')");
    QTest::newRow("read with default") << QStringLiteral("ZBSettingsMain.getSetting('brightnesLevel', 3)");
    QTest::newRow("write") << QStringLiteral("ZBSettingsMain.setSetting('brightnesLevel', 3)");
    QTest::newRow("other case") << QStringLiteral("ZBSettingsMain.getSetting('BrightnessLevel')");
    QTest::newRow("empty key") << QStringLiteral("ZBSettingsMain.setSetting('', 3)");
    QTest::newRow("misspelt constant")
        << QStringLiteral("ZBSettingsMain.getSetting(ZBSettingsMain.KEY_BRIGHTNESS)");
    QTest::newRow("group and key") << QStringLiteral(
        "ZBSettingsMain.setSetting('display/brightnessLevel', 3)");
}

void TestQmlErrors::unknownKeyIsAnErrorThatCanBeCaught()
{
    QFETCH(QString, call);
    QmlSession session;
    const QVariant result = session.run(
        QStringLiteral(
            "try { %1; return 'no error' } catch (error) { return [error instanceof Error, error.name, "
            "error.message].join() }")
            .arg(call));
    QCOMPARE(result.toString(), QStringLiteral("true,Error,map::at"));
    QCOMPARE(session.takeWarnings(), QStringList());
}

void TestQmlErrors::unknownKeyStoresNothing()
{
    QmlSession session;
    session.run(QStringLiteral("ZBSettingsMain.setSetting('brightnesLevel', 3)"));
    QCOMPARE(session.takeWarnings(), QStringList(QStringLiteral("Error: map::at")));
    QVERIFY(!SettingsFile::exists());
}

void TestQmlErrors::statementsAfterTheErrorAreNotRun()
{
    QmlSession session;
    session.run(
        QStringLiteral("ZBSettingsMain.getSetting('wrong'); ZBSettingsMain.setSetting('zoomLevel', 4)"));
    QVERIFY(!SettingsFile::exists());
}

void TestQmlErrors::uncaughtErrorInABindingLeavesTheObjectAlive()
{
    QmlSession session;
    const std::unique_ptr<QObject> page = session.make(QStringLiteral(
        "QtObject { property var wrong: ZBSettingsMain.getSetting('wrong', 1); property int right: 2 }"));
    QVERIFY(page);
    QCOMPARE(session.takeWarnings(), QStringList(QStringLiteral("Error: map::at")));
    QVERIFY(!page->property("wrong").isValid());
    QCOMPARE(page->property("right").toInt(), 2);
}

void TestQmlErrors::uncaughtErrorWhileTheObjectIsMadeLeavesTheObjectAlive()
{
    QmlSession session;
    const std::unique_ptr<QObject> page =
        session.make(QStringLiteral("QtObject { property bool done; Component.onCompleted: { "
                                    "ZBSettingsMain.setSetting('wrong', 1); done = true } }"));
    QVERIFY(page);
    QCOMPARE(session.takeWarnings(), QStringList(QStringLiteral("Error: map::at")));
    QVERIFY(!page->property("done").toBool());
}

void TestQmlErrors::uncaughtErrorInAHandlerOfTheBackEndLeavesTheNextHandlerAlive()
{
    QmlSession session;
    const std::unique_ptr<QObject> page = session.make(
        QStringLiteral("QtObject { property int tab: -1\n"
                       "property Connections a: Connections { target: ZBSettingsMain\n"
                       "function onTabEnumChanged(tabEnum) { ZBSettingsMain.getSetting('tab') } }\n"
                       "property Connections b: Connections { target: ZBSettingsMain\n"
                       "function onTabEnumChanged(tabEnum) { tab = tabEnum } } }"));
    QVERIFY2(page, qPrintable(session.errorText()));

    QLocalSocket socket;
    socket.connectToServer(QCoreApplication::applicationName(), QIODevice::WriteOnly);
    QVERIFY2(socket.waitForConnected(), qPrintable(socket.errorString()));
    socket.write("3");
    socket.flush();
    QTRY_COMPARE(page->property("tab").toInt(), 3);
    QCOMPARE(session.takeWarnings(), QStringList(QStringLiteral("Error: map::at")));
}

void TestQmlErrors::manyErrorsInARowAreAllCaught()
{
    QmlSession session;
    const QVariant count = session.run(QStringLiteral(
        "var count = 0; for (var i = 0; i < 1000; ++i) { try { ZBSettingsMain.getSetting('wrong' + i) } "
        "catch (error) { ++count } } return count"));
    QCOMPARE(count, QVariant(1000));
}

void TestQmlErrors::engineWorksOnAfterAnError()
{
    QmlSession session;
    session.run(QStringLiteral("ZBSettingsMain.setSetting('wrong', 1)"));
    session.takeWarnings();
    session.run(QStringLiteral("ZBSettingsMain.setSetting(ZBSettingsMain.KEY_ZOOMLEVEL, 4)"));
    QCOMPARE(session.takeWarnings(), QStringList());
    QCOMPARE(SettingsFile::content(), QByteArray("[home]\nzoomLevel=4\n"));
}

void TestQmlErrors::callerInCppGetsTheException()
{
    QmlSession session;
    ZBSettingsMain *const settings = session.settings();
    QByteArray text;
    try {
        settings->getSetting(QStringLiteral("wrong"));
    } catch (const std::out_of_range &error) {
        text = error.what();
    }
    QCOMPARE(text, QByteArray("map::at"));
    QCOMPARE(session.takeWarnings(), QStringList());
}

void TestQmlErrors::missingArgumentIsAnError()
{
    QmlSession session;
    QCOMPARE(session.run(QStringLiteral(
                 "try { ZBSettingsMain.setSetting('zoomLevel') } catch (error) { return error.message }")),
             QVariant(QStringLiteral("Insufficient arguments")));
    QVERIFY(!SettingsFile::exists());
}

QTEST_GUILESS_MAIN(TestQmlErrors)
#include "tst_qmlerrors.moc"
