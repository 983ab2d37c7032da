// The pages Printer, Printer alignment and Printer advanced: what a touch or a key puts among the options
// that every program prints with, and what the pages show of options that were there before.
#include "appsession.h"
#include "messagelog.h"
#include "printeroptionsfile.h"
#include "settingsfile.h"

#include <QtGui/QAccessible>
#include <QtTest/QtTest>

/// Keeps every value that an object's property "value" has had.
class ValueRecorder : public QObject
{
    Q_OBJECT

public:
    explicit ValueRecorder(QObject *object) { connect(object, SIGNAL(valueChanged()), SLOT(note())); }

    QVector<int> values;

private Q_SLOTS:
    void note() { values += sender()->property("value").toInt(); }
};

class TestPrinterPages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { PrinterOptionsFile::hideThoseOfTheMachine(); }
    void init();

    void switchSetsItsOptionBothWays_data();
    void switchSetsItsOptionBothWays();
    void choiceSetsItsOption_data();
    void choiceSetsItsOption();
    void choicesAreThoseOfTheBackEnd();
    void nothingStoredIsShownAsNotChosen();
    void cutModeThatIsShownAlreadyCanBeStored();
    void buttonsStepAndGoBackToZero_data();
    void buttonsStepAndGoBackToZero();
    void storedOptionsAreShown();
    void rangeIsSaidAndKept_data();
    void rangeIsSaidAndKept();
    void storedValueOutsideTheRangeIsSaidAndKept();
    void keysStepAndLeap();
    void valueThatWaitsIsSetWhenTheProgramEnds();
    void dragHandsOverItsLastValue();
    void dragWritesAFewTimesOnly();
    void heldButtonGoesFasterWithTime();
    void heldButtonThatReachesTheEndHandsItOver();
    void fingerThatScrollsOverAStepperChangesNothing_data();
    void fingerThatScrollsOverAStepperChangesNothing();
    void pagesShowWhatOthersOfThemSet();
    void defaultsAreLoadedAfterAQuestionOnly();
    void defaultsThatCannotBeWrittenAreNotSaidToBeLoaded();
    void presetWithTheNameOfTheDefaultsIsNotTakenForThem();
    void questionIsClosedWithThePage();
    void leapSuitsTheRange();
    void barIsFilledFromZero_data();
    void barIsFilledFromZero();
    void zeroByKeyLeavesTheFocusAtTheSlider();
    void partsOfAStepperSayWhoseTheyAre_data();
    void partsOfAStepperSayWhoseTheyAre();
    void longChoiceIsShownWhole();
    void pagesGiveNothingToComplainAbout();
};

namespace {

QString valueText(AppSession &app, const QString &option)
{
    app.item(option);
    return app.text(option + QStringLiteral(".value"));
}

void addSteppers()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QString>("control");
    QTest::addColumn<int>("end");
    QTest::addColumn<QString>("unit");
    const QString position = QStringLiteral("position steps");
    const QString heat = QStringLiteral("heat steps");
    const QString tension = QStringLiteral("tension steps");
    QTest::newRow("Hoffset1") << 7 << QStringLiteral("horizontal1Offset") << 2000 << position;
    QTest::newRow("Hoffset2") << 7 << QStringLiteral("horizontal2Offset") << 2000 << position;
    QTest::newRow("Voffset1") << 7 << QStringLiteral("vertical1Offset") << 2000 << position;
    QTest::newRow("Voffset2") << 7 << QStringLiteral("vertical2Offset") << 2000 << position;
    QTest::newRow("Feed") << 7 << QStringLiteral("feedOffset") << 2000 << position;
    QTest::newRow("Stop") << 7 << QStringLiteral("backfeedOffset") << 2000 << position;
    QTest::newRow("head1Offset") << 10 << QStringLiteral("head1HeatOffset") << 50 << heat;
    QTest::newRow("head2Offset") << 10 << QStringLiteral("head2HeatOffset") << 50 << heat;
    QTest::newRow("R1TensionAdjust") << 10 << QStringLiteral("r1Tension") << 10 << tension;
    QTest::newRow("R2TensionAdjust") << 10 << QStringLiteral("r2Tension") << 10 << tension;
}

} // namespace

