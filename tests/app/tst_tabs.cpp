// How the application turns to a tab: by a touch, and when another process asks for it through the local
// socket.
#include "appsession.h"
#include "childprocess.h"
#include "settingsfile.h"

#include <QtNetwork/QLocalSocket>
#include <QtTest/QtTest>

class TestTabs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void tabsStandInTheOrderOfTheirNumbers();
    void touchOnATabShowsItsPage_data();
    void touchOnATabShowsItsPage();
    void firstTabIsInViewInItsColumn();
    void firstTabIsTheOneThatWasAskedFor_data();
    void firstTabIsTheOneThatWasAskedFor();
    void messageTurnsToTheTab_data();
    void messageTurnsToTheTab();
    void numberWithoutATabLeavesThePageAndSaysSo_data();
    void numberWithoutATabLeavesThePageAndSaysSo();
    void noticeGoesWithATouch();
    void programSelectsTheTabOfTheRunningApplication();
    void programSaysThatNoApplicationRuns();
    void messageClosesWhatIsOpenOverThePage();
    void pageComesBackWhereItWasLeft();
};

namespace {

bool sendMessage(const QByteArray &message)
{
    QLocalSocket socket;
    socket.connectToServer(QCoreApplication::applicationName(), QIODevice::WriteOnly);
    if (!socket.waitForConnected())
        return false;
    socket.write(message);
    return socket.waitForBytesWritten();
}

QString noticeText(const AppSession &app)
{
    return app.window()->property("noticeText").toString();
}

void addPages()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QString>("title");
    QTest::newRow("0") << 0 << QStringLiteral("General");
    QTest::newRow("1") << 1 << QStringLiteral("Date & Time");
    QTest::newRow("2") << 2 << QStringLiteral("Networking");
    QTest::newRow("3") << 3 << QStringLiteral("System Updates");
    QTest::newRow("4") << 4 << QStringLiteral("Languages");
    QTest::newRow("5") << 5 << QStringLiteral("Users & Passwords");
    QTest::newRow("6") << 6 << QStringLiteral("Printer");
    QTest::newRow("7") << 7 << QStringLiteral("Printer alignment");
    QTest::newRow("8") << 8 << QStringLiteral("Presets");
    QTest::newRow("9") << 9 << QStringLiteral("About");
    QTest::newRow("10") << 10 << QStringLiteral("Printer advanced");
    QTest::newRow("11") << 11 << QStringLiteral("Print history");
}

} // namespace

void TestTabs::initTestCase()
{
    // The name under which the program looks for the application.
    QCoreApplication::setApplicationName(QStringLiteral("zbsettings"));
}

void TestTabs::init()
{
    SettingsFile::removeAll();
}

void TestTabs::tabsStandInTheOrderOfTheirNumbers()
{
    AppSession app;
    double above = -1;
    for (const int tab : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}) {
        // The place in the column, which scrolls.
        const double y = app.item(QStringLiteral("tab.%1").arg(tab)).y();
        QVERIFY(y > above);
        above = y;
    }
}

void TestTabs::touchOnATabShowsItsPage_data()
{
    addPages();
}

void TestTabs::touchOnATabShowsItsPage()
{
    QFETCH(int, tab);
    QFETCH(QString, title);
    AppSession app(tab == 0 ? 5 : 0);
    app.turnTo(tab);
    QCOMPARE(app.currentTab(), tab);
    QCOMPARE(app.text(QStringLiteral("pageTitle")), title);
}

void TestTabs::firstTabIsInViewInItsColumn()
{
    AppSession app(10);
    QTRY_VERIFY(QRectF(0, 64, 212, 356).contains(app.rectangle(QStringLiteral("tab.10"))));
}

void TestTabs::firstTabIsTheOneThatWasAskedFor_data()
{
    addPages();
    QTest::newRow("12") << 0 << QStringLiteral("General");
    QTest::newRow("99") << 0 << QStringLiteral("General");
}

void TestTabs::firstTabIsTheOneThatWasAskedFor()
{
    QFETCH(int, tab);
    QFETCH(QString, title);
    const AppSession app(QByteArray(QTest::currentDataTag()).toInt());
    QCOMPARE(app.currentTab(), tab);
    QCOMPARE(app.text(QStringLiteral("pageTitle")), title);
}

