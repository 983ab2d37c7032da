// The constants and properties of ZBSettingsMain: their values without a settings file, and what each stored
// text turns into when the object is constructed.
#include "emissionrecorder.h"
#include "messagelog.h"
#include "settingsfile.h"
#include "zbsettingsmain.h"

#include <QtTest/QtTest>

#include <memory>
#include <type_traits>

namespace {

struct Constant
{
    const char *name;
    const char *value;
};

constexpr Constant constants[] = {
    {"GROUP_LOCALE", "locale"},
    {"GROUP_DISPLAY", "display"},
    {"GROUP_PRIVACY", "privacy"},
    {"GROUP_DATETIME", "dateTime"},
    {"GROUP_UPDATES", "updates"},
    {"GROUP_INIT", "initialization"},
    {"GROUP_LOCKSCREEN", "lockscreen"},
    {"GROUP_HOME", "home"},
    {"KEY_LANGUAGE", "language"},
    {"KEY_UNITS", "units"},
    {"KEY_KEYBOARD_LAYOUT", "keyboardLayout"},
    {"KEY_DISPLAY_BRIGHTNESS", "brightnessLevel"},
    {"KEY_DISPLAY_DIMMING", "dimmingInactive"},
    {"KEY_DISPLAY_POWER", "powerInactive"},
    {"KEY_PRIVACY_ANALYTICS", "sendAnalytics"},
    {"KEY_MOUNT_SHARED_FOLDER", "mountSharedFolder"},
    {"KEY_DATETIME_24HOUR", "24Hour"},
    {"KEY_DATETIME_AUTO", "automaticDateTime"},
    {"KEY_DATETIME_FORMAT", "dateFormat"},
    {"KEY_UPDATE_AUTOCHECK", "automaticUpdateCheck"},
    {"KEY_UPDATE_LASTCHECK", "lastUpdateCheck"},
    {"KEY_INIT_FIRSTBOOTAPP", "firstBootApplication"},
    {"KEY_INIT_FIRSTBOOTPAGE", "firstBootDefaultPage"},
    {"KEY_LOCK_AUTO", "lockscreenAuto"},
    {"KEY_ZOOMLEVEL", "zoomLevel"},
    {"KEY_APPCOLLAPSED", "appListCollapsed"},
    {"KEY_DOUBLECLICK", "doubleClickOpen"},
    {"KEY_FIRSTLAUNCHLIST", "appFirstLaunchList"},
};

/// The properties that show stored settings, at their values without a settings file.
QVariantMap defaults()
{
    return {
        {QStringLiteral("settingLanguage"), QString()},
        {QStringLiteral("settingUnits"), 0u},
        {QStringLiteral("settingKeyboardLayout"), QString()},
        {QStringLiteral("settingDisplayBrightness"), 7u},
        {QStringLiteral("settingDisplayDimming"), 2},
        {QStringLiteral("settingDisplayPower"), 11},
        {QStringLiteral("settingPrivacyAnalytics"), true},
        {QStringLiteral("settingDateTime24Hour"), false},
        {QStringLiteral("settingDateTimeAuto"), true},
        {QStringLiteral("settingDateFormat"), QStringLiteral("MM/dd/yy")},
        {QStringLiteral("settingUpdateAutoCheck"), true},
        {QStringLiteral("settingUpdateLastCheck"), QString()},
        {QStringLiteral("settingFirstBootApplication"), false},
        {QStringLiteral("settingLockscreenAuto"), true},
        {QStringLiteral("settingZoomeLevel"), 2u},
        {QStringLiteral("settingAppCollapsed"), false},
        {QStringLiteral("settingDoubleClickOpen"), false},
        {QStringLiteral("settingMountSharedFolder"), false},
        {QStringLiteral("settingFirstLaunchAppList"), QStringList()},
    };
}

QVariantMap settingPropertiesOf(const QObject &object)
{
    QVariantMap result;
    const QMetaObject *const metaObject = object.metaObject();
    for (int i = QObject::staticMetaObject.propertyCount(); i < metaObject->propertyCount(); ++i) {
        const QString name = QString::fromLatin1(metaObject->property(i).name());
        if (name.startsWith(QLatin1String("setting")))
            result.insert(name, metaObject->property(i).read(&object));
    }
    return result;
}

/// Compares values and their types, and says which property differs.
QString differenceBetween(const QVariantMap &actual, const QVariantMap &expected)
{
    QStringList differences;
    QStringList names = actual.keys() + expected.keys();
    names.removeDuplicates();
    for (const QString &name : qAsConst(names)) {
        const QVariant a = actual.value(name);
        const QVariant e = expected.value(name);
        if (a.userType() != e.userType() || a != e) {
            QString text;
            QDebug(&text) << name << a << "and not" << e;
            differences.append(text);
        }
    }
    return differences.join(QLatin1Char('\n'));
}

} // namespace