void TestPrinterPages::init()
{
    SettingsFile::removeAll();
    PrinterOptionsFile::removeAll();
}

void TestPrinterPages::switchSetsItsOptionBothWays_data()
{
    QTest::addColumn<QByteArray>("option");
    QTest::addColumn<QByteArray>("on");
    QTest::addColumn<QByteArray>("off");
    QTest::newRow("mirror") << QByteArray("MirrorPrint") << QByteArray("True") << QByteArray("False");
    QTest::newRow("negative") << QByteArray("NegativePrint") << QByteArray("True") << QByteArray("False");
    QTest::newRow("overprint") << QByteArray("Overprint") << QByteArray("True") << QByteArray("False");
    QTest::newRow("whitebase") << QByteArray("WhiteBase") << QByteArray("True") << QByteArray("False");
    QTest::newRow("ribbonSaver") << QByteArray("RibbonSaver") << QByteArray("Enabled")
                                 << QByteArray("Disabled");
}

void TestPrinterPages::switchSetsItsOptionBothWays()
{
    QFETCH(QByteArray, option);
    QFETCH(QByteArray, on);
    QFETCH(QByteArray, off);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    AppSession app(6);
    QVERIFY(!app.property(name, "checked").toBool());
    app.click(name);
    QCOMPARE(PrinterOptionsFile::value(option), on);
    QVERIFY(app.property(name, "checked").toBool());
    app.press(name, Qt::Key_Space);
    QCOMPARE(PrinterOptionsFile::value(option), off);
    QVERIFY(!app.property(name, "checked").toBool());
    QCOMPARE(PrinterOptionsFile::count(), 1);
}

void TestPrinterPages::choiceSetsItsOption_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QByteArray>("option");
    QTest::addColumn<QByteArray>("value");
    const QString orientation = QStringLiteral("orientationOption");
    const QString cut = QStringLiteral("cutOption");
    const QString dithering = QStringLiteral("ditheringMethod");
    const QByteArray wayUp = "orientation-requested";
    QTest::newRow("Landscape") << orientation << 0 << QStringLiteral("Landscape") << wayUp << QByteArray("5");
    QTest::newRow("Portrait") << orientation << 2 << QStringLiteral("Portrait") << wayUp << QByteArray("6");
    QTest::newRow("Portrait 180") << orientation << 3 << QStringLiteral("Portrait 180") << wayUp
                                  << QByteArray("3");
    QTest::newRow("cut after job") << cut << 0 << QStringLiteral("Cut After Job") << QByteArray("CutMedia")
                                   << QByteArray("2");
    QTest::newRow("Bayer") << dithering << 1 << QStringLiteral("Bayer Ordered Dither")
                           << QByteArray("Dithering") << QByteArray("32");
    QTest::newRow("last dithering method") << dithering << 11 << QStringLiteral("Yliluoma Ordered Dither")
                                           << QByteArray("Dithering") << QByteArray("33");
}

void TestPrinterPages::choiceSetsItsOption()
{
    QFETCH(QString, control);
    QFETCH(int, position);
    QFETCH(QString, shown);
    QFETCH(QByteArray, option);
    QFETCH(QByteArray, value);
    AppSession app(6);
    app.click(control);
    app.click(QStringLiteral("%1.%2").arg(control).arg(position));
    QCOMPARE(PrinterOptionsFile::value(option), value);
    QCOMPARE(PrinterOptionsFile::count(), 1);
    QCOMPARE(app.property(control, "displayText").toString(), shown);
}

void TestPrinterPages::choicesAreThoseOfTheBackEnd()
{
    AppSession app(6);
    QCOMPARE(app.property(QStringLiteral("orientationOption"), "model").toStringList(),
             QStringList({QStringLiteral("Landscape"), QStringLiteral("Landscape 180"),
                          QStringLiteral("Portrait"), QStringLiteral("Portrait 180")}));
    QCOMPARE(app.property(QStringLiteral("cutOption"), "count").toInt(), 3);
    QCOMPARE(app.property(QStringLiteral("ditheringMethod"), "count").toInt(), 12);
}

