// The page About: what it shows of what the tools print, and the reset of the supply calibration.
#include "appsession.h"
#include "devicetools.h"
#include "settingsfile.h"
#include "utilitydaemon.h"

#include <QtTest/QtTest>

#include <memory>

class TestAboutPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void valuesAreShownTrimmed();
    void absentValuesAreNotAvailable();
    void storageIsShownInRows();
    void storageOfAnotherFormIsShownAsItIs();
    void calibrationThatCannotBeToldApartIsShownAsItIs();
    void markupAndEndlessTextsAreHarmless();
    void pageAppearsBeforeItsValues();
    void eachFieldIsReadOnceAndAgainOnRefresh();
    void resetAsksFirstAndCancelIsTheDefault();
    void touchBesideTheQuestionResetsNothing();
    void leavingThePageClosesTheQuestion();
    void resetDeletesThreeValuesAndShowsIt();
    void resetByKeys();
    void resetThatFailsIsReported();
    void resetThatCannotBeSeenIsReported();
    void resetDuringTheFirstReadingLosesNoField();
    void refreshBetweenTwoLooksLosesNoField();
    void refreshBetweenTwoLooksTakesTheNextNoChance();
    void newCalibrationEndsTheReportOfTheReset_data();
    void newCalibrationEndsTheReportOfTheReset();
    void refreshAfterAResetKeepsItsReport();
    void refreshThatCannotReadKeepsTheReportOfTheReset();
    void refreshAfterAFailedResetLooksAnew_data();
    void refreshAfterAFailedResetLooksAnew();
    void shipModeIsShown_data();
    void shipModeIsShown();
    void keysScrollThePage();

private:
    static void waitForValues(AppSession &app);
    /// Resets the supply calibration and waits until the page says what came of it.
    static void reset(AppSession &app, const QString &report);
    static void refresh(AppSession &app);
    /// From now on each reading takes this time and brings nothing.
    void slowDown(const QByteArray &seconds);

    std::unique_ptr<DeviceTools> m_tools;
};

namespace {

const QString resetButton = QStringLiteral("about.resetCalibration");
const QString confirmButton = QStringLiteral("confirmation.confirm");

const QList<QPair<QByteArray, QByteArray>> bootValues = {{"serialNumber", " BX 0042 "},
                                                         {"ethaddr", "02:00:5e:10:00:02"},
                                                         {"backstop", "112"},
                                                         {"hOffset", "-3"},
                                                         {"bMarkOffset", "18"},
                                                         {"gapOffset", "7"},
                                                         {"tphHeat", "104"},
                                                         {"backstop2", "109"},
                                                         {"hOffset2", "2"},
                                                         {"bMarkOffset2", "21"},
                                                         {"gapOffset2", "5"},
                                                         {"tphHeat2", "98"},
                                                         {"tachLow", "812"},
                                                         {"tachHigh", "1190"},
                                                         {"cutterTrans", "436"},
                                                         {"supplyTrans", "2213"},
                                                         {"supplyRefl", "1764"}};

QStringList cells(const AppSession &app, const QString &name)
{
    QStringList texts;
    for (int i = 0; i < 5; ++i)
        texts += app.text(QStringLiteral("%1.%2").arg(name).arg(i));
    return texts;
}

QStringList words(const char *text)
{
    return QString::fromUtf8(text).split(QLatin1Char('|'));
}

QQuickItem &page(AppSession &app)
{
    return *app.item(QStringLiteral("page.9")).property("item").value<QQuickItem *>();
}

/// What the page shows of every field.
QStringList fields(const AppSession &app)
{
    QStringList texts;
    for (const char *item :
         {"about.serialNumber", "about.version", "about.ethernetAddress", "about.wirelessAddress",
          "about.storage", "about.offsets1", "about.offsets2", "about.calibration"})
        texts += app.text(QString::fromLatin1(item));
    return texts;
}

const QStringList nothingButTheVersion = {QStringLiteral("Not available"), QStringLiteral("3.1.1.11"),
                                          QStringLiteral("Not available"), QStringLiteral("Not available"),
                                          QStringLiteral("Not available"), QStringLiteral("Not available"),
                                          QStringLiteral("Not available"), QStringLiteral("Not available")};

const QString noReport = QStringLiteral("Deletes the values for supply and cutter");
const QString resetDone = QStringLiteral("Reset. Calibrate the supply before the next print.");
const QString resetFailed = QStringLiteral("The values are still there, or cannot be read.");

} // namespace

