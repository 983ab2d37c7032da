// What a QML author reaches through the module Corvanta.Settings: types, constants, properties, enumerations,
// and how long the back-end object lives.
#include "qmlsession.h"
#include "settingsfile.h"

#include <zbsettingsmain.h>

#include <QtCore/QPointer>
#include <QtNetwork/QLocalSocket>
#include <QtTest/QtTest>

class TestQmlTypes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void everyTypeIsReachableUnderItsClassName_data();
    void everyTypeIsReachableUnderItsClassName();
    void enumerationsHaveTheirNumbers_data();
    void enumerationsHaveTheirNumbers();
    void noTypeCanBeCreated_data();
    void noTypeCanBeCreated();
    void constantsHoldTheNamesOfTheSettingsFile_data();
    void constantsHoldTheNamesOfTheSettingsFile();
    void propertiesHoldTheDefaultsOfANewDevice_data();
    void propertiesHoldTheDefaultsOfANewDevice();
    void propertyCannotBeWritten();
    void propertyHidesTheSlotOfTheSameName();
    void oneObjectServesTheWholeEngine();
    void objectEndsWithItsEngine();
    void tabNumberOfAnotherProcessArrivesInQml();
    void otherVersionOfTheModuleIsRefused();
};

void TestQmlTypes::init()
{
    SettingsFile::removeAll();
}

void TestQmlTypes::everyTypeIsReachableUnderItsClassName_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("settings") << QStringLiteral("ZBSettingsMain");
    QTest::newRow("print options") << QStringLiteral("ZBSettingsPrinter");
    QTest::newRow("print jobs") << QStringLiteral("ZBPrinterHistory");
    QTest::newRow("model of print jobs") << QStringLiteral("ZBPrintJobModel");
    QTest::newRow("fields of the About page") << QStringLiteral("ZBSettingsAboutInfoFields");
    QTest::newRow("printing") << QStringLiteral("QMLCupsEnums");
    QTest::newRow("tabs") << QStringLiteral("ZBSettingsTabNames");
}

void TestQmlTypes::everyTypeIsReachableUnderItsClassName()
{
    QFETCH(QString, name);
    QmlSession session;
    QCOMPARE(session.value(QStringLiteral("typeof %1").arg(name)).toString(), QStringLiteral("object"));
    QCOMPARE(session.takeWarnings(), QStringList());
}

void TestQmlTypes::enumerationsHaveTheirNumbers_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("ZBSettingsAboutInfoFields.SERIAL_NUMBER") << 0;
    QTest::newRow("ZBSettingsAboutInfoFields.VERSION_NUMBERS") << 1;
    QTest::newRow("ZBSettingsAboutInfoFields.STORAGE_VALUE") << 2;
    QTest::newRow("ZBSettingsAboutInfoFields.ETHERNET_ADDRESS") << 3;
    QTest::newRow("ZBSettingsAboutInfoFields.WIRELESS_ADDRESS") << 4;
    QTest::newRow("ZBSettingsAboutInfoFields.OFFSET_VALUES") << 5;
    QTest::newRow("ZBSettingsAboutInfoFields.CALIBRATION_VALUES") << 6;
    QTest::newRow("QMLCupsEnums.PORTRAIT") << 3;
    QTest::newRow("QMLCupsEnums.LANDSCAPE") << 4;
    QTest::newRow("QMLCupsEnums.LANDSCAPE180") << 5;
    QTest::newRow("QMLCupsEnums.PORTRAIT180") << 6;
    QTest::newRow("QMLCupsEnums.CUT_MEDIA_NONE") << 0;
    QTest::newRow("QMLCupsEnums.CUT_MEDIA_PAGE") << 1;
    QTest::newRow("QMLCupsEnums.CUT_MEDIA_JOB") << 2;
    QTest::newRow("ZBSettingsTabNames.GENERAL") << 0;
    QTest::newRow("ZBSettingsTabNames.DATE_TIME") << 1;
    QTest::newRow("ZBSettingsTabNames.NETWORKING") << 2;
    QTest::newRow("ZBSettingsTabNames.SYSTEM_UPDATES") << 3;
    QTest::newRow("ZBSettingsTabNames.LANGUAGES") << 4;
    QTest::newRow("ZBSettingsTabNames.USERS_PASSWORDS") << 5;
    QTest::newRow("ZBSettingsTabNames.PRINTER") << 6;
    QTest::newRow("ZBSettingsTabNames.PRINTER_ALIGNMENT") << 7;
    QTest::newRow("ZBSettingsTabNames.PRINTER_PRESETS") << 8;
    QTest::newRow("ZBSettingsTabNames.ABOUT") << 9;
    QTest::newRow("ZBSettingsTabNames.PRINTER_ADVANCED") << 10;
    QTest::newRow("ZBSettingsTabNames.PRINTER_HISTORY") << 11;
    QTest::newRow("ZBSettingsTabNames.TABNAME_MAX") << 12;
}