void TestPrinterPages::nothingStoredIsShownAsNotChosen()
{
    AppSession app(6);
    QCOMPARE(app.property(QStringLiteral("orientationOption"), "displayText").toString(),
             QStringLiteral("Not chosen"));
    QCOMPARE(PrinterOptionsFile::count(), 0);
}

void TestPrinterPages::cutModeThatIsShownAlreadyCanBeStored()
{
    AppSession app(6);
    QCOMPARE(app.property(QStringLiteral("cutOption"), "displayText").toString(), QStringLiteral("No Cut"));
    app.click(QStringLiteral("cutOption"));
    app.click(QStringLiteral("cutOption.2"));
    QCOMPARE(PrinterOptionsFile::value("CutMedia"), QByteArray("0"));
}

void TestPrinterPages::buttonsStepAndGoBackToZero_data()
{
    addSteppers();
}

void TestPrinterPages::buttonsStepAndGoBackToZero()
{
    QFETCH(int, tab);
    QFETCH(QString, control);
    const QByteArray option = QTest::currentDataTag();
    AppSession app(tab);
    QCOMPARE(valueText(app, control), QStringLiteral("0"));
    QVERIFY(!app.property(control + QStringLiteral(".zero"), "enabled").toBool());
    app.click(control + QStringLiteral(".plus"));
    QCOMPARE(PrinterOptionsFile::value(option), QByteArray("Custom.1"));
    app.click(control + QStringLiteral(".minus"));
    app.click(control + QStringLiteral(".minus"));
    QCOMPARE(PrinterOptionsFile::value(option), QByteArray("Custom.-1"));
    QCOMPARE(valueText(app, control), QStringLiteral("-1"));
    app.click(control + QStringLiteral(".zero"));
    QCOMPARE(PrinterOptionsFile::value(option), QByteArray("0"));
    QCOMPARE(valueText(app, control), QStringLiteral("0"));
    QCOMPARE(PrinterOptionsFile::count(), 1);
}

void TestPrinterPages::storedOptionsAreShown()
{
    QVERIFY(PrinterOptionsFile::write("orientation-requested=6 MirrorPrint=True CutMedia=1 Dithering=24 "
                                      "RibbonSaver=Enabled Hoffset1=Custom.-1734 Stop=Custom.2.9 "
                                      "head2Offset=Custom.50 R1TensionAdjust=Custom.-10"));
    AppSession app(6);
    QVERIFY(app.property(QStringLiteral("mirror"), "checked").toBool());
    QVERIFY(!app.property(QStringLiteral("negative"), "checked").toBool());
    QVERIFY(app.property(QStringLiteral("ribbonSaver"), "checked").toBool());
    QCOMPARE(app.property(QStringLiteral("orientationOption"), "displayText").toString(),
             QStringLiteral("Portrait"));
    QCOMPARE(app.property(QStringLiteral("cutOption"), "displayText").toString(),
             QStringLiteral("Cut After Page"));
    QCOMPARE(app.property(QStringLiteral("ditheringMethod"), "displayText").toString(),
             QStringLiteral("Sierra Dither"));
    app.turnTo(7);
    QCOMPARE(valueText(app, QStringLiteral("horizontal1Offset")), QStringLiteral("-1734"));
    QCOMPARE(app.property(QStringLiteral("horizontal1Offset"), "value").toInt(), -1734);
    QCOMPARE(valueText(app, QStringLiteral("backfeedOffset")), QStringLiteral("2"));
    app.turnTo(10);
    QCOMPARE(valueText(app, QStringLiteral("head2HeatOffset")), QStringLiteral("50"));
    QCOMPARE(valueText(app, QStringLiteral("r1Tension")), QStringLiteral("-10"));
}

void TestPrinterPages::rangeIsSaidAndKept_data()
{
    addSteppers();
}

