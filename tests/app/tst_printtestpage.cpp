// The test page on the page Printer alignment: which one is printed for which width of the supply.
#include "appsession.h"
#include "devicetools.h"
#include "printeroptionsfile.h"
#include "settingsfile.h"

#include <QtTest/QtTest>

class TestPrintTestPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { PrinterOptionsFile::hideThoseOfTheMachine(); }
    void init();

    void pageIsThatForTheWidth_data();
    void pageIsThatForTheWidth();
    void widthIsShownInTheUnitsOfTheSettings_data();
    void widthIsShownInTheUnitsOfTheSettings();
    void metricWidthIsNotShownNarrowerInInches();
    void onlyWhatIsKnownIsSaid();
    void doubleTouchPrintsOnce();
    void buttonRestsForTwoSeconds();
    void printByKeyKeepsTheFocus();
    void valueThatWasJustSetIsPrintedWith();

private:
    DeviceTools m_tools; // instead of the machine's own
};

namespace {

const QString print = QStringLiteral("testPage.print");
const QString page =
    QStringLiteral("-d BrackenXL /usr/share/data/Corvanta/TestPages/BrackenXL/testpage_%1.tavo");

/// From 4.0 inches, or their 101 millimetres, by keys.
void setWidth(AppSession &app, int steps)
{
    app.item(QStringLiteral("supplyWidth")).forceActiveFocus(Qt::TabFocusReason);
    for (int step = 0; step < qAbs(steps); ++step)
        QTest::keyClick(app.window(), steps < 0 ? Qt::Key_Left : Qt::Key_Right);
}

} // namespace

void TestPrintTestPage::init()
{
    SettingsFile::removeAll();
    PrinterOptionsFile::removeAll();
    m_tools.setScript(QStringLiteral("lp"), QByteArray());
    m_tools.clear();
}

void TestPrintTestPage::pageIsThatForTheWidth_data()
{
    QTest::addColumn<int>("units");
    QTest::addColumn<int>("steps");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("size");
    QTest::addColumn<QString>("limit");
    const QString four = QStringLiteral("4x4");
    const QString six = QStringLiteral("6x6");
    const QString nine = QStringLiteral("9x9");
    const QString fourInches = QStringLiteral("For supplies up to 4.0 in");
    const QString sixInches = QStringLiteral("For supplies up to 6.0 in");
    const QString fourMetric = QStringLiteral("For supplies up to 101 mm");
    const QString sixMetric = QStringLiteral("For supplies up to 152 mm");
    QTest::newRow("1 in") << 0 << -40 << QStringLiteral("1.0 in") << four << fourInches;
    QTest::newRow("4 in") << 0 << 0 << QStringLiteral("4.0 in") << four << fourInches;
    QTest::newRow("4.1 in") << 0 << 1 << QStringLiteral("4.1 in") << six << sixInches;
    QTest::newRow("6 in") << 0 << 20 << QStringLiteral("6.0 in") << six << sixInches;
    QTest::newRow("6.1 in") << 0 << 21 << QStringLiteral("6.1 in") << nine
                            << QStringLiteral("For supplies above 6.0 in");
    QTest::newRow("101 mm") << 1 << 0 << QStringLiteral("101 mm") << four << fourMetric;
    QTest::newRow("102 mm") << 1 << 1 << QStringLiteral("102 mm") << six << sixMetric;
    QTest::newRow("152 mm") << 1 << 51 << QStringLiteral("152 mm") << six << sixMetric;
    QTest::newRow("153 mm") << 1 << 52 << QStringLiteral("153 mm") << nine
                            << QStringLiteral("For supplies above 152 mm");
}

void TestPrintTestPage::pageIsThatForTheWidth()
{
    QFETCH(int, units);
    QFETCH(int, steps);
    QFETCH(QString, shown);
    QFETCH(QString, size);
    QFETCH(QString, limit);
    QVERIFY(SettingsFile::write("[locale]\nunits=" + QByteArray::number(units) + '\n'));
    AppSession app(7);
    setWidth(app, steps);
    QCOMPARE(app.text(QStringLiteral("supplyWidth.value")), shown);
    QCOMPARE(app.item(print).parentItem()->parentItem()->property("title").toString(),
             QStringLiteral("Test page of %1 × %1 inches").arg(size.left(1)));
    QCOMPARE(app.text(QStringLiteral("testPage.report")), limit);
    app.click(print);
    QTRY_COMPARE(m_tools.runs(QStringLiteral("lp")), QStringList({page.arg(size)}));
}

void TestPrintTestPage::buttonRestsForTwoSeconds()
{
    AppSession app(7);
    QCOMPARE(app.property(QStringLiteral("testPage"), "rest").toInt(), 2000);
}