void TestQmlTypes::enumerationsHaveTheirNumbers()
{
    QFETCH(int, number);
    QmlSession session;
    QCOMPARE(session.value(QString::fromLatin1(QTest::currentDataTag())), QVariant(number));
}

void TestQmlTypes::noTypeCanBeCreated_data()
{
    QTest::addColumn<QString>("error");
    QTest::newRow("ZBSettingsMain") << QStringLiteral("Element is not creatable.");
    QTest::newRow("ZBSettingsAboutInfoFields")
        << QStringLiteral("ZBSettingsAboutInfoFields only carries enumerations");
    QTest::newRow("QMLCupsEnums") << QStringLiteral("QMLCupsEnums only carries enumerations");
    QTest::newRow("ZBSettingsTabNames") << QStringLiteral("ZBSettingsTabNames only carries enumerations");
}

void TestQmlTypes::noTypeCanBeCreated()
{
    QFETCH(QString, error);
    QmlSession session;
    QVERIFY(!session.make(QStringLiteral("%1 {}").arg(QLatin1String(QTest::currentDataTag()))));
    QVERIFY2(session.errorText().contains(error), qPrintable(session.errorText()));
}

void TestQmlTypes::constantsHoldTheNamesOfTheSettingsFile_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("GROUP_LOCALE") << QStringLiteral("locale");
    QTest::newRow("GROUP_DISPLAY") << QStringLiteral("display");
    QTest::newRow("GROUP_PRIVACY") << QStringLiteral("privacy");
    QTest::newRow("GROUP_DATETIME") << QStringLiteral("dateTime");
    QTest::newRow("GROUP_UPDATES") << QStringLiteral("updates");
    QTest::newRow("GROUP_INIT") << QStringLiteral("initialization");
    QTest::newRow("GROUP_LOCKSCREEN") << QStringLiteral("lockscreen");
    QTest::newRow("GROUP_HOME") << QStringLiteral("home");
    QTest::newRow("KEY_LANGUAGE") << QStringLiteral("language");
    QTest::newRow("KEY_UNITS") << QStringLiteral("units");
    QTest::newRow("KEY_KEYBOARD_LAYOUT") << QStringLiteral("keyboardLayout");
    QTest::newRow("KEY_DISPLAY_BRIGHTNESS") << QStringLiteral("brightnessLevel");
    QTest::newRow("KEY_DISPLAY_DIMMING") << QStringLiteral("dimmingInactive");
    QTest::newRow("KEY_DISPLAY_POWER") << QStringLiteral("powerInactive");
    QTest::newRow("KEY_PRIVACY_ANALYTICS") << QStringLiteral("sendAnalytics");
    QTest::newRow("KEY_MOUNT_SHARED_FOLDER") << QStringLiteral("mountSharedFolder");
    QTest::newRow("KEY_DATETIME_24HOUR") << QStringLiteral("24Hour");
    QTest::newRow("KEY_DATETIME_AUTO") << QStringLiteral("automaticDateTime");
    QTest::newRow("KEY_DATETIME_FORMAT") << QStringLiteral("dateFormat");
    QTest::newRow("KEY_UPDATE_AUTOCHECK") << QStringLiteral("automaticUpdateCheck");
    QTest::newRow("KEY_UPDATE_LASTCHECK") << QStringLiteral("lastUpdateCheck");
    QTest::newRow("KEY_INIT_FIRSTBOOTAPP") << QStringLiteral("firstBootApplication");
    QTest::newRow("KEY_INIT_FIRSTBOOTPAGE") << QStringLiteral("firstBootDefaultPage");
    QTest::newRow("KEY_LOCK_AUTO") << QStringLiteral("lockscreenAuto");
    QTest::newRow("KEY_ZOOMLEVEL") << QStringLiteral("zoomLevel");
    QTest::newRow("KEY_APPCOLLAPSED") << QStringLiteral("appListCollapsed");
    QTest::newRow("KEY_DOUBLECLICK") << QStringLiteral("doubleClickOpen");
    QTest::newRow("KEY_FIRSTLAUNCHLIST") << QStringLiteral("appFirstLaunchList");
}

void TestQmlTypes::constantsHoldTheNamesOfTheSettingsFile()
{
    QFETCH(QString, text);
    QmlSession session;
    const QString constant = QStringLiteral("ZBSettingsMain.%1").arg(QLatin1String(QTest::currentDataTag()));
    QCOMPARE(session.value(constant), QVariant(text));
}