void TestAboutPage::init()
{
    SettingsFile::removeAll();
    m_tools = std::make_unique<DeviceTools>();
    m_tools->setBootValues(bootValues);
    m_tools->setScript(
        QStringLiteral("df"),
        "echo 'Filesystem Size Used Avail Use% Mounted on'\necho '/dev/root 2.9G 1.2G 1.6G 43% /'");
    m_tools->setScript(QStringLiteral("cat"),
                       "test \"$1\" = /sys/class/net/wlan0/address && echo 02:00:5e:10:00:01");
}

void TestAboutPage::cleanup()
{
    m_tools.reset();
}

void TestAboutPage::waitForValues(AppSession &app)
{
    QTRY_VERIFY_WITH_TIMEOUT(app.item(QStringLiteral("about.refresh")).isEnabled(), 10000);
}

void TestAboutPage::reset(AppSession &app, const QString &report)
{
    page(app).setProperty("firstLook", 30);
    app.click(resetButton);
    app.click(confirmButton);
    QTRY_COMPARE_WITH_TIMEOUT(app.text(QStringLiteral("about.resetReport")), report, 10000);
}

void TestAboutPage::refresh(AppSession &app)
{
    app.click(QStringLiteral("about.refresh"));
    waitForValues(app);
}

void TestAboutPage::slowDown(const QByteArray &seconds)
{
    for (const char *tool : {"fw_printenv", "df", "cat"})
        m_tools->setScript(QString::fromLatin1(tool), "exec sleep " + seconds);
}

void TestAboutPage::valuesAreShownTrimmed()
{
    AppSession app(9);
    waitForValues(app);
    QCOMPARE(app.text(QStringLiteral("about.serialNumber")), QStringLiteral("BX 0042"));
    QCOMPARE(app.text(QStringLiteral("about.version")), QStringLiteral("3.1.1.11"));
    QCOMPARE(app.text(QStringLiteral("about.ethernetAddress")), QStringLiteral("02:00:5e:10:00:02"));
    QCOMPARE(app.text(QStringLiteral("about.wirelessAddress")), QStringLiteral("02:00:5e:10:00:01"));
    QCOMPARE(cells(app, QStringLiteral("about.offsets1")), words("112|-3|18|7|104"));
    QCOMPARE(cells(app, QStringLiteral("about.offsets2")), words("109|2|21|5|98"));
    QCOMPARE(cells(app, QStringLiteral("about.calibration")), words("812|1190|436|2213|1764"));
}

void TestAboutPage::absentValuesAreNotAvailable()
{
    const QString absent = QStringLiteral("Not available");
    m_tools->setBootValues({{"hOffset", "5"}, {"tachLow", "812"}});
    for (const char *tool : {"df", "cat"})
        m_tools->setScript(QString::fromLatin1(tool), "echo No such file >&2; exit 1");
    {
        AppSession app(9);
        waitForValues(app);
        for (const char *item : {"about.serialNumber", "about.ethernetAddress", "about.wirelessAddress",
                                 "about.storage", "about.offsets2"})
            QCOMPARE(app.text(QString::fromLatin1(item)), absent);
        QCOMPARE(cells(app, QStringLiteral("about.offsets1")),
                 words("Not available|5|Not available|Not available|Not available"));
        QCOMPARE(cells(app, QStringLiteral("about.calibration")),
                 words("812|Not available|Not available|Not available|Not available"));
    }
    m_tools->setScript(QStringLiteral("fw_printenv"), "exit 243");
    AppSession app(9);
    waitForValues(app);
    QCOMPARE(app.text(QStringLiteral("about.calibration")), absent);
    QCOMPARE(app.text(QStringLiteral("about.version")), QStringLiteral("3.1.1.11"));
}

