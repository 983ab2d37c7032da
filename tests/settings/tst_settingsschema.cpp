// The schema of the settings file: 21 keys with group and description, held against literals, and the paths
// made of them.
#include "settingsschema.h"

#include <QtTest/QtTest>

#include <stdexcept>
#include <type_traits>

namespace {

struct Row
{
    const char *key;
    const char *group;
    const char *path;
    const char *description;
};

constexpr Row rows[] = {
    {"language", "locale", "locale/language", "The language code combined with region (EX: en_us)."},
    {"units", "locale", "locale/units", "0 for Imperial, 1 for metric."},
    {"keyboardLayout", "locale", "locale/keyboardLayout", "The language code (EX: en)."},
    {"brightnessLevel", "display", "display/brightnessLevel",
     "The brightness level of the display (1 to 9)."},
    {"dimmingInactive", "display", "display/dimmingInactive",
     "When to dim the display after a period of inactivity (ENUM of ComboBox index)."},
    {"powerInactive", "display", "display/powerInactive",
     "When to turn the display backlight off after inactivity (ENUM of ComboBox index)."},
    {"sendAnalytics", "", "sendAnalytics", "Whether or not to enable analytics (true or false)."},
    {"mountSharedFolder", "", "mountSharedFolder", "Option to enable shared folder via USB."},
    {"24Hour", "dateTime", "dateTime/24Hour", "True to enable 24hour clock, false to leave as AM/PM"},
    {"timezone", "dateTime", "dateTime/timezone", "The timezone selection string"},
    {"automaticDateTime", "dateTime", "dateTime/automaticDateTime",
     "True to always sync date and time via internet, false to manually set."},
    {"dateFormat", "dateTime", "dateTime/dateFormat",
     "The string the represents what format the date will be in"},
    {"automaticUpdateCheck", "updates", "updates/automaticUpdateCheck",
     "True to always check for updates, false to never check."},
    {"lastUpdateCheck", "updates", "updates/lastUpdateCheck",
     "Timestamp of last successful check for updates"},
    {"firstBootApplication", "initialization", "initialization/firstBootApplication",
     "Whether or not to display the first boot application after restart."},
    {"firstBootDefaultPage", "initialization", "initialization/firstBootDefaultPage",
     "The page/step we want our first boot application to start in."},
    {"lockscreenAuto", "lockscreen", "lockscreen/lockscreenAuto",
     "Option for auto showing the lockscreen after a restart."},
    {"zoomLevel", "home", "home/zoomLevel",
     "Option for determining how big file previews and icons are on ZBHome's file browser."},
    {"appListCollapsed", "home", "home/appListCollapsed",
     "Option collapsing the application list view on ZBHome."},
    {"doubleClickOpen", "home", "home/doubleClickOpen",
     "Option to re-enable double click to open on ZBHome."},
    {"appFirstLaunchList", "home", "home/appFirstLaunchList",
     "Option to get a list of applications that have been launched by the user."},
};

/// The text of the std::out_of_range that \a function throws, or what happened instead.
template <typename Function> QByteArray outOfRangeText(Function function)
{
    try {
        function();
    } catch (const std::out_of_range &error) {
        return error.what();
    } catch (...) {
        return "another exception";
    }
    return "no exception";
}

} // namespace

class TestSettingsSchema : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void groupAndDescriptionAreTheAgreedOnes_data();
    void groupAndDescriptionAreTheAgreedOnes();
    void thereAreTwentyOneKeys();
    void mapsAreOrderedConstantAndShared();
    void privacyGroupHasNoKey();
    void pathsFollowFromTheGroup_data();
    void pathsFollowFromTheGroup();
    void unknownKeyIsOutOfRange_data();
    void unknownKeyIsOutOfRange();

private:
    static void addRows();
};

void TestSettingsSchema::addRows()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("description");
    for (const Row &row : rows) {
        QTest::newRow(row.key) << QString::fromUtf8(row.key) << QString::fromUtf8(row.group)
                               << QString::fromUtf8(row.path) << QString::fromUtf8(row.description);
    }
}