void TestTabs::messageTurnsToTheTab_data()
{
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<int>("tab");
    QTest::newRow("number") << QByteArray("2") << 2;
    QTest::newRow("line u and number") << QByteArray("u\n5") << 5;
    QTest::newRow("first tab") << QByteArray("0") << 0;
    QTest::newRow("no number means the first tab") << QByteArray("abc") << 0;
}

void TestTabs::messageTurnsToTheTab()
{
    QFETCH(QByteArray, message);
    QFETCH(int, tab);
    AppSession app(3);
    QVERIFY(sendMessage(message));
    QTRY_COMPARE(app.currentTab(), tab);
    QCOMPARE(noticeText(app), QString());
}

void TestTabs::numberWithoutATabLeavesThePageAndSaysSo_data()
{
    QTest::addColumn<QString>("notice");
    for (const char *number : {"12", "13", "2147483647"})
        QTest::newRow(number) << QStringLiteral("There is no tab %1.").arg(QLatin1String(number));
    QTest::newRow("4294967295") << QStringLiteral("There is no tab -1.");
}

void TestTabs::numberWithoutATabLeavesThePageAndSaysSo()
{
    QFETCH(QString, notice);
    AppSession app(3);
    QVERIFY(sendMessage(QTest::currentDataTag()));
    QTRY_COMPARE(noticeText(app), notice);
    QCOMPARE(app.currentTab(), 3);
    QCOMPARE(app.text(QStringLiteral("pageTitle")), QStringLiteral("System Updates"));
}

void TestTabs::noticeGoesWithATouch()
{
    AppSession app(3);
    QVERIFY(sendMessage("12"));
    QTRY_VERIFY(app.isVisible(QStringLiteral("notice")));
    app.click(QStringLiteral("notice"));
    QTRY_VERIFY(!app.isVisible(QStringLiteral("notice")));

    QVERIFY(sendMessage("12"));
    QTRY_VERIFY(app.isVisible(QStringLiteral("notice")));
    app.turnTo(1);
    QTRY_VERIFY(!app.isVisible(QStringLiteral("notice")));
}

void TestTabs::programSelectsTheTabOfTheRunningApplication()
{
    AppSession app(0);
    ChildProcess program;
    program.start(QStringLiteral(ZB_SETTINGS_PROGRAM), {QStringLiteral("--select-tab"), QStringLiteral("3")});
    QTRY_COMPARE(app.currentTab(), 3);
    QTRY_COMPARE(program.state(), QProcess::NotRunning);
    QCOMPARE(program.exitCode(), 0);
}

void TestTabs::programSaysThatNoApplicationRuns()
{
    ChildProcess program;
    program.start(QStringLiteral(ZB_SETTINGS_PROGRAM), {QStringLiteral("--select-tab"), QStringLiteral("3")});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitCode(), 1);
    const QByteArray line = program.readAllStandardError();
    QVERIFY2(line.startsWith("zbsettings: No running Settings application was found: "), line.constData());
    QCOMPARE(line.count('\n'), 1);
}

void TestTabs::messageClosesWhatIsOpenOverThePage()
{
    AppSession app(1);
    app.click(QStringLiteral("timezone"));
    QVERIFY(app.isVisible(QStringLiteral("regions")));
    QVERIFY(sendMessage("0"));
    QTRY_COMPARE(app.currentTab(), 0);
    QTRY_VERIFY(!app.isVisible(QStringLiteral("regions")));

    app.click(QStringLiteral("dimmingInactive"));
    QVERIFY(app.isVisible(QStringLiteral("dimmingInactive.4")));
    QVERIFY(sendMessage("5"));
    QTRY_COMPARE(app.currentTab(), 5);
    QTRY_VERIFY(!app.isVisible(QStringLiteral("dimmingInactive.4")));
    app.click(QStringLiteral("lockscreenAuto"));
    QCOMPARE(SettingsFile::content(), QByteArray("[lockscreen]\nlockscreenAuto=false\n"));
}

void TestTabs::pageComesBackWhereItWasLeft()
{
    AppSession app(0);
    app.item(QStringLiteral("firstBootApplication"));
    const double scrolled = app.property(QStringLiteral("pageScroll"), "contentY").toDouble();
    QVERIFY(scrolled > 0);
    app.turnTo(5);
    app.turnTo(0);
    QCOMPARE(app.property(QStringLiteral("pageScroll"), "contentY").toDouble(), scrolled);
}

QTEST_MAIN(TestTabs)
#include "tst_tabs.moc"