void TestAboutPage::storageIsShownInRows()
{
    m_tools->setScript(
        QStringLiteral("df"),
        "echo 'Filesystem Size Used Avail Use% Mounted on'\n"
        "echo '/dev/root 2.9G 1.2G 1.6G 43% /'\necho '/dev/sda1 15G 14G 512M 97% /mnt/USB stick'");
    AppSession app(9);
    waitForValues(app);
    QCOMPARE(app.text(QStringLiteral("about.storage.0.mountPoint")), QStringLiteral("/"));
    QCOMPARE(app.text(QStringLiteral("about.storage.0.available")), QStringLiteral("1.6 GiB available"));
    QCOMPARE(app.text(QStringLiteral("about.storage.0.used")),
             QStringLiteral("1.2 GiB of 2.9 GiB used (/dev/root)"));
    QCOMPARE(app.text(QStringLiteral("about.storage.1.mountPoint")), QStringLiteral("/mnt/USB stick"));
    QCOMPARE(app.text(QStringLiteral("about.storage.1.available")), QStringLiteral("512 MiB available"));
    QVERIFY(!app.isVisible(QStringLiteral("about.storage")));
}

void TestAboutPage::storageOfAnotherFormIsShownAsItIs()
{
    m_tools->setScript(QStringLiteral("df"), "echo 'Dateisystem Verf.'\necho '/dev/root 1,6G'");
    AppSession app(9);
    waitForValues(app);
    QCOMPARE(app.text(QStringLiteral("about.storage")), QStringLiteral("Dateisystem Verf.\n/dev/root 1,6G"));
}

void TestAboutPage::calibrationThatCannotBeToldApartIsShownAsItIs()
{
    m_tools->setScript(QStringLiteral("fw_printenv"), "echo 'Environment WRONG, copy 0'\necho 1\necho 2");
    AppSession app(9);
    waitForValues(app);
    QCOMPARE(app.text(QStringLiteral("about.calibration")), QStringLiteral("Environment WRONG, copy 0 1 2"));
}

void TestAboutPage::markupAndEndlessTextsAreHarmless()
{
    m_tools->setBootValues({{"serialNumber", "<b>1</b>"}, {"ethaddr", QByteArray(100000, 'W')}});
    m_tools->setScript(QStringLiteral("df"), "head -c 100000 /dev/zero | tr '\\0' W");
    AppSession app(9);
    waitForValues(app);
    QCOMPARE(app.text(QStringLiteral("about.serialNumber")), QStringLiteral("<b>1</b>"));
    QCOMPARE(app.text(QStringLiteral("about.ethernetAddress")), QString(200, QLatin1Char('W')));
    QCOMPARE(app.text(QStringLiteral("about.storage")), QString(2000, QLatin1Char('W')));
    for (const char *item : {"about.ethernetAddress", "about.storage"}) {
        const QRectF place = app.rectangle(QString::fromLatin1(item));
        QVERIFY(place.left() >= 232);
        QVERIFY(place.right() <= 780);
    }
}

void TestAboutPage::pageAppearsBeforeItsValues()
{
    for (const char *tool : {"fw_printenv", "df", "cat"})
        m_tools->setScript(QString::fromLatin1(tool), "exec sleep 1");
    QElapsedTimer elapsed;
    AppSession app;
    elapsed.start();
    app.turnTo(9);
    QVERIFY2(elapsed.elapsed() < 450, qPrintable(QString::number(elapsed.elapsed())));
    QCOMPARE(app.text(QStringLiteral("about.serialNumber")), QStringLiteral("Reading…"));
    waitForValues(app);
    QCOMPARE(app.text(QStringLiteral("about.serialNumber")), QStringLiteral("Not available"));
}

