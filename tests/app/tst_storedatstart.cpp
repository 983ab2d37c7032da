// What the pages show of a settings file that is there already, whoever wrote it and whatever is in it.
#include "appsession.h"
#include "messagelog.h"
#include "settingsfile.h"

#include <QtTest/QtTest>

class TestStoredAtStart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void newDeviceShowsTheDefaults();
    void storedValuesShow();
    void valueOutsideTheRangeShowsSafely_data();
    void valueOutsideTheRangeShowsSafely();
    void unknownChoiceShowsSafely_data();
    void unknownChoiceShowsSafely();
    void unknownTextsShowAsTheyAre();
    void lineEndsInAStoredTextShowAsSpaces();
    void markupInAStoredTextIsNotCarriedOut();
    void endlessTextDoesNotBreakThePage();
    void valueOfAnotherProgramShowsWhenThePageComesBack();
    void showingAPageStoresNothing_data();
    void showingAPageStoresNothing();
};

namespace {

QStringList complaints(const MessageLog &log)
{
    QStringList found;
    for (const MessageLog::Message &message : log.messages()) {
        if (message.type != QtDebugMsg)
            found += message.text;
    }
    return found;
}

} // namespace

void TestStoredAtStart::init()
{
    SettingsFile::removeAll();
}

void TestStoredAtStart::newDeviceShowsTheDefaults()
{
    const MessageLog log;
    AppSession app;
    QCOMPARE(app.property(QStringLiteral("brightnessLevel"), "value").toInt(), 7);
    QCOMPARE(app.property(QStringLiteral("dimmingInactive"), "displayText").toString(),
             QStringLiteral("1 minute"));
    QCOMPARE(app.property(QStringLiteral("powerInactive"), "displayText").toString(),
             QStringLiteral("Never"));
    QCOMPARE(app.property(QStringLiteral("units"), "displayText").toString(),
             QStringLiteral("Imperial (inch)"));
    QCOMPARE(app.property(QStringLiteral("zoomLevel"), "displayText").toString(), QStringLiteral("Medium"));
    QCOMPARE(app.property(QStringLiteral("appListCollapsed"), "checked").toBool(), false);
    QCOMPARE(app.property(QStringLiteral("doubleClickOpen"), "checked").toBool(), false);
    QCOMPARE(app.property(QStringLiteral("mountSharedFolder"), "checked").toBool(), false);
    QCOMPARE(app.property(QStringLiteral("sendAnalytics"), "checked").toBool(), true);
    QCOMPARE(app.property(QStringLiteral("firstBootApplication"), "checked").toBool(), false);
    app.turnTo(1);
    QCOMPARE(app.property(QStringLiteral("24Hour"), "checked").toBool(), false);
    QCOMPARE(app.property(QStringLiteral("automaticDateTime"), "checked").toBool(), true);
    QCOMPARE(app.property(QStringLiteral("dateFormat"), "displayText").toString(),
             QStringLiteral("MM/DD/YY"));
    QCOMPARE(app.property(QStringLiteral("timezone"), "value").toString(), QStringLiteral("Not chosen"));
    app.turnTo(3);
    QCOMPARE(app.property(QStringLiteral("automaticUpdateCheck"), "checked").toBool(), true);
    QCOMPARE(app.text(QStringLiteral("lastUpdateCheck")), QStringLiteral("Never"));
    app.turnTo(5);
    QCOMPARE(app.property(QStringLiteral("lockscreenAuto"), "checked").toBool(), true);
    QCOMPARE(complaints(log), QStringList());
}

