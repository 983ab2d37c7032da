// The list of applications that were launched once: each setSetting() of its key adds one name to the list in
// memory, stores the whole list and tells of it.
#include "emissionrecorder.h"
#include "messagelog.h"
#include "otherapplication.h"
#include "settingsfile.h"
#include "zbsettingsmain.h"

#include <QtTest/QtTest>

#include <memory>

namespace {

const QString key = QStringLiteral("appFirstLaunchList");
const QString changed = QStringLiteral("settingFirstLaunchAppListChanged");

QStringList letters(const char *text)
{
    QStringList result;
    for (const char letter : QByteArray(text))
        result.append(QString(QLatin1Char(letter)));
    return result;
}

} // namespace

class TestFirstLaunchList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void sameNameTwiceIsStoredTwice();
    void everyCallAddsOneNameAndEmitsOnce();
    void propertyShowsTheNewListWhenTheSignalComes();
    void fileIsWrittenAfterTheSignal();
    void listStartsWithWhatTheFileHoldsAtConstruction_data();
    void listStartsWithWhatTheFileHoldsAtConstruction();
    void listInMemoryIsExtendedAndNotTheOneInTheFile();
    void valueIsTakenAsText_data();
    void valueIsTakenAsText();
    void difficultNamesSurvive();
    void longListSurvives();
    void twoObjectsHaveListsOfTheirOwn();
    void readingGivesTheDefaultUntilTheFirstName();

private:
    std::unique_ptr<MessageLog> m_log;
};

void TestFirstLaunchList::init()
{
    SettingsFile::removeAll();
    m_log = std::make_unique<MessageLog>();
}

void TestFirstLaunchList::cleanup()
{
    m_log.reset();
    SettingsFile::removeAll();
}

void TestFirstLaunchList::sameNameTwiceIsStoredTwice()
{
    ZBSettingsMain settings(nullptr, false);
    EmissionRecorder recorder(&settings);
    settings.setSetting(key, QStringLiteral("A"));
    settings.setSetting(key, QStringLiteral("A"));
    QCOMPARE(SettingsFile::content(), QByteArray("[home]\nappFirstLaunchList=A, A\n"));
    QCOMPARE(settings.settingFirstLaunchAppList(), letters("AA"));
    QCOMPARE(recorder.names(), QStringList({changed, changed}));
    QCOMPARE(recorder.values(changed), QVariantList({letters("A"), letters("AA")}));
}

void TestFirstLaunchList::everyCallAddsOneNameAndEmitsOnce()
{
    ZBSettingsMain settings(nullptr, false);
    EmissionRecorder recorder(&settings);
    settings.setSetting(key, QStringLiteral("A"));
    QCOMPARE(SettingsFile::content(), QByteArray("[home]\nappFirstLaunchList=A\n"));
    settings.setSetting(key, QStringLiteral("B"));
    QCOMPARE(SettingsFile::content(), QByteArray("[home]\nappFirstLaunchList=A, B\n"));
    settings.setSetting(key, QStringLiteral("C"));
    QCOMPARE(SettingsFile::content(), QByteArray("[home]\nappFirstLaunchList=A, B, C\n"));
    QCOMPARE(recorder.values(changed), QVariantList({letters("A"), letters("AB"), letters("ABC")}));
    QCOMPARE(recorder.emissions().size(), 3);
    QCOMPARE(settings.getSetting(key).toStringList(), letters("ABC"));
}

void TestFirstLaunchList::propertyShowsTheNewListWhenTheSignalComes()
{
    ZBSettingsMain settings(nullptr, false);
    QStringList seen;
    connect(&settings, &ZBSettingsMain::settingFirstLaunchAppListChanged, this,
            [&] { seen = settings.property("settingFirstLaunchAppList").toStringList(); });
    settings.setSetting(key, QStringLiteral("A"));
    QCOMPARE(seen, letters("A"));
}

void TestFirstLaunchList::fileIsWrittenAfterTheSignal()
{
    ZBSettingsMain settings(nullptr, false);
    bool existed = true;
    connect(&settings, &ZBSettingsMain::settingFirstLaunchAppListChanged, this,
            [&existed] { existed = SettingsFile::exists(); });
    settings.setSetting(key, QStringLiteral("A"));
    QVERIFY(!existed);
    QVERIFY(SettingsFile::exists());
}

void TestFirstLaunchList::listStartsWithWhatTheFileHoldsAtConstruction_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("two") << QByteArray("A, B") << letters("ABC");
    QTest::newRow("one") << QByteArray("A") << letters("AC");
    QTest::newRow("none") << QByteArray("@Invalid()") << letters("C");
    QTest::newRow("empty name") << QByteArray("") << QStringList({QString(), QStringLiteral("C")});
}