void TestPrinterPages::rangeIsSaidAndKept()
{
    QFETCH(int, tab);
    QFETCH(QString, control);
    QFETCH(int, end);
    QFETCH(QString, unit);
    const QByteArray option = QTest::currentDataTag();
    AppSession app(tab);
    const QQuickItem &slider = app.item(control);
    QCOMPARE(slider.parentItem()->property("description").toString(),
             QStringLiteral("-%1 to %1 %2").arg(QString::number(end), unit));
    app.drag(control, AppSession::handlePlace(slider, 0),
             AppSession::handlePlace(slider, end) + QPointF(200, 0));
    QCOMPARE(PrinterOptionsFile::value(option), "Custom." + QByteArray::number(end));
    QVERIFY(!app.property(control + QStringLiteral(".plus"), "enabled").toBool());
    app.press(control, Qt::Key_Right);
    QCOMPARE(valueText(app, control), QString::number(end));

    app.drag(control, AppSession::handlePlace(slider, end),
             AppSession::handlePlace(slider, -end) - QPointF(200, 0));
    QCOMPARE(PrinterOptionsFile::value(option), "Custom." + QByteArray::number(-end));
    QVERIFY(!app.property(control + QStringLiteral(".minus"), "enabled").toBool());
    app.press(control, Qt::Key_Left);
    QCOMPARE(valueText(app, control), QString::number(-end));
    app.click(control + QStringLiteral(".plus"));
    QCOMPARE(PrinterOptionsFile::value(option), "Custom." + QByteArray::number(1 - end));
}

void TestPrinterPages::storedValueOutsideTheRangeIsSaidAndKept()
{
    QVERIFY(PrinterOptionsFile::write("Feed=Custom.9999"));
    AppSession app(7);
    const QString control = QStringLiteral("feedOffset");
    QCOMPARE(valueText(app, control), QStringLiteral("9999"));
    QCOMPARE(app.item(control).parentItem()->property("warning").toString(),
             QStringLiteral("The stored value is not between -2000 and 2000."));
    QVERIFY(!app.property(control + QStringLiteral(".plus"), "enabled").toBool());
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("Custom.9999"));
    app.click(control + QStringLiteral(".minus"));
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("Custom.2000"));
}

void TestPrinterPages::keysStepAndLeap()
{
    AppSession app(7);
    const QString control = QStringLiteral("feedOffset");
    app.press(control, Qt::Key_Right);
    QTRY_COMPARE(PrinterOptionsFile::value("Feed"), QByteArray("Custom.1"));
    QTest::keyClick(app.window(), Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(app.window(), Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(app.window(), Qt::Key_Left);
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("Custom.200"));
    QTest::keyClick(app.window(), Qt::Key_Left, Qt::ShiftModifier);
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("Custom.100"));
    QTest::keyClick(app.window(), Qt::Key_Right);
    for (int leap = 0; leap < 20; ++leap)
        QTest::keyClick(app.window(), Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(valueText(app, control), QStringLiteral("2000"));
}

void TestPrinterPages::valueThatWaitsIsSetWhenTheProgramEnds()
{
    AppSession app(7);
    app.item(QStringLiteral("feedOffset")).forceActiveFocus(Qt::TabFocusReason);
    for (int step = 0; step < 5; ++step)
        QTest::keyPress(app.window(), Qt::Key_Right);
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QGuiApplication::exec();
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("Custom.5"));
}

void TestPrinterPages::dragHandsOverItsLastValue()
{
    AppSession app(7);
    const QString control = QStringLiteral("vertical1Offset");
    const QQuickItem &slider = app.item(control);
    for (const int target : {1200, -700, 1999}) {
        const int now = slider.property("value").toInt();
        app.drag(control, AppSession::handlePlace(slider, now), AppSession::handlePlace(slider, target));
        const int shown = valueText(app, control).toInt();
        QVERIFY2(qAbs(shown - target) < 30, qPrintable(QString::number(shown)));
        QCOMPARE(PrinterOptionsFile::value("Voffset1"), "Custom." + QByteArray::number(shown));
    }
}

