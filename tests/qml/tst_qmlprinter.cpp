// What a QML author meets in ZBSettingsPrinter: one object an engine, models as lists of JavaScript, setters
// that take what a page has, and presets.
#include "qmlsession.h"

#include <zbsettingsprinter.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QPointer>
#include <QtTest/QtTest>

namespace {

ZBSettingsPrinter *printerOf(QmlSession &session)
{
    return session.value(QStringLiteral("ZBSettingsPrinter")).value<ZBSettingsPrinter *>();
}

/// The options as lpoptions(1) keeps them.
QByteArray storedOptions()
{
    QFile file(QDir::homePath() + QStringLiteral("/.cups/lpoptions"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestQmlPrinter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void oneObjectServesTheWholeEngineAndEndsWithIt();
    void cannotBeCreated();
    void propertiesHoldTheOptionsOfANewDevice_data();
    void propertiesHoldTheOptionsOfANewDevice();
    void propertyCannotBeWritten();
    void modelIsAListOfTexts();
    void settersTakeNumbersFlagsAndNames();
    void handlerHearsTheOrientation();
    void presetsAreSavedListedLoadedAndDeleted();
    void missingArgumentIsAnError();
};

void TestQmlPrinter::initTestCase()
{
    // Removes what it finds in the home folder.
    QVERIFY(!qEnvironmentVariableIsEmpty("ZBVIRTUALDEVICE_DIRECTORY"));
    qputenv("CUPS_SERVERROOT", QFile::encodeName(QDir::homePath()));
}

void TestQmlPrinter::init()
{
    QDir(QDir::homePath() + QStringLiteral("/.cups")).removeRecursively();
}

void TestQmlPrinter::oneObjectServesTheWholeEngineAndEndsWithIt()
{
    QPointer<ZBSettingsPrinter> printer;
    {
        QmlSession session;
        printer = printerOf(session);
        QVERIFY(printer);
        QCOMPARE(printerOf(session), printer.data());
        QCOMPARE(printer->parent(), &session.engine());
        QCOMPARE(QByteArray(printer->metaObject()->className()), QByteArray("ZBSettingsPrinter"));
        QCOMPARE(session.takeWarnings(), QStringList());
        QmlSession other;
        QVERIFY(printerOf(other) != printer);
    }
    QVERIFY(!printer);
}

void TestQmlPrinter::cannotBeCreated()
{
    QmlSession session;
    QVERIFY(!session.make(QStringLiteral("ZBSettingsPrinter {}")));
    QVERIFY2(session.errorText().contains(QStringLiteral("Element is not creatable.")),
             qPrintable(session.errorText()));
}

void TestQmlPrinter::propertiesHoldTheOptionsOfANewDevice_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("orientationOption") << QVariant(QString());
    QTest::newRow("cutOption") << QVariant(QStringLiteral("No Cut"));
    QTest::newRow("ditheringMethod") << QVariant(QStringLiteral("Threshold (No) Dither"));
    for (const char *const name : {"orientationEnum", "cutEnum", "head1HeatOffset", "head2HeatOffset",
                                   "backfeedOffset", "feedOffset", "horizontal1Offset", "horizontal2Offset",
                                   "vertical1Offset", "vertical2Offset", "r1Tension", "r2Tension"})
        QTest::newRow(name) << QVariant(0);
    for (const char *const name : {"mirror", "negative", "overprint", "whitebase", "ribbonSaver"})
        QTest::newRow(name) << QVariant(false);
}

void TestQmlPrinter::propertiesHoldTheOptionsOfANewDevice()
{
    QFETCH(QVariant, value);
    QmlSession session;
    QCOMPARE(session.value(QStringLiteral("ZBSettingsPrinter.") + QLatin1String(QTest::currentDataTag())),
             value);
    QCOMPARE(session.takeWarnings(), QStringList());
}

void TestQmlPrinter::propertyCannotBeWritten()
{
    QmlSession session;
    session.run(QStringLiteral("ZBSettingsPrinter.mirror = true"));
    QCOMPARE(session.takeWarnings(),
             QStringList(QStringLiteral("TypeError: Cannot assign to read-only property \"mirror\"")));
    QCOMPARE(storedOptions(), QByteArray());
}

void TestQmlPrinter::modelIsAListOfTexts()
{
    QmlSession session;
    QCOMPARE(session
                 .run(QStringLiteral(
                     "let model = ZBSettingsPrinter.ditheringComboBoxModel;"
                     "return model.length + ' ' + model[0] + ', ' + model.indexOf('Stucki Dither')"))
                 .toString(),
             QStringLiteral("12 Atkinson Dither, 9"));
}

void TestQmlPrinter::settersTakeNumbersFlagsAndNames()
{
    QmlSession session;
    session.run(QStringLiteral("ZBSettingsPrinter.setMirror(true);"
                               "ZBSettingsPrinter.setFeedOffset(12.9);"
                               "ZBSettingsPrinter.setBackfeedOffset(-3);"
                               "ZBSettingsPrinter.setCutOption(ZBSettingsPrinter.cutComboBoxModel[0]);"));
    QCOMPARE(session.takeWarnings(), QStringList());
    for (const char *const option : {"MirrorPrint=True", "Feed=Custom.12", "Stop=Custom.-3", "CutMedia=2"})
        QVERIFY2(storedOptions().contains(option), storedOptions().constData());
    // The page keeps its own view of what it has set.
    QCOMPARE(session.value(QStringLiteral("ZBSettingsPrinter.mirror")), QVariant(false));
    QCOMPARE(session.value(QStringLiteral("ZBSettingsPrinter.cutEnum === QMLCupsEnums.CUT_MEDIA_JOB")),
             QVariant(true));
}

void TestQmlPrinter::handlerHearsTheOrientation()
{
    QmlSession session;
    const std::unique_ptr<QObject> page = session.make(QStringLiteral(
        "QtObject { property int heard: -1; property int bound: ZBSettingsPrinter.orientationEnum\n"
        "property Connections c: Connections { target: ZBSettingsPrinter\n"
        "function onOrientationEnumChanged(orientationEnum) { heard = orientationEnum } }\n"
        "Component.onCompleted: ZBSettingsPrinter.setPrintOrientation('Portrait') }"));
    QVERIFY2(page, qPrintable(session.errorText()));
    QCOMPARE(page->property("heard").toInt(), 6);
    QCOMPARE(page->property("bound").toInt(), 6);
}

void TestQmlPrinter::presetsAreSavedListedLoadedAndDeleted()
{
    QmlSession session;
    QCOMPARE(session.run(QStringLiteral("ZBSettingsPrinter.setFeedOffset(5);"
                                        "return ZBSettingsPrinter.addPreset('Shoes')")),
             QVariant(true));
    QCOMPARE(session.value(QStringLiteral("ZBSettingsPrinter.populatePresetList().join('|')")).toString(),
             QStringLiteral("<Current Settings>|Shoes"));
    QCOMPARE(session.run(QStringLiteral("ZBSettingsPrinter.setFeedOffset(6);"
                                        "let options = ZBSettingsPrinter.loadPreset('Shoes');"
                                        "return options[options.indexOf('Feed') + 1] + ' ' "
                                        "+ ZBSettingsPrinter.feedOffset")),
             QVariant(QStringLiteral("5 5")));
    QCOMPARE(session.value(QStringLiteral("ZBSettingsPrinter.loadPreset('Boots').length")), QVariant(0));
    session.run(QStringLiteral("ZBSettingsPrinter.deletePreset('Shoes')"));
    QCOMPARE(session.value(QStringLiteral("ZBSettingsPrinter.populatePresetList().join('|')")).toString(),
             QStringLiteral("<Current Settings>"));
    QCOMPARE(session.takeWarnings(), QStringList());
}

void TestQmlPrinter::missingArgumentIsAnError()
{
    QmlSession session;
    QCOMPARE(session.run(QStringLiteral(
                 "try { ZBSettingsPrinter.setMirror() } catch (error) { return error.message }")),
             QVariant(QStringLiteral("Insufficient arguments")));
    QCOMPARE(storedOptions(), QByteArray());
}

QTEST_GUILESS_MAIN(TestQmlPrinter)
#include "tst_qmlprinter.moc"
