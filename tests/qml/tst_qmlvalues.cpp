// How values travel between JavaScript and the settings file.
#include "qmlsession.h"
#include "settingsfile.h"

#include <zbsettingsmain.h>

#include <QtTest/QtTest>

class TestQmlValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void valueIsStoredAsOtherProgramsReadIt_data();
    void valueIsStoredAsOtherProgramsReadIt();
    void arrayComesBackAsArray();
    void objectComesBackAsObject();
    void oddValueLeavesTheEngineAlive_data();
    void oddValueLeavesTheEngineAlive();
    void qmlObjectIsNotKeptBeyondItsLife_data();
    void qmlObjectIsNotKeptBeyondItsLife();
    void storedTextOfAnotherProgramArrivesAsText();
    void absentKeyGivesTheDefaultUnchanged_data();
    void absentKeyGivesTheDefaultUnchanged();
    void absentKeyGivesAQmlObjectBack_data();
    void absentKeyGivesAQmlObjectBack();
    void absentKeyWithoutDefaultIsUndefined();
    void applicationNamesAddUpInTheList();
    void listPropertyTellsItsBindings();
};

void TestQmlValues::init()
{
    SettingsFile::removeAll();
}

void TestQmlValues::valueIsStoredAsOtherProgramsReadIt_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("whole number") << QStringLiteral("5") << QByteArray("5");
    QTest::newRow("true") << QStringLiteral("true") << QByteArray("true");
    QTest::newRow("false") << QStringLiteral("false") << QByteArray("false");
    QTest::newRow("text") << QStringLiteral("'Europe/Berlin'") << QByteArray("Europe/Berlin");
    QTest::newRow("text with comma") << QStringLiteral("'a, b'") << QByteArray("\"a, b\"");
    QTest::newRow("text outside Latin") << QStringLiteral("'\u00e4\u4e2d'") << QByteArray("\\xe4\\x4e2d");
    QTest::newRow("array of texts") << QStringLiteral("['a', 'b, c', '']") << QByteArray("a, \"b, c\", ");
    QTest::newRow("array of numbers") << QStringLiteral("[1, 2]") << QByteArray("1, 2");
    QTest::newRow("empty text") << QStringLiteral("''") << QByteArray("");
}

void TestQmlValues::valueIsStoredAsOtherProgramsReadIt()
{
    QFETCH(QString, value);
    QFETCH(QByteArray, stored);
    QmlSession session;
    session.run(
        QStringLiteral("ZBSettingsMain.setSetting(ZBSettingsMain.KEY_INIT_FIRSTBOOTPAGE, %1)").arg(value));
    QCOMPARE(session.takeWarnings(), QStringList());
    QCOMPARE(SettingsFile::content(), "[initialization]\nfirstBootDefaultPage=" + stored + '\n');
}

void TestQmlValues::arrayComesBackAsArray()
{
    QmlSession session;
    QCOMPARE(session.run(QStringLiteral("ZBSettingsMain.setSetting('timezone', ['a', 'b', [1, 2]])\n"
                                        "return JSON.stringify(ZBSettingsMain.getSetting('timezone'))")),
             QVariant(QStringLiteral("[\"a\",\"b\",[1,2]]")));
}

void TestQmlValues::objectComesBackAsObject()
{
    QmlSession session;
    QCOMPARE(
        session.run(QStringLiteral("ZBSettingsMain.setSetting('timezone', {zone: 'Berlin', offset: 60})\n"
                                   "return ZBSettingsMain.getSetting('timezone').zone")),
        QVariant(QStringLiteral("Berlin")));
}

void TestQmlValues::oddValueLeavesTheEngineAlive_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("nothing") << QStringLiteral("undefined");
    QTest::newRow("null") << QStringLiteral("null");
    QTest::newRow("not a number") << QStringLiteral("NaN");
    QTest::newRow("infinity") << QStringLiteral("-1/0");
    QTest::newRow("function") << QStringLiteral("function () {}");
    QTest::newRow("date") << QStringLiteral("new Date(0)");
    QTest::newRow("expression") << QStringLiteral("/a/");
    QTest::newRow("the back end itself") << QStringLiteral("ZBSettingsMain");
    QTest::newRow("array that holds itself")
        << QStringLiteral("(function () { var a = [1]; a.push(a); return a })()");
    QTest::newRow("empty array") << QStringLiteral("[]");
    QTest::newRow("array of one") << QStringLiteral("['a']");
}

void TestQmlValues::oddValueLeavesTheEngineAlive()
{
    QFETCH(QString, value);
    QmlSession session;
    const QString body = QStringLiteral("var value = %1\n"
                                        "ZBSettingsMain.setSetting('timezone', value)\n"
                                        "ZBSettingsMain.getSetting('language', value)\n"
                                        "ZBSettingsMain.sendAnalyticHit('timezone', value)\n"
                                        "return 'alive'");
    QCOMPARE(session.run(body.arg(value)), QVariant(QStringLiteral("alive")));
}