void TestQmlTypes::propertiesHoldTheDefaultsOfANewDevice_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("settingLanguage") << QStringLiteral("\"\"");
    QTest::newRow("settingUnits") << QStringLiteral("0");
    QTest::newRow("settingKeyboardLayout") << QStringLiteral("\"\"");
    QTest::newRow("settingDisplayBrightness") << QStringLiteral("7");
    QTest::newRow("settingDisplayDimming") << QStringLiteral("2");
    QTest::newRow("settingDisplayPower") << QStringLiteral("11");
    QTest::newRow("settingPrivacyAnalytics") << QStringLiteral("true");
    QTest::newRow("settingDateTime24Hour") << QStringLiteral("false");
    QTest::newRow("settingDateTimeAuto") << QStringLiteral("true");
    QTest::newRow("settingDateFormat") << QStringLiteral("\"MM/dd/yy\"");
    QTest::newRow("settingUpdateAutoCheck") << QStringLiteral("true");
    QTest::newRow("settingUpdateLastCheck") << QStringLiteral("\"\"");
    QTest::newRow("settingFirstBootApplication") << QStringLiteral("false");
    QTest::newRow("settingLockscreenAuto") << QStringLiteral("true");
    QTest::newRow("settingZoomeLevel") << QStringLiteral("2");
    QTest::newRow("settingAppCollapsed") << QStringLiteral("false");
    QTest::newRow("settingDoubleClickOpen") << QStringLiteral("false");
    QTest::newRow("settingMountSharedFolder") << QStringLiteral("false");
    QTest::newRow("settingFirstLaunchAppList") << QStringLiteral("[]");
    QTest::newRow("isInternetConnected") << QStringLiteral("false");
}

void TestQmlTypes::propertiesHoldTheDefaultsOfANewDevice()
{
    QFETCH(QString, text);
    QmlSession session;
    const QString expression =
        QStringLiteral("JSON.stringify(ZBSettingsMain.%1)").arg(QLatin1String(QTest::currentDataTag()));
    QCOMPARE(session.value(expression).toString(), text);
    QVERIFY(!SettingsFile::exists());
}

void TestQmlTypes::propertyCannotBeWritten()
{
    QmlSession session;
    session.run(QStringLiteral("ZBSettingsMain.settingDisplayBrightness = 5"));
    QCOMPARE(session.takeWarnings(),
             QStringList(QStringLiteral(
                 "TypeError: Cannot assign to read-only property \"settingDisplayBrightness\"")));
    QCOMPARE(session.value(QStringLiteral("ZBSettingsMain.settingDisplayBrightness")), QVariant(7));
}

void TestQmlTypes::propertyHidesTheSlotOfTheSameName()
{
    QmlSession session;
    QCOMPARE(session.value(QStringLiteral("typeof ZBSettingsMain.isMilitaryShipped")).toString(),
             QStringLiteral("boolean"));
    QCOMPARE(session.run(QStringLiteral(
                 "try { ZBSettingsMain.isMilitaryShipped() } catch (error) { return error.name }")),
             QVariant(QStringLiteral("TypeError")));

    bool isShipped = true;
    QVERIFY(
        QMetaObject::invokeMethod(session.settings(), "isMilitaryShipped", Q_RETURN_ARG(bool, isShipped)));
    QVERIFY(!isShipped);
}

void TestQmlTypes::oneObjectServesTheWholeEngine()
{
    QmlSession session;
    ZBSettingsMain *const settings = session.settings();
    QVERIFY(settings);
    QCOMPARE(session.settings(), settings);
    QCOMPARE(settings->parent(), &session.engine());
    QCOMPARE(QByteArray(settings->metaObject()->className()), QByteArray("ZBSettingsMain"));

    QmlSession other;
    QVERIFY(other.settings() != settings);
}

void TestQmlTypes::objectEndsWithItsEngine()
{
    QPointer<ZBSettingsMain> settings;
    {
        QmlSession session;
        settings = session.settings();
        QVERIFY(settings);
    }
    QVERIFY(!settings);
}

void TestQmlTypes::tabNumberOfAnotherProcessArrivesInQml()
{
    QmlSession session;
    const std::unique_ptr<QObject> page = session.make(QStringLiteral(
        "QtObject { property int tab: -1; property Connections c: Connections { target: ZBSettingsMain\n"
        "function onTabEnumChanged(tabEnum) { tab = tabEnum } } }"));
    QVERIFY2(page, qPrintable(session.errorText()));

    QLocalSocket socket;
    socket.connectToServer(QCoreApplication::applicationName(), QIODevice::WriteOnly);
    QVERIFY2(socket.waitForConnected(), qPrintable(socket.errorString()));
    socket.write("9");
    socket.flush();
    QTRY_COMPARE(page->property("tab").toInt(), 9);
}

void TestQmlTypes::otherVersionOfTheModuleIsRefused()
{
    QmlSession session;
    QVERIFY(!session.make(QStringLiteral("import Corvanta.Settings 1.1\nQtObject {}")));
    QVERIFY2(session.errorText().contains(QStringLiteral("version 1.1 is not installed")),
             qPrintable(session.errorText()));
}

QTEST_GUILESS_MAIN(TestQmlTypes)
#include "tst_qmltypes.moc"