class TestSettingsMain : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void constantsHaveTheAgreedValuesAndOrder();
    void propertiesWithoutAFileAreTheDefaults();
    void stateWithoutDaemonAndBootLoaderIsFalse();
    void storedTextSetsItsPropertyOnly_data();
    void storedTextSetsItsPropertyOnly();
    void everySettingIsReadBackAtConstruction();
    void valuesSetByThisProcessAreReadBackAtConstruction();
    void constructionWritesNothing();
    void propertiesCannotBeWritten();
    void comboBoxModelsAreTheLocaleLists();
    void childrenGoWithTheObject();
    void parentOwnsTheObject();

private:
    std::unique_ptr<MessageLog> m_log;
};

void TestSettingsMain::init()
{
    SettingsFile::removeAll();
    m_log = std::make_unique<MessageLog>();
}

void TestSettingsMain::cleanup()
{
    m_log.reset();
    SettingsFile::removeAll();
}

void TestSettingsMain::constantsHaveTheAgreedValuesAndOrder()
{
    const ZBSettingsMain settings(nullptr, false);
    const QMetaObject *const metaObject = settings.metaObject();
    int index = QObject::staticMetaObject.propertyCount();
    for (const Constant &constant : constants) {
        const QMetaProperty property = metaObject->property(index++);
        QCOMPARE(property.name(), constant.name);
        QCOMPARE(property.userType(), int(QMetaType::QString));
        QVERIFY(property.isConstant());
        QVERIFY(!property.isWritable());
        QVERIFY(!property.hasNotifySignal());
        QCOMPARE(property.read(&settings), QVariant(QString::fromLatin1(constant.value)));
    }
    // What follows is no constant.
    QVERIFY(!metaObject->property(index).isConstant());
    QCOMPARE(index - QObject::staticMetaObject.propertyCount(), 28);
}

void TestSettingsMain::propertiesWithoutAFileAreTheDefaults()
{
    const ZBSettingsMain settings(nullptr, false);
    const QString difference = differenceBetween(settingPropertiesOf(settings), defaults());
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void TestSettingsMain::stateWithoutDaemonAndBootLoaderIsFalse()
{
    const ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.property("isMilitaryShipped"), QVariant(false));
    QCOMPARE(settings.property("isInternetConnected"), QVariant(false));
}