void TestQmlValues::qmlObjectIsNotKeptBeyondItsLife_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("readBack");
    QTest::newRow("alone") << QStringLiteral("object") << QStringLiteral("undefined");
    QTest::newRow("in a list") << QStringLiteral("[1, object]") << QStringLiteral("[1,null]");
    QTest::newRow("in a map in a list") << QStringLiteral("[{a: object}]") << QStringLiteral("[{}]");
}

void TestQmlValues::qmlObjectIsNotKeptBeyondItsLife()
{
    QFETCH(QString, value);
    QFETCH(QString, readBack);
    QmlSession session;
    const std::unique_ptr<QObject> page =
        session.make(QStringLiteral("QtObject {\n"
                                    "  property Component part: Component { QtObject {} }\n"
                                    "  function run() {\n"
                                    "    var object = part.createObject(null)\n"
                                    "    ZBSettingsMain.setSetting('timezone', %1)\n"
                                    "    object.destroy()\n"
                                    "  }\n"
                                    "}")
                         .arg(value));
    QVERIFY2(page, qPrintable(session.errorText()));
    QVERIFY(QMetaObject::invokeMethod(page.get(), "run"));
    QCOMPARE(session.takeWarnings(), QStringList());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(session.value(QStringLiteral("String(JSON.stringify(ZBSettingsMain.getSetting('timezone')))")),
             QVariant(readBack));
}

void TestQmlValues::storedTextOfAnotherProgramArrivesAsText()
{
    QVERIFY(SettingsFile::write("[display]\nbrightnessLevel=4\n"));
    QmlSession session;
    QCOMPARE(session.value(QStringLiteral("ZBSettingsMain.getSetting('brightnessLevel', 7)")),
             QVariant(QStringLiteral("4")));
    QCOMPARE(session.value(QStringLiteral("ZBSettingsMain.settingDisplayBrightness")), QVariant(4));
}

void TestQmlValues::absentKeyGivesTheDefaultUnchanged_data()
{
    QTest::addColumn<QString>("value");
    for (const char *value : {"7", "true", "\"text\"", "[\"a\",1]", "{\"a\":1}"})
        QTest::newRow(value) << QString::fromLatin1(value);
}

void TestQmlValues::absentKeyGivesTheDefaultUnchanged()
{
    QFETCH(QString, value);
    QmlSession session;
    QCOMPARE(
        session.value(QStringLiteral("JSON.stringify(ZBSettingsMain.getSetting('timezone', %1))").arg(value)),
        QVariant(value));
}

void TestQmlValues::absentKeyGivesAQmlObjectBack_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("part");
    QTest::newRow("alone") << QStringLiteral("ZBSettingsMain") << QString();
    QTest::newRow("in a list") << QStringLiteral("[ZBSettingsMain]") << QStringLiteral("[0]");
    QTest::newRow("in a map") << QStringLiteral("({a: ZBSettingsMain})") << QStringLiteral(".a");
}

void TestQmlValues::absentKeyGivesAQmlObjectBack()
{
    QFETCH(QString, value);
    QFETCH(QString, part);
    QmlSession session;
    QCOMPARE(
        session.run(QStringLiteral("return ZBSettingsMain.getSetting('timezone', %1)%2 === ZBSettingsMain")
                        .arg(value, part)),
        QVariant(true));
}

void TestQmlValues::absentKeyWithoutDefaultIsUndefined()
{
    QmlSession session;
    QCOMPARE(session.value(QStringLiteral("typeof ZBSettingsMain.getSetting('timezone')")).toString(),
             QStringLiteral("undefined"));
}

void TestQmlValues::applicationNamesAddUpInTheList()
{
    QmlSession session;
    session.run(
        QStringLiteral("var key = ZBSettingsMain.KEY_FIRSTLAUNCHLIST\n"
                       "ZBSettingsMain.setSetting(key, 'Print'); ZBSettingsMain.setSetting(key, 'Scan')"));
    QCOMPARE(SettingsFile::content(), QByteArray("[home]\nappFirstLaunchList=Print, Scan\n"));
}

void TestQmlValues::listPropertyTellsItsBindings()
{
    QmlSession session;
    const std::unique_ptr<QObject> page = session.make(
        QStringLiteral("QtObject { property int n: ZBSettingsMain.settingFirstLaunchAppList.length }"));
    QVERIFY2(page, qPrintable(session.errorText()));
    QCOMPARE(page->property("n").toInt(), 0);
    session.run(QStringLiteral("ZBSettingsMain.setSetting(ZBSettingsMain.KEY_FIRSTLAUNCHLIST, 'Print')"));
    QCOMPARE(page->property("n").toInt(), 1);
}

QTEST_GUILESS_MAIN(TestQmlValues)
#include "tst_qmlvalues.moc"