void TestPrinterPages::dragWritesAFewTimesOnly()
{
    AppSession app(7);
    const QString control = QStringLiteral("vertical1Offset");
    const QQuickItem &slider = app.item(control);
    const auto place = [&slider](int value) {
        return slider.mapToScene(AppSession::handlePlace(slider, value)).toPoint();
    };
    QSet<QByteArray> written;
    int shown = 0;
    QSet<int> moved;
    QElapsedTimer clock;
    QTest::mousePress(app.window(), Qt::LeftButton, Qt::NoModifier, place(0));
    clock.start();
    for (int value = 0; value <= 1000; value += 20) {
        QTest::mouseMove(app.window(), place(value));
        shown = slider.property("value").toInt();
        moved += shown;
        written += PrinterOptionsFile::value("Voffset1");
    }
    const int pauses = int(clock.elapsed() / 300);
    QVERIFY(moved.size() > 40);
    // Nothing, the first value, and one more a pause.
    QVERIFY2(written.size() <= 2 + pauses + 1, qPrintable(QString::number(written.size())));
    // The finger rests: the last value does not wait for it to leave.
    QTRY_COMPARE(PrinterOptionsFile::value("Voffset1"), "Custom." + QByteArray::number(shown));
    QTest::mouseRelease(app.window(), Qt::LeftButton, Qt::NoModifier, place(1000));
    QCOMPARE(PrinterOptionsFile::value("Voffset1"), "Custom." + QByteArray::number(shown));
}

void TestPrinterPages::heldButtonGoesFasterWithTime()
{
    AppSession app(7);
    const QString control = QStringLiteral("feedOffset");
    const ValueRecorder recorder(app.item(control).parentItem());
    const QPoint place = app.hold(control + QStringLiteral(".plus"));
    QTRY_VERIFY_WITH_TIMEOUT(recorder.values.size() >= 22, 10000);
    // Steps as long as the finger is down, and none when it leaves.
    const int last = recorder.values.last();
    QTest::mouseRelease(app.window(), Qt::LeftButton, Qt::NoModifier, place);
    QCOMPARE(valueText(app, control).toInt(), last);
    QVector<int> expected;
    for (int value = 1; value < 20; ++value)
        expected += value;
    expected += {29, 39, 49};
    QCOMPARE(recorder.values.mid(0, 22), expected);
    QCOMPARE(PrinterOptionsFile::value("Feed"), "Custom." + QByteArray::number(last));
}

void TestPrinterPages::heldButtonThatReachesTheEndHandsItOver()
{
    QVERIFY(PrinterOptionsFile::write("R1TensionAdjust=Custom.7"));
    AppSession app(10);
    const QString control = QStringLiteral("r1Tension");
    const QPoint place = app.hold(control + QStringLiteral(".plus"));
    QTRY_COMPARE(PrinterOptionsFile::value("R1TensionAdjust"), QByteArray("Custom.10"));
    QTest::mouseRelease(app.window(), Qt::LeftButton, Qt::NoModifier, place);
    QCOMPARE(valueText(app, control), QStringLiteral("10"));
    QCOMPARE(PrinterOptionsFile::value("R1TensionAdjust"), QByteArray("Custom.10"));
}

void TestPrinterPages::fingerThatScrollsOverAStepperChangesNothing_data()
{
    QTest::addColumn<QString>("part");
    QTest::newRow("slider") << QString();
    QTest::newRow("button") << QStringLiteral(".minus");
}

void TestPrinterPages::fingerThatScrollsOverAStepperChangesNothing()
{
    QFETCH(QString, part);
    const QString control = QStringLiteral("vertical1Offset") + part;
    AppSession app(7);
    const QQuickItem &target = app.item(control);
    const QPointF place(target.width() / 3, target.height() / 2);
    const auto scrolled = [&app] {
        return app.property(QStringLiteral("pageScroll"), "contentY").toDouble();
    };
    for (int attempt = 0; attempt < 5 && scrolled() == 0; ++attempt)
        app.slideFinger(control, place, place + QPointF(0, -150));
    QTRY_VERIFY(scrolled() > 0);
    QCOMPARE(PrinterOptionsFile::count(), 0);
}