void TestStoredAtStart::storedValuesShow()
{
    QVERIFY(SettingsFile::write("[General]\nsendAnalytics=false\nmountSharedFolder=true\n"
                                "[display]\nbrightnessLevel=2\ndimmingInactive=0\npowerInactive=10\n"
                                "[locale]\nunits=1\n"
                                "[home]\nzoomLevel=0\nappListCollapsed=true\ndoubleClickOpen=1\n"
                                "[dateTime]\n24Hour=true\nautomaticDateTime=0\ndateFormat=yyyy-MM-dd\n"
                                "timezone=America/New_York\n"
                                "[updates]\nautomaticUpdateCheck=FALSE\nlastUpdateCheck=2024-05-17 08:30\n"
                                "[initialization]\nfirstBootApplication=true\n"
                                "[lockscreen]\nlockscreenAuto=false\n"));
    AppSession app;
    QCOMPARE(app.property(QStringLiteral("brightnessLevel"), "value").toInt(), 2);
    QCOMPARE(app.property(QStringLiteral("dimmingInactive"), "displayText").toString(),
             QStringLiteral("15 seconds"));
    QCOMPARE(app.property(QStringLiteral("powerInactive"), "displayText").toString(),
             QStringLiteral("1 hour"));
    QCOMPARE(app.property(QStringLiteral("units"), "displayText").toString(), QStringLiteral("Metric (mm)"));
    QCOMPARE(app.property(QStringLiteral("zoomLevel"), "displayText").toString(), QStringLiteral("Smallest"));
    QCOMPARE(app.property(QStringLiteral("appListCollapsed"), "checked").toBool(), true);
    QCOMPARE(app.property(QStringLiteral("doubleClickOpen"), "checked").toBool(), true);
    QCOMPARE(app.property(QStringLiteral("mountSharedFolder"), "checked").toBool(), true);
    QCOMPARE(app.property(QStringLiteral("sendAnalytics"), "checked").toBool(), false);
    QCOMPARE(app.property(QStringLiteral("firstBootApplication"), "checked").toBool(), true);
    app.turnTo(1);
    QCOMPARE(app.property(QStringLiteral("24Hour"), "checked").toBool(), true);
    QCOMPARE(app.property(QStringLiteral("automaticDateTime"), "checked").toBool(), false);
    QCOMPARE(app.property(QStringLiteral("dateFormat"), "displayText").toString(),
             QStringLiteral("YYYY-MM-DD"));
    QCOMPARE(app.property(QStringLiteral("timezone"), "value").toString(),
             QStringLiteral("America/New York"));
    app.turnTo(3);
    QCOMPARE(app.property(QStringLiteral("automaticUpdateCheck"), "checked").toBool(), false);
    QCOMPARE(app.text(QStringLiteral("lastUpdateCheck")), QStringLiteral("2024-05-17 08:30"));
    app.turnTo(5);
    QCOMPARE(app.property(QStringLiteral("lockscreenAuto"), "checked").toBool(), false);
}

void TestStoredAtStart::valueOutsideTheRangeShowsSafely_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<int>("place");
    QTest::newRow("below") << QByteArray("0") << 1;
    QTest::newRow("above") << QByteArray("10") << 9;
    QTest::newRow("far above") << QByteArray("99999999999999999999") << 9;
    QTest::newRow("negative") << QByteArray("-3") << 1;
    QTest::newRow("a word") << QByteArray("bright") << 1;
    QTest::newRow("empty") << QByteArray("") << 1;
    QTest::newRow("a list") << QByteArray("3, 4") << 1;
    QTest::newRow("invalid") << QByteArray("@Invalid()") << 1;
}

void TestStoredAtStart::valueOutsideTheRangeShowsSafely()
{
    QFETCH(QByteArray, stored);
    QFETCH(int, place);
    QVERIFY(SettingsFile::write("[display]\nbrightnessLevel=" + stored + '\n'));
    const MessageLog log;
    AppSession app;
    QCOMPARE(app.property(QStringLiteral("brightnessLevel"), "value").toInt(), place);
    QCOMPARE(complaints(log), QStringList());
}

void TestStoredAtStart::unknownChoiceShowsSafely_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("one too many") << QByteArray("12");
    QTest::newRow("negative") << QByteArray("-1");
    QTest::newRow("a word") << QByteArray("never");
    QTest::newRow("a list") << QByteArray("1, 2");
    QTest::newRow("empty") << QByteArray("");
}

void TestStoredAtStart::unknownChoiceShowsSafely()
{
    QFETCH(QByteArray, stored);
    QVERIFY(SettingsFile::write("[display]\ndimmingInactive=" + stored + '\n'));
    const MessageLog log;
    AppSession app;
    QCOMPARE(app.property(QStringLiteral("dimmingInactive"), "displayText").toString(),
             QStringLiteral("Not a known choice"));
    app.click(QStringLiteral("dimmingInactive"));
    app.click(QStringLiteral("dimmingInactive.3"));
    QCOMPARE(SettingsFile::content(), QByteArray("[display]\ndimmingInactive=3\n"));
    QCOMPARE(complaints(log), QStringList());
}