void TestSettingsMain::storedTextSetsItsPropertyOnly_data()
{
    QTest::addColumn<QByteArray>("section");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QVariant>("value");

    QByteArray section;
    QByteArray key;
    QString property;
    const auto of = [&](const char *inSection, const char *withKey, const char *forProperty) {
        section = inSection;
        key = withKey;
        property = QString::fromLatin1(forProperty);
    };
    const auto row = [&](const QByteArray &stored, const QVariant &value) {
        QTest::newRow(key + " " + stored.left(30)) << section << key << stored << property << value;
    };
    const auto textRows = [&] {
        row("some text", QStringLiteral("some text"));
        row("", QString());
        row("5", QStringLiteral("5"));
        row("\"a, b\"", QStringLiteral("a, b"));
        row("a, b", QString());
        row("\\x4f60", QStringLiteral("\u4f60"));
        row("@Invalid()", QString());
    };
    const auto unsignedRows = [&] {
        row("1", 1u);
        row("9", 9u);
        row("0", 0u);
        row("", 0u);
        row("abc", 0u);
        row("-1", 0u);
        row("1.5", 0u);
        row("\" 4 \"", 4u);
        row("0x4", 0u);
        row("3, 4", 0u);
        row("4294967295", 4294967295u);
        row("99999999999999999999", 0u);
        row("@Invalid()", 0u);
    };
    const auto signedRows = [&] {
        row("1", 1);
        row("0", 0);
        row("-1", -1);
        row("", 0);
        row("abc", 0);
        row("3, 4", 0);
        row("2147483647", 2147483647);
        row("99999999999999999999", 0);
        row("@Invalid()", 0);
    };
    const auto boolRows = [&] {
        row("true", true);
        row("false", false);
        row("1", true);
        row("0", false);
        row("", false);
        row("FALSE", false);
        row("True", true);
        row("no", true);
        row("rubbish", true);
        row("@Invalid()", false);
        row("true, true", false);
    };

    of("locale", "language", "settingLanguage");
    textRows();
    of("locale", "units", "settingUnits");
    unsignedRows();
    of("locale", "keyboardLayout", "settingKeyboardLayout");
    textRows();
    of("display", "brightnessLevel", "settingDisplayBrightness");
    unsignedRows();
    of("display", "dimmingInactive", "settingDisplayDimming");
    signedRows();
    of("display", "powerInactive", "settingDisplayPower");
    signedRows();
    of("General", "sendAnalytics", "settingPrivacyAnalytics");
    boolRows();
    of("General", "mountSharedFolder", "settingMountSharedFolder");
    boolRows();
    of("dateTime", "24Hour", "settingDateTime24Hour");
    boolRows();
    of("dateTime", "automaticDateTime", "settingDateTimeAuto");
    boolRows();
    of("dateTime", "dateFormat", "settingDateFormat");
    textRows();
    of("updates", "automaticUpdateCheck", "settingUpdateAutoCheck");
    boolRows();
    of("updates", "lastUpdateCheck", "settingUpdateLastCheck");
    textRows();
    of("initialization", "firstBootApplication", "settingFirstBootApplication");
    boolRows();
    of("lockscreen", "lockscreenAuto", "settingLockscreenAuto");
    boolRows();
    of("home", "zoomLevel", "settingZoomeLevel");
    unsignedRows();
    of("home", "appListCollapsed", "settingAppCollapsed");
    boolRows();
    of("home", "doubleClickOpen", "settingDoubleClickOpen");
    boolRows();
    of("home", "appFirstLaunchList", "settingFirstLaunchAppList");
    row("A, B", QStringList({QStringLiteral("A"), QStringLiteral("B")}));
    row("A", QStringList({QStringLiteral("A")}));
    row("\"A, B\"", QStringList({QStringLiteral("A, B")}));
    row("\"A, B\", C", QStringList({QStringLiteral("A, B"), QStringLiteral("C")}));
    row("@Invalid()", QStringList());
    // Keys that no property shows.
    of("dateTime", "timezone", "");
    row("Europe/Berlin", QVariant());
    of("initialization", "firstBootDefaultPage", "");
    row("3", QVariant());
    of("privacy", "sendAnalytics", "");
    row("false", QVariant());
}