void TestPrinterPages::pagesShowWhatOthersOfThemSet()
{
    AppSession app(7);
    app.click(QStringLiteral("feedOffset.plus"));
    app.turnTo(10);
    app.click(QStringLiteral("defaults.load"));
    app.click(QStringLiteral("confirmation.confirm"));
    app.turnTo(7);
    QCOMPARE(valueText(app, QStringLiteral("feedOffset")), QStringLiteral("0"));
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("0"));
}

void TestPrinterPages::defaultsAreLoadedAfterAQuestionOnly()
{
    AppSession app(6);
    app.click(QStringLiteral("mirror"));
    app.click(QStringLiteral("ribbonSaver"));
    app.turnTo(10);
    app.click(QStringLiteral("defaults.load"));
    app.click(QStringLiteral("confirmation.cancel"));
    QCOMPARE(PrinterOptionsFile::value("MirrorPrint"), QByteArray("True"));
    QCOMPARE(PrinterOptionsFile::count(), 2);

    app.click(QStringLiteral("defaults.load"));
    app.click(QStringLiteral("confirmation.confirm"));
    QCOMPARE(PrinterOptionsFile::value("MirrorPrint"), QByteArray("False"));
    QCOMPARE(PrinterOptionsFile::value("orientation-requested"), QByteArray("5"));
    QCOMPARE(PrinterOptionsFile::value("RibbonSaver"), QByteArray("Enabled"));
    QCOMPARE(app.text(QStringLiteral("defaults.report")), QStringLiteral("The defaults were loaded"));
    app.turnTo(6);
    QVERIFY(!app.property(QStringLiteral("mirror"), "checked").toBool());
    QVERIFY(app.property(QStringLiteral("ribbonSaver"), "checked").toBool());
    QCOMPARE(app.property(QStringLiteral("orientationOption"), "displayText").toString(),
             QStringLiteral("Landscape"));
}

void TestPrinterPages::defaultsThatCannotBeWrittenAreNotSaidToBeLoaded()
{
    const QString report = QStringLiteral("defaults.report");
    QVERIFY(PrinterOptionsFile::blockOptions());
    const MessageLog messages;
    AppSession app(10);
    app.click(QStringLiteral("defaults.load"));
    app.click(QStringLiteral("confirmation.confirm"));
    QCOMPARE(app.text(report), QStringLiteral("The options could not be written."));

    PrinterOptionsFile::removeAll();
    app.click(QStringLiteral("defaults.load"));
    app.click(QStringLiteral("confirmation.confirm"));
    QCOMPARE(app.text(report), QStringLiteral("The defaults were loaded"));
    QCOMPARE(PrinterOptionsFile::value("orientation-requested"), QByteArray("5"));
}

void TestPrinterPages::presetWithTheNameOfTheDefaultsIsNotTakenForThem()
{
    PrinterOptionsFile::addPreset(QStringLiteral("<Default Settings>"),
                                  {QStringLiteral("Feed"), QStringLiteral("7")});
    AppSession app(10);
    app.click(QStringLiteral("defaults.load"));
    app.click(QStringLiteral("confirmation.confirm"));
    QCOMPARE(app.text(QStringLiteral("defaults.report")),
             QStringLiteral("A saved preset has the name of the defaults; nothing was changed."));
    QCOMPARE(PrinterOptionsFile::count(), 0);
}

void TestPrinterPages::questionIsClosedWithThePage()
{
    AppSession app(10);
    app.click(QStringLiteral("defaults.load"));
    QVERIFY(app.isVisible(QStringLiteral("confirmation.text")));
    QMetaObject::invokeMethod(app.window(), "showTab", Q_ARG(QVariant, 0));
    QTRY_VERIFY(!app.isVisible(QStringLiteral("confirmation.text")));
    QCOMPARE(PrinterOptionsFile::count(), 0);
}