void TestAboutPage::eachFieldIsReadOnceAndAgainOnRefresh()
{
    const QStringList runs = {
        QStringLiteral("fw_printenv -n serialNumber"),
        QStringLiteral("fw_printenv -n ethaddr"),
        QStringLiteral("cat /sys/class/net/wlan0/address"),
        QStringLiteral("df -t ext4 -h"),
        QStringLiteral("fw_printenv -n backstop hOffset bMarkOffset gapOffset tphHeat backstop2 hOffset2 "
                       "bMarkOffset2 gapOffset2 tphHeat2"),
        QStringLiteral("fw_printenv -n tachLow tachHigh cutterTrans supplyTrans supplyRefl")};
    AppSession app(0);
    m_tools->clear(); // the back end has read the ship mode
    app.turnTo(9);
    waitForValues(app);
    QCOMPARE(m_tools->runs(), runs);
    app.turnTo(0);
    app.turnTo(9);
    waitForValues(app);
    QCOMPARE(m_tools->runs(), runs);

    m_tools->setBootValues({{"serialNumber", "NEW"}});
    app.click(QStringLiteral("about.refresh"));
    waitForValues(app);
    QCOMPARE(m_tools->runs(), runs + runs);
    QCOMPARE(app.text(QStringLiteral("about.serialNumber")), QStringLiteral("NEW"));
}

void TestAboutPage::resetAsksFirstAndCancelIsTheDefault()
{
    AppSession app(9);
    waitForValues(app);
    app.click(resetButton);
    QVERIFY2(app.text(QStringLiteral("confirmation.text"))
                 .contains(QStringLiteral("cutter transmission, supply transmission and supply reflection")),
             qPrintable(app.text(QStringLiteral("confirmation.text"))));
    for (const QString &button : {confirmButton, QStringLiteral("confirmation.cancel")}) {
        const QRectF place = app.rectangle(button);
        QVERIFY(place.width() >= 48 && place.height() >= 48);
    }
    QCOMPARE(app.window()->activeFocusItem()->objectName(), QStringLiteral("confirmation.cancel"));
    QTest::keyClick(app.window(), Qt::Key_Return);
    QTRY_VERIFY(!app.isVisible(confirmButton));
    QCOMPARE(m_tools->runs(QStringLiteral("fw_setenv")), QStringList());
    QCOMPARE(cells(app, QStringLiteral("about.calibration")), words("812|1190|436|2213|1764"));
}

void TestAboutPage::touchBesideTheQuestionResetsNothing()
{
    AppSession app(9);
    waitForValues(app);
    app.click(resetButton);
    QVERIFY(app.isVisible(confirmButton));
    QTest::mouseClick(app.window(), Qt::LeftButton, Qt::NoModifier, QPoint(20, 20));
    QTRY_VERIFY(!app.isVisible(confirmButton));
    QCOMPARE(m_tools->runs(QStringLiteral("fw_setenv")), QStringList());
}

void TestAboutPage::leavingThePageClosesTheQuestion()
{
    AppSession app(9);
    waitForValues(app);
    app.click(resetButton);
    QMetaObject::invokeMethod(app.window(), "showTab", Q_ARG(QVariant, 0));
    QTRY_VERIFY(!app.isVisible(confirmButton));
}

void TestAboutPage::resetDeletesThreeValuesAndShowsIt()
{
    AppSession app(9);
    waitForValues(app);
    app.click(resetButton);
    app.click(confirmButton);
    QTRY_COMPARE(cells(app, QStringLiteral("about.calibration")), words("812|1190|Deleted|Deleted|Deleted"));
    QStringList deleted = m_tools->runs(QStringLiteral("fw_setenv"));
    deleted.sort();
    QCOMPARE(deleted, words("cutterTrans|supplyRefl|supplyTrans"));
    QCOMPARE(app.text(QStringLiteral("about.resetReport")), resetDone);
}