void TestPrintTestPage::widthIsShownInTheUnitsOfTheSettings_data()
{
    QTest::addColumn<int>("steps");
    QTest::addColumn<QString>("inches");
    QTest::addColumn<QString>("metric");
    QTest::addColumn<QString>("size");
    QTest::newRow("4.0 in, switch to metric, still 4x4")
        << 0 << QStringLiteral("4.0 in") << QStringLiteral("101 mm") << QStringLiteral("4");
    QTest::newRow("6.0 in") << 20 << QStringLiteral("6.0 in") << QStringLiteral("152 mm")
                            << QStringLiteral("6");
    QTest::newRow("6.1 in") << 21 << QStringLiteral("6.1 in") << QStringLiteral("154 mm")
                            << QStringLiteral("9");
}

void TestPrintTestPage::widthIsShownInTheUnitsOfTheSettings()
{
    QFETCH(int, steps);
    QFETCH(QString, inches);
    QFETCH(QString, metric);
    QFETCH(QString, size);
    const QString title = QStringLiteral("Test page of %1 × %1 inches").arg(size);
    const auto shownTitle = [](AppSession &app) {
        return app.item(print).parentItem()->parentItem()->property("title").toString();
    };
    AppSession app(7);
    setWidth(app, steps);
    // To and fro, and nothing is lost on the way.
    for (int round = 0; round < 2; ++round) {
        QCOMPARE(app.text(QStringLiteral("supplyWidth.value")), inches);
        QCOMPARE(shownTitle(app), title);
        QVERIFY(SettingsFile::write("[locale]\nunits=1\n"));
        app.turnTo(6);
        app.turnTo(7);
        QCOMPARE(app.text(QStringLiteral("supplyWidth.value")), metric);
        QCOMPARE(shownTitle(app), title);
        QVERIFY(SettingsFile::write("[locale]\nunits=0\n"));
        app.turnTo(6);
        app.turnTo(7);
    }
}

void TestPrintTestPage::metricWidthIsNotShownNarrowerInInches()
{
    QVERIFY(SettingsFile::write("[locale]\nunits=1\n"));
    AppSession app(7);
    setWidth(app, 1);
    QCOMPARE(app.text(QStringLiteral("supplyWidth.value")), QStringLiteral("102 mm"));
    QVERIFY(SettingsFile::write("[locale]\nunits=0\n"));
    app.turnTo(6);
    app.turnTo(7);
    QCOMPARE(app.text(QStringLiteral("supplyWidth.value")), QStringLiteral("4.1 in"));
    QCOMPARE(app.text(QStringLiteral("testPage.report")), QStringLiteral("For supplies up to 6.0 in"));
}

void TestPrintTestPage::onlyWhatIsKnownIsSaid()
{
    m_tools.setScript(QStringLiteral("lp"), "exit 1");
    AppSession app(7);
    app.item(print);
    QCOMPARE(app.text(QStringLiteral("testPage.report")), QStringLiteral("For supplies up to 4.0 in"));
    app.click(print);
    QCOMPARE(app.text(QStringLiteral("testPage.report")),
             QStringLiteral("The print system was asked to print"));
    setWidth(app, 30);
    QCOMPARE(app.text(QStringLiteral("testPage.report")), QStringLiteral("For supplies above 6.0 in"));
}

void TestPrintTestPage::doubleTouchPrintsOnce()
{
    AppSession app(7);
    app.item(QStringLiteral("testPage")).setProperty("rest", 60000);
    app.click(print);
    app.click(print);
    QTRY_COMPARE(m_tools.runs(QStringLiteral("lp")).size(), 1);
    QVERIFY(app.property(print, "resting").toBool());
    app.item(QStringLiteral("testPage")).setProperty("rest", 10);
    QTRY_VERIFY(!app.property(print, "resting").toBool());
    QCOMPARE(m_tools.runs(QStringLiteral("lp")).size(), 1);
}

void TestPrintTestPage::printByKeyKeepsTheFocus()
{
    AppSession app(7);
    app.item(QStringLiteral("testPage")).setProperty("rest", 60000);
    app.press(print, Qt::Key_Space);
    QVERIFY(app.property(print, "visualFocus").toBool());
    QTest::keyClick(app.window(), Qt::Key_Space);
    QTest::keyClick(app.window(), Qt::Key_Return);
    QTRY_COMPARE(m_tools.runs(QStringLiteral("lp")).size(), 1);
}

void TestPrintTestPage::valueThatWasJustSetIsPrintedWith()
{
    AppSession app(7);
    app.item(QStringLiteral("feedOffset")).forceActiveFocus(Qt::TabFocusReason);
    for (int step = 0; step < 5; ++step)
        QTest::keyPress(app.window(), Qt::Key_Right);
    app.click(print);
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("Custom.5"));
    QTRY_COMPARE(m_tools.runs(QStringLiteral("lp")).size(), 1);
}

QTEST_MAIN(TestPrintTestPage)
#include "tst_printtestpage.moc"