void TestFirstLaunchList::listStartsWithWhatTheFileHoldsAtConstruction()
{
    QFETCH(QByteArray, stored);
    QFETCH(QStringList, expected);
    QVERIFY(SettingsFile::write("[home]\nappFirstLaunchList=" + stored + "\n"));
    ZBSettingsMain settings(nullptr, false);
    EmissionRecorder recorder(&settings);
    settings.setSetting(key, QStringLiteral("C"));
    QCOMPARE(settings.settingFirstLaunchAppList(), expected);
    QCOMPARE(recorder.values(changed), QVariantList({expected}));
    QCOMPARE(settings.getSetting(key).toStringList(), expected);
}

void TestFirstLaunchList::listInMemoryIsExtendedAndNotTheOneInTheFile()
{
    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(key, QStringLiteral("A"));
    QVERIFY(SettingsFile::write("[home]\nappFirstLaunchList=X, Y, Z\n"));
    settings.setSetting(key, QStringLiteral("B"));
    QCOMPARE(settings.settingFirstLaunchAppList(), letters("AB"));
    QCOMPARE(SettingsFile::content(), QByteArray("[home]\nappFirstLaunchList=A, B\n"));
}

void TestFirstLaunchList::valueIsTakenAsText_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("name");
    QTest::newRow("number") << QVariant(5) << QStringLiteral("5");
    QTest::newRow("bool") << QVariant(true) << QStringLiteral("true");
    QTest::newRow("nothing") << QVariant() << QString();
    QTest::newRow("list of one") << QVariant(QStringList{QStringLiteral("A")}) << QStringLiteral("A");
    QTest::newRow("list of two") << QVariant(letters("AB")) << QString();
    QTest::newRow("bytes") << QVariant(QByteArray("A")) << QStringLiteral("A");
}

void TestFirstLaunchList::valueIsTakenAsText()
{
    QFETCH(QVariant, value);
    QFETCH(QString, name);
    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(key, QStringLiteral("first"));
    settings.setSetting(key, value);
    QCOMPARE(settings.settingFirstLaunchAppList(), QStringList({QStringLiteral("first"), name}));
    QCOMPARE(settings.getSetting(key).toStringList(), QStringList({QStringLiteral("first"), name}));
}

void TestFirstLaunchList::difficultNamesSurvive()
{
    const QStringList names{QStringLiteral("a,b"),
                            QStringLiteral("c\"d"),
                            QStringLiteral("e\nf"),
                            QStringLiteral(" "),
                            QStringLiteral("@"),
                            QStringLiteral("\\"),
                            QStringLiteral("\u4f60\U0001f5a8")};
    {
        ZBSettingsMain settings(nullptr, false);
        for (const QString &name : names)
            settings.setSetting(key, name);
        QCOMPARE(settings.settingFirstLaunchAppList(), names);
    }
    OtherApplication other;
    QCOMPARE(other.construct().exception, QString());
    QCOMPARE(other.property(QStringLiteral("settingFirstLaunchAppList")), QVariant(names));
}

void TestFirstLaunchList::longListSurvives()
{
    ZBSettingsMain settings(nullptr, false);
    QStringList names;
    for (int i = 0; i < 200; ++i) {
        names.append(QStringLiteral("application %1").arg(i));
        settings.setSetting(key, names.last());
    }
    QCOMPARE(settings.settingFirstLaunchAppList(), names);
    OtherApplication other;
    QCOMPARE(other.construct().exception, QString());
    QCOMPARE(other.get(key).value, QVariant(names));
}

void TestFirstLaunchList::twoObjectsHaveListsOfTheirOwn()
{
    ZBSettingsMain one(nullptr, false);
    ZBSettingsMain two(nullptr, false);
    const EmissionRecorder recorder(&two);
    one.setSetting(key, QStringLiteral("A"));
    QCOMPARE(two.settingFirstLaunchAppList(), QStringList());
    QCOMPARE(recorder.names(), QStringList());
    two.setSetting(key, QStringLiteral("B"));
    QCOMPARE(one.settingFirstLaunchAppList(), letters("A"));
    QCOMPARE(two.settingFirstLaunchAppList(), letters("B"));
    QCOMPARE(SettingsFile::content(), QByteArray("[home]\nappFirstLaunchList=B\n"));
}

void TestFirstLaunchList::readingGivesTheDefaultUntilTheFirstName()
{
    ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.getSetting(key, QStringList()), QVariant(QStringList()));
    QVERIFY(!settings.getSetting(key).isValid());
}

QTEST_GUILESS_MAIN(TestFirstLaunchList)
#include "tst_firstlaunchlist.moc"