void TestAboutPage::resetByKeys()
{
    AppSession app(9);
    waitForValues(app);
    app.press(resetButton, Qt::Key_Return);
    QTRY_COMPARE(app.window()->activeFocusItem()->objectName(), QStringLiteral("confirmation.cancel"));
    QTest::keyClick(app.window(), Qt::Key_Tab);
    QCOMPARE(app.window()->activeFocusItem()->objectName(), confirmButton);
    QTest::keyClick(app.window(), Qt::Key_Tab);
    QCOMPARE(app.window()->activeFocusItem()->objectName(), QStringLiteral("confirmation.cancel"));
    QTest::keyClick(app.window(), Qt::Key_Backtab);
    QTest::keyClick(app.window(), Qt::Key_Space);
    QTRY_COMPARE(app.text(QStringLiteral("about.calibration.2")), QStringLiteral("Deleted"));
}

void TestAboutPage::resetThatFailsIsReported()
{
    m_tools->setScript(QStringLiteral("fw_setenv"), "exit 1");
    AppSession app(9);
    waitForValues(app);
    app.click(resetButton);
    m_tools->clear();
    app.click(confirmButton);
    QTRY_COMPARE_WITH_TIMEOUT(app.text(QStringLiteral("about.resetReport")), resetFailed, 10000);
    QCOMPARE(cells(app, QStringLiteral("about.calibration")), words("812|1190|436|2213|1764"));
    QCOMPARE(m_tools->runs(QStringLiteral("fw_printenv")).size(), 3);
}

void TestAboutPage::resetThatCannotBeSeenIsReported()
{
    AppSession app(9);
    waitForValues(app);
    m_tools->setScript(QStringLiteral("fw_printenv"), "exit 1");
    reset(app, resetFailed);
    QCOMPARE(app.text(QStringLiteral("about.calibration")), QStringLiteral("Not available"));
}

void TestAboutPage::resetDuringTheFirstReadingLosesNoField()
{
    slowDown("0.4");
    AppSession app;
    app.turnTo(9);
    page(app).setProperty("firstLook", 100);
    // Without the touches, of which each takes as long as a reading.
    QVERIFY(QMetaObject::invokeMethod(&page(app), "resetCalibration"));
    QVERIFY(!app.item(QStringLiteral("about.refresh")).isEnabled());
    QTRY_COMPARE_WITH_TIMEOUT(app.text(QStringLiteral("about.resetReport")), resetFailed, 20000);
    waitForValues(app);
    QCOMPARE(fields(app), nothingButTheVersion);
}

void TestAboutPage::refreshBetweenTwoLooksLosesNoField()
{
    m_tools->setScript(QStringLiteral("fw_setenv"), "exit 1");
    AppSession app(9);
    waitForValues(app);
    page(app).setProperty("firstLook", 100);
    app.click(resetButton);
    m_tools->clear();
    app.click(confirmButton);
    QTRY_COMPARE(m_tools->runs(QStringLiteral("fw_printenv")).size(), 1);
    // The second look falls into this reading.
    slowDown("0.3");
    refresh(app);
    QTRY_COMPARE_WITH_TIMEOUT(app.text(QStringLiteral("about.resetReport")), resetFailed, 20000);
    QCOMPARE(fields(app), nothingButTheVersion);
}

void TestAboutPage::refreshBetweenTwoLooksTakesTheNextNoChance()
{
    const auto looks = [this] {
        return m_tools->runs(QStringLiteral("fw_printenv")).filter(QStringLiteral("tachLow")).size();
    };
    m_tools->setScript(QStringLiteral("fw_setenv"), "exit 1");
    AppSession app(9);
    waitForValues(app);
    m_tools->clear();
    page(app).setProperty("firstLook", 250);
    app.click(resetButton);
    app.click(confirmButton);
    QTRY_COMPARE(looks(), 1);
    refresh(app);
    QCOMPARE(looks(), 2);
    QTRY_COMPARE_WITH_TIMEOUT(app.text(QStringLiteral("about.resetReport")), resetFailed, 10000);
    QCOMPARE(looks(), 4);
}

void TestAboutPage::newCalibrationEndsTheReportOfTheReset_data()
{
    QTest::addColumn<QByteArray>("environment");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("all three") << QByteArray("echo 812; echo 1190; echo 440; echo 2200; echo 1750")
                               << words("812|1190|440|2200|1750");
    QTest::newRow("one of them") << QByteArray("echo 812; echo 1190; echo; echo 2200; echo")
                                 << words("812|1190|Not available|2200|Not available");
}