void TestSettingsMain::storedTextSetsItsPropertyOnly()
{
    QFETCH(QByteArray, section);
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, stored);
    QFETCH(QString, property);
    QFETCH(QVariant, value);
    QVERIFY(SettingsFile::write("[" + section + "]\n" + key + "=" + stored + "\n"));
    const ZBSettingsMain settings(nullptr, false);
    QVariantMap expected = defaults();
    if (!property.isEmpty())
        expected[property] = value;
    const QString difference = differenceBetween(settingPropertiesOf(settings), expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void TestSettingsMain::everySettingIsReadBackAtConstruction()
{
    QVERIFY(
        SettingsFile::write("[General]\nmountSharedFolder=true\nsendAnalytics=false\n"
                            "[dateTime]\n24Hour=true\nautomaticDateTime=false\ndateFormat=dd.MM.yyyy\n"
                            "timezone=Europe/Berlin\n"
                            "[display]\nbrightnessLevel=3\ndimmingInactive=4\npowerInactive=5\n"
                            "[home]\nappFirstLaunchList=A, B\nappListCollapsed=true\ndoubleClickOpen=true\n"
                            "zoomLevel=6\n"
                            "[initialization]\nfirstBootApplication=true\nfirstBootDefaultPage=1\n"
                            "[locale]\nkeyboardLayout=de\nlanguage=de_de\nunits=1\n"
                            "[lockscreen]\nlockscreenAuto=false\n"
                            "[updates]\nautomaticUpdateCheck=false\nlastUpdateCheck=yesterday\n"));
    const ZBSettingsMain settings(nullptr, false);
    const QString difference =
        differenceBetween(settingPropertiesOf(settings),
                          {{QStringLiteral("settingLanguage"), QStringLiteral("de_de")},
                           {QStringLiteral("settingUnits"), 1u},
                           {QStringLiteral("settingKeyboardLayout"), QStringLiteral("de")},
                           {QStringLiteral("settingDisplayBrightness"), 3u},
                           {QStringLiteral("settingDisplayDimming"), 4},
                           {QStringLiteral("settingDisplayPower"), 5},
                           {QStringLiteral("settingPrivacyAnalytics"), false},
                           {QStringLiteral("settingDateTime24Hour"), true},
                           {QStringLiteral("settingDateTimeAuto"), false},
                           {QStringLiteral("settingDateFormat"), QStringLiteral("dd.MM.yyyy")},
                           {QStringLiteral("settingUpdateAutoCheck"), false},
                           {QStringLiteral("settingUpdateLastCheck"), QStringLiteral("yesterday")},
                           {QStringLiteral("settingFirstBootApplication"), true},
                           {QStringLiteral("settingLockscreenAuto"), false},
                           {QStringLiteral("settingZoomeLevel"), 6u},
                           {QStringLiteral("settingAppCollapsed"), true},
                           {QStringLiteral("settingDoubleClickOpen"), true},
                           {QStringLiteral("settingMountSharedFolder"), true},
                           {QStringLiteral("settingFirstLaunchAppList"),
                            QStringList({QStringLiteral("A"), QStringLiteral("B")})}});
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

// A process may find values of their own types in place of texts when it has written them itself.
void TestSettingsMain::valuesSetByThisProcessAreReadBackAtConstruction()
{
    ZBSettingsMain first(nullptr, false);
    first.setSetting(QStringLiteral("sendAnalytics"), false);
    first.setSetting(QStringLiteral("units"), 1);
    first.setSetting(QStringLiteral("dimmingInactive"), QStringLiteral("-3"));
    first.setSetting(QStringLiteral("zoomLevel"), 3);
    first.setSetting(QStringLiteral("language"), 12);
    first.setSetting(QStringLiteral("appFirstLaunchList"), QStringLiteral("A"));
    const ZBSettingsMain second(nullptr, false);
    QVariantMap expected = defaults();
    expected[QStringLiteral("settingPrivacyAnalytics")] = false;
    expected[QStringLiteral("settingUnits")] = 1u;
    expected[QStringLiteral("settingDisplayDimming")] = -3;
    expected[QStringLiteral("settingZoomeLevel")] = 3u;
    expected[QStringLiteral("settingLanguage")] = QStringLiteral("12");
    expected[QStringLiteral("settingFirstLaunchAppList")] = QStringList({QStringLiteral("A")});
    const QString difference = differenceBetween(settingPropertiesOf(second), expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void TestSettingsMain::constructionWritesNothing()
{
    {
        const ZBSettingsMain settings(nullptr, true);
        QVERIFY(!QFileInfo::exists(SettingsFile::folder()));
    }
    QVERIFY(!QFileInfo::exists(SettingsFile::folder()));

    const QByteArray content = "[locale]\nunits = 1";
    QVERIFY(SettingsFile::write(content));
    const QDateTime before = QFileInfo(SettingsFile::path()).lastModified();
    {
        const ZBSettingsMain settings(nullptr, true);
    }
    QCOMPARE(SettingsFile::content(), content);
    QCOMPARE(QFileInfo(SettingsFile::path()).lastModified(), before);
}

void TestSettingsMain::propertiesCannotBeWritten()
{
    ZBSettingsMain settings(nullptr, false);
    const EmissionRecorder recorder(&settings);
    const QMetaObject *const metaObject = settings.metaObject();
    for (int i = QObject::staticMetaObject.propertyCount(); i < metaObject->propertyCount(); ++i) {
        const QMetaProperty property = metaObject->property(i);
        const QVariant before = property.read(&settings);
        QVERIFY2(!settings.setProperty(property.name(), 1), property.name());
        QCOMPARE(property.read(&settings), before);
    }
    QCOMPARE(recorder.names(), QStringList());
}

void TestSettingsMain::comboBoxModelsAreTheLocaleLists()
{
    ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.property("languagesComboBoxModel").toStringList(), settings.getLanguageComboBoxModel());
    QCOMPARE(settings.property("keyboardLanguagesComboBoxModel").toStringList(),
             settings.getKeyboardLanguageComboBoxModel());
}

void TestSettingsMain::childrenGoWithTheObject()
{
    auto settings = std::make_unique<ZBSettingsMain>(nullptr, true);
    QVector<QPointer<QObject>> children;
    for (QObject *const child : settings->children())
        children.append(child);
    QVERIFY(children.size() >= 2);
    settings.reset();
    for (const QPointer<QObject> &child : qAsConst(children))
        QVERIFY(child.isNull());
}

void TestSettingsMain::parentOwnsTheObject()
{
    static_assert(std::is_constructible_v<ZBSettingsMain, QObject *, bool>);
    static_assert(!std::is_copy_constructible_v<ZBSettingsMain>);
    QPointer<ZBSettingsMain> settings;
    {
        QObject parent;
        settings = new ZBSettingsMain(&parent, false);
        QCOMPARE(settings->parent(), &parent);
    }
    QVERIFY(settings.isNull());
}

QTEST_GUILESS_MAIN(TestSettingsMain)
#include "tst_settingsmain.moc"