void TestStoredAtStart::unknownTextsShowAsTheyAre()
{
    QVERIFY(SettingsFile::write("[dateTime]\ndateFormat=dddd\ntimezone=Mars/Olympus_Mons\n"));
    AppSession app(1);
    QCOMPARE(app.property(QStringLiteral("dateFormat"), "displayText").toString(), QStringLiteral("dddd"));
    QCOMPARE(app.property(QStringLiteral("timezone"), "value").toString(),
             QStringLiteral("Mars/Olympus Mons"));
    app.click(QStringLiteral("timezone"));
    QVERIFY(app.isVisible(QStringLiteral("regions")));
}

void TestStoredAtStart::lineEndsInAStoredTextShowAsSpaces()
{
    QVERIFY(SettingsFile::write("[updates]\nlastUpdateCheck=one\\r\\ntwo\\x0three\\tfour\n"));
    AppSession app(3);
    QCOMPARE(app.text(QStringLiteral("lastUpdateCheck")), QStringLiteral("one two three four"));
}

void TestStoredAtStart::markupInAStoredTextIsNotCarriedOut()
{
    QVERIFY(
        SettingsFile::write("[updates]\nlastUpdateCheck=<b>bold</b><img src='http://example.invalid/'>\n"));
    AppSession app(3);
    QCOMPARE(app.text(QStringLiteral("lastUpdateCheck")),
             QStringLiteral("<b>bold</b><img src='http://example.invalid/'>"));
    constexpr int plainText = 0;
    QCOMPARE(app.property(QStringLiteral("lastUpdateCheck"), "textFormat").toInt(), plainText);
}

void TestStoredAtStart::endlessTextDoesNotBreakThePage()
{
    QVERIFY(SettingsFile::write("[updates]\nlastUpdateCheck=" + QByteArray(1000000, 'x') + "\\n\\0y\n"));
    const MessageLog log;
    AppSession app(3);
    QCOMPARE(app.text(QStringLiteral("lastUpdateCheck")), QString(200, QLatin1Char('x')));
    const QQuickItem &text = app.item(QStringLiteral("lastUpdateCheck"));
    QVERIFY(text.mapToScene(QPointF(text.width(), 0)).x() <= 800);
    QVERIFY(text.mapToScene(QPointF(0, 0)).x() >= 212);
    QCOMPARE(complaints(log), QStringList());
}

void TestStoredAtStart::valueOfAnotherProgramShowsWhenThePageComesBack()
{
    AppSession app;
    app.turnTo(5);
    QVERIFY(SettingsFile::write(
        "[display]\nbrightnessLevel=4\ndimmingInactive=1\n[home]\ndoubleClickOpen=true\n"));
    app.turnTo(0);
    QCOMPARE(app.property(QStringLiteral("brightnessLevel"), "value").toInt(), 4);
    QCOMPARE(app.property(QStringLiteral("dimmingInactive"), "displayText").toString(),
             QStringLiteral("30 seconds"));
    QCOMPARE(app.property(QStringLiteral("doubleClickOpen"), "checked").toBool(), true);
}

void TestStoredAtStart::showingAPageStoresNothing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("no file") << QByteArray();
    QTest::newRow("values out of range")
        << QByteArray("[display]\nbrightnessLevel=99\ndimmingInactive=77\n[dateTime]\ndateFormat=zz\n");
}

void TestStoredAtStart::showingAPageStoresNothing()
{
    QFETCH(QByteArray, content);
    if (!content.isEmpty())
        QVERIFY(SettingsFile::write(content));
    AppSession app;
    for (const int tab : {0, 1, 2, 3, 4, 5, 9, 0})
        app.turnTo(tab);
    QCOMPARE(SettingsFile::content(), content);
}

QTEST_MAIN(TestStoredAtStart)
#include "tst_storedatstart.moc"