void TestAboutPage::newCalibrationEndsTheReportOfTheReset()
{
    QFETCH(QByteArray, environment);
    QFETCH(QStringList, shown);
    AppSession app(9);
    waitForValues(app);
    reset(app, resetDone);
    m_tools->setScript(QStringLiteral("fw_printenv"), environment);
    refresh(app);
    QCOMPARE(app.text(QStringLiteral("about.resetReport")), noReport);
    QCOMPARE(cells(app, QStringLiteral("about.calibration")), shown);
}

void TestAboutPage::refreshAfterAResetKeepsItsReport()
{
    AppSession app(9);
    waitForValues(app);
    reset(app, resetDone);
    refresh(app);
    QCOMPARE(app.text(QStringLiteral("about.resetReport")), resetDone);
    QCOMPARE(cells(app, QStringLiteral("about.calibration")), words("812|1190|Deleted|Deleted|Deleted"));
}

void TestAboutPage::refreshThatCannotReadKeepsTheReportOfTheReset()
{
    AppSession app(9);
    waitForValues(app);
    reset(app, resetDone);
    m_tools->setScript(QStringLiteral("fw_printenv"), "exit 1");
    refresh(app);
    QCOMPARE(app.text(QStringLiteral("about.resetReport")), resetDone);
    QCOMPARE(cells(app, QStringLiteral("about.calibration")), words("||||"));
}

void TestAboutPage::refreshAfterAFailedResetLooksAnew_data()
{
    QTest::addColumn<QByteArray>("afterwards");
    QTest::addColumn<QString>("report");
    QTest::newRow("deleted late") << QByteArray("echo 812; echo 1190; echo; echo; echo") << resetDone;
    QTest::newRow("still there") << QByteArray("echo 812; echo 1190; echo 436; echo 2213; echo 1764")
                                 << noReport;
}

void TestAboutPage::refreshAfterAFailedResetLooksAnew()
{
    QFETCH(QByteArray, afterwards);
    QFETCH(QString, report);
    m_tools->setScript(QStringLiteral("fw_setenv"), "exit 1");
    AppSession app(9);
    waitForValues(app);
    reset(app, resetFailed);
    m_tools->setScript(QStringLiteral("fw_printenv"), afterwards);
    refresh(app);
    QCOMPARE(app.text(QStringLiteral("about.resetReport")), report);
}

void TestAboutPage::shipModeIsShown_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("text");
    QTest::newRow("military") << 2 << QStringLiteral("Military");
    QTest::newRow("civil") << 0 << QString();
    QTest::newRow("another") << 1 << QString();
}

void TestAboutPage::shipModeIsShown()
{
    QFETCH(int, mode);
    QFETCH(QString, text);
    UtilityDaemon daemon;
    QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
    QVERIFY(daemon.setShip(mode));
    AppSession app(9);
    QCOMPARE(app.text(QStringLiteral("about.shipMode")), text);
}

void TestAboutPage::keysScrollThePage()
{
    AppSession app(9);
    waitForValues(app);
    const auto scrolled = [&app] {
        return app.property(QStringLiteral("pageScroll"), "contentY").toDouble();
    };
    app.item(QStringLiteral("about.refresh")).forceActiveFocus(Qt::TabFocusReason);
    QTest::keyClick(app.window(), Qt::Key_PageDown);
    QVERIFY(scrolled() > 200);
    for (int press = 0; press < 5; ++press)
        QTest::keyClick(app.window(), Qt::Key_PageDown);
    const QQuickItem &area = app.item(QStringLiteral("pageScroll"));
    QCOMPARE(scrolled(), area.property("contentHeight").toDouble() - area.height());
    for (int press = 0; press < 6; ++press)
        QTest::keyClick(app.window(), Qt::Key_PageUp);
    QCOMPARE(scrolled(), 0.0);
}

QTEST_MAIN(TestAboutPage)
#include "tst_aboutpage.moc"