void TestPrinterPages::leapSuitsTheRange()
{
    AppSession app(10);
    app.item(QStringLiteral("head1HeatOffset")).forceActiveFocus(Qt::TabFocusReason);
    QTest::keyClick(app.window(), Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(PrinterOptionsFile::value("head1Offset"), QByteArray("Custom.10"));
}

void TestPrinterPages::barIsFilledFromZero_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QString>("control");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("start");
    QTest::newRow("right of 0") << 10 << QStringLiteral("head1HeatOffset") << 25 << 0;
    QTest::newRow("left of 0") << 10 << QStringLiteral("head2HeatOffset") << -40 << 0;
    QTest::newRow("at 0") << 10 << QStringLiteral("r1Tension") << 0 << 0;
    QTest::newRow("above 0 only") << 7 << QStringLiteral("supplyWidth") << 40 << 10;
}

void TestPrinterPages::barIsFilledFromZero()
{
    QFETCH(int, tab);
    QFETCH(QString, control);
    QFETCH(int, value);
    QFETCH(int, start);
    QVERIFY(PrinterOptionsFile::write("head1Offset=Custom.25 head2Offset=Custom.-40"));
    AppSession app(tab);
    const QQuickItem &slider = app.item(control);
    const QQuickItem &fill = app.item(control + QStringLiteral(".fill"));
    const double bar = slider.property("padding").toDouble();
    const double first = start > 0 ? bar : AppSession::handlePlace(slider, qMin(value, start)).x();
    const double last = AppSession::handlePlace(slider, qMax(value, start)).x();
    const QRectF filled = fill.mapRectToItem(&slider, QRectF(0, 0, fill.width(), fill.height()));
    QVERIFY2(qAbs(filled.left() - first) < 1, qPrintable(QString::number(filled.left() - first)));
    QVERIFY2(qAbs(filled.right() - last) < 1, qPrintable(QString::number(filled.right() - last)));
}

void TestPrinterPages::zeroByKeyLeavesTheFocusAtTheSlider()
{
    QVERIFY(PrinterOptionsFile::write("R1TensionAdjust=Custom.7"));
    AppSession app(10);
    app.press(QStringLiteral("r1Tension.zero"), Qt::Key_Space);
    QCOMPARE(PrinterOptionsFile::value("R1TensionAdjust"), QByteArray("0"));
    const QQuickItem &slider = app.item(QStringLiteral("r1Tension"));
    QCOMPARE(app.window()->activeFocusItem(), &slider);
    QVERIFY(slider.property("visualFocus").toBool());
}

void TestPrinterPages::partsOfAStepperSayWhoseTheyAre_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("minus") << QStringLiteral("Less");
    QTest::newRow("plus") << QStringLiteral("More");
    QTest::newRow("zero") << QStringLiteral("Set to 0");
}

void TestPrinterPages::partsOfAStepperSayWhoseTheyAre()
{
    QFETCH(QString, name);
    AppSession app(10);
    QQuickItem &part = app.item(QStringLiteral("head1HeatOffset.") + QLatin1String(QTest::currentDataTag()));
    QAccessibleInterface *const reader = QAccessible::queryAccessibleInterface(&part);
    QVERIFY(reader);
    QCOMPARE(reader->text(QAccessible::Name), name);
    QCOMPARE(reader->text(QAccessible::Description), QStringLiteral("Heat offset of head 1"));
}

void TestPrinterPages::longChoiceIsShownWhole()
{
    const QString name = QStringLiteral("Yliluoma Ordered Dither, and 40 % more");
    AppSession app(6);
    app.click(QStringLiteral("ditheringMethod"));
    QQuickItem &entry = app.item(QStringLiteral("ditheringMethod.1"));
    entry.setProperty("text", name);
    app.item(QStringLiteral("ditheringMethod.1"));
    const auto *const text = entry.property("contentItem").value<QQuickItem *>();
    QVERIFY(!text->property("truncated").toBool());
    QVERIFY(text->property("contentHeight").toDouble() <= entry.height());
}

void TestPrinterPages::pagesGiveNothingToComplainAbout()
{
    const MessageLog messages;
    AppSession app(6);
    for (const int tab : {7, 8, 10, 6})
        app.turnTo(tab);
    app.click(QStringLiteral("cutOption"));
    app.click(QStringLiteral("cutOption.0"));
    QCOMPARE(messages.texts().filter(QStringLiteral("qrc:")), QStringList());
}

QTEST_MAIN(TestPrinterPages)
#include "tst_printerpages.moc"