void TestSettingsSchema::groupAndDescriptionAreTheAgreedOnes_data()
{
    addRows();
}

void TestSettingsSchema::groupAndDescriptionAreTheAgreedOnes()
{
    QFETCH(QString, key);
    QFETCH(QString, group);
    QFETCH(QString, description);
    const auto storedGroup = SettingsSchema::groups().find(key.toStdString());
    QVERIFY(storedGroup != SettingsSchema::groups().end());
    QCOMPARE(QString::fromStdString(storedGroup->second), group);
    const auto storedDescription = SettingsSchema::descriptions().find(key.toStdString());
    QVERIFY(storedDescription != SettingsSchema::descriptions().end());
    QCOMPARE(QString::fromStdString(storedDescription->second), description);
}

void TestSettingsSchema::thereAreTwentyOneKeys()
{
    QCOMPARE(SettingsSchema::groups().size(), std::size_t(21));
    QCOMPARE(SettingsSchema::descriptions().size(), std::size_t(21));
}

void TestSettingsSchema::mapsAreOrderedConstantAndShared()
{
    using Map = const std::map<std::string, std::string> &;
    static_assert(std::is_same_v<decltype(SettingsSchema::groups()), Map>);
    static_assert(std::is_same_v<decltype(SettingsSchema::descriptions()), Map>);
    QCOMPARE(&SettingsSchema::groups(), &SettingsSchema::groups());
    QCOMPARE(&SettingsSchema::descriptions(), &SettingsSchema::descriptions());
    QCOMPARE(SettingsSchema::groups().begin()->first, std::string("24Hour"));
    QCOMPARE(SettingsSchema::groups().rbegin()->first, std::string("zoomLevel"));
}

void TestSettingsSchema::privacyGroupHasNoKey()
{
    for (const auto &entry : SettingsSchema::groups())
        QVERIFY2(entry.second != "privacy", entry.first.c_str());
}

void TestSettingsSchema::pathsFollowFromTheGroup_data()
{
    addRows();
}

void TestSettingsSchema::pathsFollowFromTheGroup()
{
    QFETCH(QString, key);
    QFETCH(QString, group);
    QFETCH(QString, path);
    QCOMPARE(SettingsSchema::readPath(key), path);
    // A key without a group is written as "/key", which the store takes for the same place.
    QCOMPARE(SettingsSchema::writePath(key), group.isEmpty() ? QLatin1Char('/') + path : path);
}

void TestSettingsSchema::unknownKeyIsOutOfRange_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("empty") << QString();
    QTest::newRow("no such key") << QStringLiteral("nonsense");
    QTest::newRow("capital letter") << QStringLiteral("Language");
    QTest::newRow("all capitals") << QStringLiteral("UNITS");
    QTest::newRow("space before") << QStringLiteral(" units");
    QTest::newRow("space after") << QStringLiteral("units ");
    QTest::newRow("group only") << QStringLiteral("locale");
    QTest::newRow("whole path") << QStringLiteral("locale/units");
    QTest::newRow("leading slash") << QStringLiteral("/sendAnalytics");
    QTest::newRow("constant's name") << QStringLiteral("KEY_UNITS");
    QTest::newRow("NUL after a key") << QString(QStringLiteral("units") + QChar(QChar::Null));
    QTest::newRow("letter that looks like another") << QStringLiteral("unit\u0455");
    QTest::newRow("half a surrogate pair") << QString(QChar(0xd83d));
    QTest::newRow("very long") << QString(100000, QLatin1Char('u'));
}

void TestSettingsSchema::unknownKeyIsOutOfRange()
{
    QFETCH(QString, key);
    QCOMPARE(outOfRangeText([&key] { SettingsSchema::readPath(key); }), QByteArray("map::at"));
    QCOMPARE(outOfRangeText([&key] { SettingsSchema::writePath(key); }), QByteArray("map::at"));
}

QTEST_GUILESS_MAIN(TestSettingsSchema)
#include "tst_settingsschema.moc"
