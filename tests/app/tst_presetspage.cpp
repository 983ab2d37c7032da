// The page Presets: saving, loading and deleting, with names of all kinds and with each answer to its
// questions.
#include "appsession.h"
#include "messagelog.h"
#include "printeroptionsfile.h"
#include "settingsfile.h"

#include <QtTest/QtTest>

#include <unistd.h>

using Obstacle = bool (*)();
Q_DECLARE_METATYPE(Obstacle)

class TestPresetsPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { PrinterOptionsFile::hideThoseOfTheMachine(); }
    void init();

    void emptyListSaysSo();
    void savedPresetIsListedAndInUse();
    void nameIsTrimmed();
    void oddNameIsSaved_data();
    void oddNameIsSaved();
    void nameThatCannotBeUsedIsRefused_data();
    void nameThatCannotBeUsedIsRefused();
    void savingCanBeCancelled_data();
    void savingCanBeCancelled();
    void nameThatExistsIsReplacedAfterAQuestionOnly();
    void loadBringsTheOptionsBackToAllPages();
    void loadLeavesTheRibbonSaverAsItWasSetLast();
    void valueThatWasJustSetIsSaved();
    void ditheringThatTheModelDoesNotHaveIsShownAsThreshold();
    void changeAfterLoadingIsSaid();
    void presetWithoutOptionsChangesNothing();
    void whatAPresetDoesNotBringBackIsSaid_data();
    void whatAPresetDoesNotBringBackIsSaid();
    void presetThatCannotBeSavedIsNotSaidToBe();
    void deletionThatCannotBeWrittenIsNotSaidToBe();
    void presetThatCannotBeLookedForIsNotSaidToBeDeleted_data();
    void presetThatCannotBeLookedForIsNotSaidToBeDeleted();
    void presetsAreLookedForOnceAfterEachChange();
    void oldPresetIsNotTakenForTheNewOneWhileAProgramHangs();
    void optionsThatCannotBeWrittenAreNotSaidToBeLoaded();
    void valuesOutsideTheirRangesAreLoadedAsTheirEnds();
    void otherPresetOfADeletedNameIsNotInUse();
    void outcomeIsSaidWhereThePersonIs();
    void stateIsShownWhole();
    void deletionAsksFirst_data();
    void deletionAsksFirst();
    void confirmedDeletionTakesThePresetAway();
    void oddNameIsPlainTextAndIsLoadedAndDeleted_data();
    void oddNameIsPlainTextAndIsLoadedAndDeleted();
    void presetIsSavedLoadedAndDeletedByKeysAlone();
    void deletionByKeysLeavesTheFocusNearby();
    void leavingThePageClosesItsQuestions();
};

namespace {

const QString report = QStringLiteral("presets.report");
const QString deleteFirst = QStringLiteral("preset.0.delete");
const QString loadFirst = QStringLiteral("preset.0.load");

QStringList options(const QString &feed)
{
    return {QStringLiteral("orientation-requested"),
            QStringLiteral("6"),
            QStringLiteral("MirrorPrint"),
            QStringLiteral("True"),
            QStringLiteral("Feed"),
            feed};
}

void type(AppSession &app, const QString &text)
{
    for (const QChar letter : text)
        QTest::sendKeyEvent(QTest::Click, app.window(), Qt::Key_unknown, QString(letter), Qt::NoModifier);
}

void savePreset(AppSession &app, const QString &name)
{
    app.click(QStringLiteral("presets.save"));
    type(app, name);
    app.click(QStringLiteral("name.confirm"));
}

void deleteByKeys(AppSession &app, int row)
{
    app.press(QStringLiteral("preset.%1.delete").arg(row), Qt::Key_Return);
    QTest::keyClick(app.window(), Qt::Key_Tab);
    QTest::keyClick(app.window(), Qt::Key_Return);
}

/// How often the presets were looked for: each time, what is wrong with one is logged anew.
int looksIn(MessageLog *messages)
{
    const int count = messages->texts().filter(QStringLiteral("newer format")).size();
    messages->clear();
    return count;
}

/// Whole, not wider than its place, and not behind the button at its right.
bool isReportInItsPlace(AppSession &app)
{
    const QQuickItem &text = app.item(report);
    return !text.property("truncated").toBool() && text.property("contentWidth").toDouble() <= text.width()
        && app.rectangle(report).right() <= app.rectangle(QStringLiteral("presets.save")).left();
}

void addOddNames()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shown");
    QTest::newRow("markup") << QStringLiteral("<b>Bold</b><img src='x'>")
                            << QStringLiteral("<b>Bold</b><img src='x'>");
    QTest::newRow("emoji") << QString::fromUtf8("\xf0\x9f\x91\x9f Shoes")
                           << QString::fromUtf8("\xf0\x9f\x91\x9f Shoes");
    QTest::newRow("newline") << QStringLiteral("two\nlines") << QStringLiteral("two lines");
    QTest::newRow("placeholder") << QStringLiteral("%1 and %2") << QStringLiteral("%1 and %2");
    QTest::newRow("path") << QStringLiteral("../../etc/passwd") << QStringLiteral("../../etc/passwd");
    QTest::newRow("blanks") << QStringLiteral("   ") << QStringLiteral("Blank name");
    QTest::newRow("long") << QString(300, QLatin1Char('W')) << QString(200, QLatin1Char('W'));
}

} // namespace

void TestPresetsPage::init()
{
    SettingsFile::removeAll();
    PrinterOptionsFile::removeAll();
}

void TestPresetsPage::emptyListSaysSo()
{
    AppSession app(8);
    QCOMPARE(app.text(QStringLiteral("presets.none")), QStringLiteral("Nothing was saved yet"));
    QVERIFY(!app.isVisible(QStringLiteral("preset.0")));
    savePreset(app, QStringLiteral("Shoes"));
    QVERIFY(!app.isVisible(QStringLiteral("presets.none")));
}

void TestPresetsPage::savedPresetIsListedAndInUse()
{
    AppSession app(8);
    savePreset(app, QStringLiteral("Shoes"));
    savePreset(app, QStringLiteral("Boots"));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList({QStringLiteral("Shoes"), QStringLiteral("Boots")}));
    QCOMPARE(app.text(QStringLiteral("preset.0")), QStringLiteral("Shoes"));
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QString());
    QCOMPARE(app.text(QStringLiteral("preset.1")), QStringLiteral("Boots"));
    QCOMPARE(app.text(QStringLiteral("preset.1.state")), QStringLiteral("In use"));
    QCOMPARE(app.text(report),
             QStringLiteral("Saved as “Boots”. Loading will not bring back: orientation “Not chosen”"));
}

void TestPresetsPage::nameIsTrimmed()
{
    AppSession app(8);
    savePreset(app, QStringLiteral("  Shoes  "));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList({QStringLiteral("Shoes")}));
}

void TestPresetsPage::oddNameIsSaved_data()
{
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("saved");
    QTest::addColumn<QString>("quoted");
    const QString shoe = QString::fromUtf8("\xf0\x9f\x91\x9f");
    const QString dots = QStringLiteral("…");
    const QString longQuoted = QString(40, QLatin1Char('W')) + dots;
    QTest::newRow("markup") << QStringLiteral("<b>Bold</b>") << QStringLiteral("<b>Bold</b>")
                            << QStringLiteral("<b>Bold</b>");
    QTest::newRow("path") << QStringLiteral("../../a") << QStringLiteral("../../a")
                          << QStringLiteral("../../a");
    QTest::newRow("emoji") << shoe << shoe << shoe;
    QTest::newRow("placeholder") << QStringLiteral("%1 %2") << QStringLiteral("%1 %2")
                                 << QStringLiteral("%1 %2");
    QTest::newRow("cannot be seen") << QStringLiteral("Shoes\u202e\u200b") << QStringLiteral("Shoes")
                                    << QStringLiteral("Shoes");
    QTest::newRow("many emoji") << QStringLiteral("a") + shoe.repeated(60)
                                << QStringLiteral("a") + shoe.repeated(60)
                                << QStringLiteral("a") + shoe.repeated(39) + dots;
    QTest::newRow("newline") << QStringLiteral("two\nlines\n") << QStringLiteral("two lines")
                             << QStringLiteral("two lines");
    QTest::newRow("long") << QString(400, QLatin1Char('W')) << QString(300, QLatin1Char('W')) << longQuoted;
    QTest::newRow("cut in the middle of an emoji")
        << QString(299, QLatin1Char('W')) + shoe << QString(299, QLatin1Char('W')) << longQuoted;
}

void TestPresetsPage::oddNameIsSaved()
{
    QFETCH(QString, pasted);
    QFETCH(QString, saved);
    QFETCH(QString, quoted);
    AppSession app(8);
    app.click(QStringLiteral("presets.save"));
    app.item(QStringLiteral("name.field")).setProperty("text", pasted);
    app.click(QStringLiteral("name.confirm"));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList({saved}));
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QStringLiteral("In use"));
    const QString said = QStringLiteral("Saved as “%1”").arg(quoted);
    QVERIFY2(app.text(report).startsWith(said), qPrintable(app.text(report)));
    QVERIFY(isReportInItsPlace(app));
}

void TestPresetsPage::nameThatCannotBeUsedIsRefused_data()
{
    QTest::addColumn<QString>("problem");
    const QString reserved = QStringLiteral("The printer uses this name itself.");
    QTest::newRow("") << QString();
    QTest::newRow("   ") << QString();
    QTest::newRow("<Current Settings>") << reserved;
    QTest::newRow("<System Settings>") << reserved;
    QTest::newRow(" <Default Settings> ") << reserved;
    QTest::newRow("Sample Preset") << reserved;
}

void TestPresetsPage::nameThatCannotBeUsedIsRefused()
{
    QFETCH(QString, problem);
    AppSession app(8);
    app.click(QStringLiteral("presets.save"));
    type(app, QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(!app.property(QStringLiteral("name.confirm"), "enabled").toBool());
    QCOMPARE(app.text(QStringLiteral("name.problem")), problem);
    QTest::keyClick(app.window(), Qt::Key_Return);
    QVERIFY(app.isVisible(QStringLiteral("name.field")));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList());
}

void TestPresetsPage::savingCanBeCancelled_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("button") << false;
    QTest::newRow("Escape") << true;
}

void TestPresetsPage::savingCanBeCancelled()
{
    QFETCH(bool, byKey);
    AppSession app(8);
    app.click(QStringLiteral("presets.save"));
    type(app, QStringLiteral("Shoes"));
    if (byKey)
        QTest::keyClick(app.window(), Qt::Key_Escape);
    else
        app.click(QStringLiteral("name.cancel"));
    QTRY_VERIFY(!app.isVisible(QStringLiteral("name.field")));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList());
    app.click(QStringLiteral("presets.save"));
    QCOMPARE(app.text(QStringLiteral("name.field")), QString());
}

void TestPresetsPage::nameThatExistsIsReplacedAfterAQuestionOnly()
{
    PrinterOptionsFile::addPreset(QStringLiteral("Shoes"), options(QStringLiteral("77")));
    AppSession app(8);
    savePreset(app, QStringLiteral("Shoes"));
    QVERIFY(app.text(QStringLiteral("confirmation.text")).contains(QStringLiteral("“Shoes”")));
    app.click(QStringLiteral("confirmation.cancel"));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList({QStringLiteral("Shoes")}));
    app.click(loadFirst);
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("Custom.77"));

    app.turnTo(7);
    app.click(QStringLiteral("feedOffset.zero"));
    app.turnTo(8);
    savePreset(app, QStringLiteral("Shoes"));
    app.click(QStringLiteral("confirmation.confirm"));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList({QStringLiteral("Shoes")}));
    app.click(loadFirst);
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("0"));
}

void TestPresetsPage::loadBringsTheOptionsBackToAllPages()
{
    AppSession app(6);
    app.click(QStringLiteral("mirror"));
    app.click(QStringLiteral("orientationOption"));
    app.click(QStringLiteral("orientationOption.2"));
    app.turnTo(8);
    savePreset(app, QStringLiteral("Shoes"));
    app.turnTo(6);
    app.click(QStringLiteral("mirror"));
    app.click(QStringLiteral("orientationOption"));
    app.click(QStringLiteral("orientationOption.0"));
    app.turnTo(10);
    app.click(QStringLiteral("r2Tension.plus"));
    app.turnTo(8);
    app.click(loadFirst);
    QCOMPARE(app.text(report), QStringLiteral("“Shoes” was loaded"));
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QStringLiteral("In use"));
    QCOMPARE(PrinterOptionsFile::value("MirrorPrint"), QByteArray("True"));
    QCOMPARE(PrinterOptionsFile::value("orientation-requested"), QByteArray("6"));
    QCOMPARE(PrinterOptionsFile::value("R2TensionAdjust"), QByteArray("0"));
    app.turnTo(6);
    QVERIFY(app.property(QStringLiteral("mirror"), "checked").toBool());
    QCOMPARE(app.property(QStringLiteral("orientationOption"), "displayText").toString(),
             QStringLiteral("Portrait"));
    app.turnTo(10);
    app.item(QStringLiteral("r2Tension"));
    QCOMPARE(app.text(QStringLiteral("r2Tension.value")), QStringLiteral("0"));
}

void TestPresetsPage::loadLeavesTheRibbonSaverAsItWasSetLast()
{
    AppSession app(8);
    savePreset(app, QStringLiteral("Shoes"));
    app.turnTo(6);
    app.click(QStringLiteral("ribbonSaver"));
    app.turnTo(8);
    app.click(loadFirst);
    QCOMPARE(PrinterOptionsFile::value("RibbonSaver"), QByteArray("Enabled"));
    app.turnTo(6);
    QVERIFY(app.property(QStringLiteral("ribbonSaver"), "checked").toBool());
}

void TestPresetsPage::valueThatWasJustSetIsSaved()
{
    AppSession app(7);
    app.item(QStringLiteral("feedOffset")).forceActiveFocus(Qt::TabFocusReason);
    // While a key is down its values wait now and then.
    for (int step = 0; step < 5; ++step)
        QTest::keyPress(app.window(), Qt::Key_Right);
    app.turnTo(8);
    savePreset(app, QStringLiteral("Shoes"));
    app.turnTo(7);
    app.click(QStringLiteral("feedOffset.zero"));
    app.turnTo(8);
    app.click(loadFirst);
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("Custom.5"));

    // What was set by hand does not come again when what waits is handed over next.
    app.turnTo(7);
    app.item(QStringLiteral("feedOffset")).forceActiveFocus(Qt::TabFocusReason);
    for (int step = 0; step < 3; ++step)
        QTest::keyPress(app.window(), Qt::Key_Right);
    app.turnTo(8);
    app.click(loadFirst);
    app.turnTo(7);
    app.click(QStringLiteral("horizontal1Offset.plus"));
    QCOMPARE(PrinterOptionsFile::value("Hoffset1"), QByteArray("Custom.1"));
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("Custom.5"));
}

void TestPresetsPage::ditheringThatTheModelDoesNotHaveIsShownAsThreshold()
{
    PrinterOptionsFile::addPreset(QStringLiteral("Bayer"),
                                  {QStringLiteral("Dithering"), QStringLiteral("32")});
    AppSession app(8);
    app.click(loadFirst);
    QCOMPARE(PrinterOptionsFile::value("Dithering"), QByteArray("0"));
    app.turnTo(6);
    QCOMPARE(app.property(QStringLiteral("ditheringMethod"), "displayText").toString(),
             QStringLiteral("Threshold (No) Dither"));
}

void TestPresetsPage::changeAfterLoadingIsSaid()
{
    PrinterOptionsFile::addPreset(QStringLiteral("Shoes"), options(QStringLiteral("0")));
    AppSession app(8);
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QString());
    app.click(loadFirst);
    app.turnTo(6);
    app.click(QStringLiteral("negative"));
    app.turnTo(8);
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QStringLiteral("Options were changed since"));

    app.turnTo(6);
    app.click(QStringLiteral("negative"));
    app.click(QStringLiteral("cutOption"));
    app.click(QStringLiteral("cutOption.1"));
    app.click(QStringLiteral("ribbonSaver"));
    app.turnTo(8);
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QStringLiteral("In use"));
}

void TestPresetsPage::presetWithoutOptionsChangesNothing()
{
    PrinterOptionsFile::addPreset(QStringLiteral("Nothing"), {});
    AppSession app(8);
    app.click(loadFirst);
    QCOMPARE(PrinterOptionsFile::count(), 0);
    QCOMPARE(app.text(report), QStringLiteral("“Nothing”: No options in it, nothing was changed"));
    QCOMPARE(app.text(QStringLiteral("preset.0.state")),
             QStringLiteral("No options in it, nothing was changed"));

    savePreset(app, QStringLiteral("Something"));
    QVERIFY(app.text(report).startsWith(QStringLiteral("Saved as “Something”")));
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QString());
}

void TestPresetsPage::whatAPresetDoesNotBringBackIsSaid_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QString>("said");
    QTest::newRow("all comes back") << QByteArray("orientation-requested=6 Dithering=33 Stop=Custom.2")
                                    << QStringLiteral("Saved as “Shoes”");
    QTest::newRow("orientation") << QByteArray("Dithering=33")
                                 << QStringLiteral("Saved as “Shoes”. Loading will not bring back: "
                                                   "orientation “Not chosen”");
    QTest::newRow("Bayer") << QByteArray("orientation-requested=5 Dithering=32")
                           << QStringLiteral("Saved as “Shoes”. Loading will not bring back: "
                                             "dithering “Bayer Ordered Dither”");
    QTest::newRow("fraction") << QByteArray("orientation-requested=5 Stop=Custom.-2.5")
                              << QStringLiteral("Saved as “Shoes”. Loading will not bring back: "
                                                "backfeed offset");
    QTest::newRow("all three") << QByteArray("Dithering=32 Stop=Custom.0.5")
                               << QStringLiteral("Saved as “Shoes”. Loading will not bring back: orientation "
                                                 "“Not chosen”, dithering “Bayer Ordered Dither”, "
                                                 "backfeed offset");
}

void TestPresetsPage::whatAPresetDoesNotBringBackIsSaid()
{
    QFETCH(QByteArray, stored);
    QFETCH(QString, said);
    QVERIFY(PrinterOptionsFile::write(stored));
    AppSession app(8);
    savePreset(app, QStringLiteral("Shoes"));
    QCOMPARE(app.text(report), said);
    QVERIFY(!app.property(report, "truncated").toBool());
}

void TestPresetsPage::presetThatCannotBeSavedIsNotSaidToBe()
{
    QVERIFY(PrinterOptionsFile::blockPresets());
    const MessageLog messages;
    AppSession app(8);
    savePreset(app, QStringLiteral("Shoes"));
    QCOMPARE(app.text(report), QStringLiteral("“Shoes” could not be saved"));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList());

    PrinterOptionsFile::removeAll();
    savePreset(app, QStringLiteral("Boots"));
    QVERIFY(app.text(report).startsWith(QStringLiteral("Saved as “Boots”")));
}

void TestPresetsPage::deletionThatCannotBeWrittenIsNotSaidToBe()
{
    PrinterOptionsFile::addPreset(QStringLiteral("Shoes"), options(QStringLiteral("3")));
    QVERIFY(PrinterOptionsFile::makePresetsReadOnly());
    const MessageLog messages;
    AppSession app(8);
    app.click(deleteFirst);
    app.click(QStringLiteral("confirmation.confirm"));
    // Root may delete all the same.
    const bool isDeleted = PrinterOptionsFile::presets().isEmpty();
    QCOMPARE(isDeleted, ::geteuid() == 0);
    QCOMPARE(app.text(report),
             isDeleted ? QStringLiteral("“Shoes” was deleted")
                       : QStringLiteral("“Shoes” could not be deleted"));
}

void TestPresetsPage::presetThatCannotBeLookedForIsNotSaidToBeDeleted_data()
{
    QTest::addColumn<Obstacle>("makeObstacle");
    QTest::addColumn<bool>("stopsRoot");
    QTest::newRow("file in place of the folder") << Obstacle(PrinterOptionsFile::blockPresets) << true;
    QTest::newRow("folder without rights") << Obstacle(PrinterOptionsFile::closePresets) << false;
    QTest::newRow("folder above without rights")
        << Obstacle(PrinterOptionsFile::closeFolderAbovePresets) << false;
}

void TestPresetsPage::presetThatCannotBeLookedForIsNotSaidToBeDeleted()
{
    QFETCH(Obstacle, makeObstacle);
    QFETCH(bool, stopsRoot);
    PrinterOptionsFile::addPreset(QStringLiteral("Shoes"), options(QStringLiteral("3")));
    const MessageLog messages;
    AppSession app(8);
    QVERIFY(makeObstacle());
    app.click(deleteFirst);
    app.click(QStringLiteral("confirmation.confirm"));
    QCOMPARE(app.text(report),
             ::geteuid() == 0 && !stopsRoot ? QStringLiteral("“Shoes” was deleted")
                                            : QStringLiteral("“Shoes” could not be deleted"));
}

void TestPresetsPage::presetsAreLookedForOnceAfterEachChange()
{
    PrinterOptionsFile::addPreset(QStringLiteral("Shoes"), options(QStringLiteral("3")));
    QVERIFY(PrinterOptionsFile::addPresetOfNewerFormat());
    MessageLog messages;
    AppSession app(8);
    QCOMPARE(looksIn(&messages), 1);
    savePreset(app, QStringLiteral("Boots"));
    QVERIFY(app.text(report).startsWith(QStringLiteral("Saved as “Boots”")));
    QCOMPARE(looksIn(&messages), 1);
    app.click(deleteFirst);
    app.click(QStringLiteral("confirmation.confirm"));
    QCOMPARE(app.text(report), QStringLiteral("“Shoes” was deleted"));
    QCOMPARE(looksIn(&messages), 1);
    // A replacement is two changes.
    savePreset(app, QStringLiteral("Boots"));
    app.click(QStringLiteral("confirmation.confirm"));
    QVERIFY(app.text(report).startsWith(QStringLiteral("Saved as “Boots”")));
    QCOMPARE(looksIn(&messages), 2);
}

void TestPresetsPage::oldPresetIsNotTakenForTheNewOneWhileAProgramHangs()
{
    PrinterOptionsFile::addPreset(QStringLiteral("Boots"), options(QStringLiteral("3")));
    PrinterOptionsFile::addPreset(QStringLiteral("Shoes"), options(QStringLiteral("3")));
    QVERIFY(PrinterOptionsFile::addPresetOfNewerFormat());
    MessageLog messages;
    AppSession app(8);
    messages.clear();
    {
        const PrinterOptionsFile::HungProgram program;
        QVERIFY(program.isHolding());
        app.click(deleteFirst);
        app.click(QStringLiteral("confirmation.confirm"));
        QCOMPARE(app.text(report), QStringLiteral("“Boots” could not be deleted"));
        QCOMPARE(looksIn(&messages), 1);
        // It is not in the list any more, but on the disk.
        savePreset(app, QStringLiteral("Boots"));
        QCOMPARE(app.text(report), QStringLiteral("“Boots” could not be saved"));
        QCOMPARE(looksIn(&messages), 1);
        savePreset(app, QStringLiteral("Shoes"));
        app.click(QStringLiteral("confirmation.confirm"));
        QCOMPARE(app.text(report), QStringLiteral("“Shoes” could not be saved"));
        QCOMPARE(looksIn(&messages), 1);
    }
    savePreset(app, QStringLiteral("Shoes"));
    app.click(QStringLiteral("confirmation.confirm"));
    QVERIFY(app.text(report).startsWith(QStringLiteral("Saved as “Shoes”")));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList({QStringLiteral("Boots"), QStringLiteral("Shoes")}));
    app.click(QStringLiteral("preset.1.load"));
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("0"));
}

void TestPresetsPage::optionsThatCannotBeWrittenAreNotSaidToBeLoaded()
{
    PrinterOptionsFile::addPreset(QStringLiteral("Shoes"), options(QStringLiteral("3")));
    QVERIFY(PrinterOptionsFile::blockOptions());
    const MessageLog messages;
    AppSession app(8);
    app.click(loadFirst);
    QCOMPARE(app.text(report), QStringLiteral("“Shoes”: The options could not be written"));
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QStringLiteral("The options could not be written"));
    QCOMPARE(PrinterOptionsFile::count(), 0);
}

void TestPresetsPage::valuesOutsideTheirRangesAreLoadedAsTheirEnds()
{
    PrinterOptionsFile::addPreset(QStringLiteral("Shoes"),
                                  {QStringLiteral("Hoffset1"), QStringLiteral("2147483647"),
                                   QStringLiteral("R1TensionAdjust"), QStringLiteral("-11")});
    const MessageLog messages;
    AppSession app(8);
    app.click(loadFirst);
    QCOMPARE(app.text(report), QStringLiteral("“Shoes” was loaded"));
    QCOMPARE(PrinterOptionsFile::value("Hoffset1"), QByteArray("Custom.2000"));
    app.turnTo(7);
    app.item(QStringLiteral("horizontal1Offset"));
    QCOMPARE(app.text(QStringLiteral("horizontal1Offset.value")), QStringLiteral("2000"));
    app.turnTo(10);
    app.item(QStringLiteral("r1Tension"));
    QCOMPARE(app.text(QStringLiteral("r1Tension.value")), QStringLiteral("-10"));
}

void TestPresetsPage::otherPresetOfADeletedNameIsNotInUse()
{
    PrinterOptionsFile::addPreset(QStringLiteral("Shoes"), options(QStringLiteral("1")));
    PrinterOptionsFile::addPreset(QStringLiteral("Shoes"), options(QStringLiteral("2")));
    AppSession app(8);
    app.click(loadFirst);
    app.click(deleteFirst);
    app.click(QStringLiteral("confirmation.confirm"));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList({QStringLiteral("Shoes")}));
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QString());
}

void TestPresetsPage::outcomeIsSaidWhereThePersonIs()
{
    for (int number = 0; number < 10; ++number)
        PrinterOptionsFile::addPreset(QString::number(number), options(QStringLiteral("1")));
    PrinterOptionsFile::addPreset(QStringLiteral("Nothing"), {});
    AppSession app(8);
    const auto isInView = [&app](const QString &name) {
        return QRectF(0, 0, 800, 480).contains(app.rectangle(name));
    };
    app.click(QStringLiteral("preset.10.load"));
    QCOMPARE(app.text(QStringLiteral("preset.10.state")),
             QStringLiteral("No options in it, nothing was changed"));
    QVERIFY(!isInView(report));
    QVERIFY(isInView(QStringLiteral("preset.10.state")));
    app.click(QStringLiteral("preset.9.load"));
    QCOMPARE(app.text(QStringLiteral("preset.9.state")), QStringLiteral("In use"));
    QCOMPARE(app.text(QStringLiteral("preset.10.state")), QString());
    QVERIFY(isInView(QStringLiteral("preset.9.state")));
}

void TestPresetsPage::stateIsShownWhole()
{
    PrinterOptionsFile::addPreset(QStringLiteral("Shoes"), options(QStringLiteral("1")));
    AppSession app(8);
    const QQuickItem &title = app.item(QStringLiteral("preset.0"));
    QQuickItem *const row = title.parentItem()->parentItem();
    row->setProperty("description", QStringLiteral("Options were changed since, and 40 % more"));
    const QQuickItem &state = app.item(QStringLiteral("preset.0.state"));
    QVERIFY(!state.property("truncated").toBool());
    QVERIFY(state.property("contentWidth").toDouble() <= state.width());
    QVERIFY(title.clip());
}

void TestPresetsPage::deletionAsksFirst_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Cancel") << 0;
    QTest::newRow("Escape") << int(Qt::Key_Escape);
    // Cancel has the focus.
    QTest::newRow("Return") << int(Qt::Key_Return);
    QTest::newRow("Space") << int(Qt::Key_Space);
}

void TestPresetsPage::deletionAsksFirst()
{
    QFETCH(int, key);
    PrinterOptionsFile::addPreset(QStringLiteral("Shoes"), options(QStringLiteral("0")));
    AppSession app(8);
    app.click(deleteFirst);
    QVERIFY(app.text(QStringLiteral("confirmation.text")).contains(QStringLiteral("“Shoes”")));
    QCOMPARE(PrinterOptionsFile::presets().size(), 1);
    if (key != 0)
        QTest::keyClick(app.window(), Qt::Key(key));
    else
        app.click(QStringLiteral("confirmation.cancel"));
    QTRY_VERIFY(!app.isVisible(QStringLiteral("confirmation.text")));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList({QStringLiteral("Shoes")}));
    QCOMPARE(app.text(QStringLiteral("preset.0")), QStringLiteral("Shoes"));
}

void TestPresetsPage::confirmedDeletionTakesThePresetAway()
{
    PrinterOptionsFile::addPreset(QStringLiteral("Boots"), options(QStringLiteral("0")));
    PrinterOptionsFile::addPreset(QStringLiteral("Shoes"), options(QStringLiteral("0")));
    AppSession app(8);
    app.click(QStringLiteral("preset.1.load"));
    app.click(deleteFirst);
    app.click(QStringLiteral("confirmation.confirm"));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList({QStringLiteral("Shoes")}));
    QCOMPARE(app.text(QStringLiteral("preset.0")), QStringLiteral("Shoes"));
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QStringLiteral("In use"));
    QCOMPARE(app.text(report), QStringLiteral("“Boots” was deleted"));
    QCOMPARE(PrinterOptionsFile::value("MirrorPrint"), QByteArray("True"));
}

void TestPresetsPage::oddNameIsPlainTextAndIsLoadedAndDeleted_data()
{
    addOddNames();
}

void TestPresetsPage::oddNameIsPlainTextAndIsLoadedAndDeleted()
{
    QFETCH(QString, name);
    QFETCH(QString, shown);
    PrinterOptionsFile::addPreset(name, options(QStringLiteral("5")));
    const MessageLog messages;
    AppSession app(8);
    const QQuickItem &text = app.item(QStringLiteral("preset.0"));
    QCOMPARE(text.property("text").toString(), shown);
    QCOMPARE(text.property("lineCount").toInt(), 1);
    QCOMPARE(text.property("textFormat").toInt(), int(Qt::PlainText));
    QVERIFY(text.property("contentWidth").toDouble() <= text.width());
    QVERIFY(app.rectangle(deleteFirst).right() < 800);
    app.click(deleteFirst);
    const QQuickItem &question = app.item(QStringLiteral("confirmation.text"));
    QVERIFY(question.property("contentWidth").toDouble() <= question.width());
    QVERIFY(!question.property("truncated").toBool());
    app.click(QStringLiteral("confirmation.cancel"));
    app.click(loadFirst);
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("Custom.5"));
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QStringLiteral("In use"));
    QVERIFY(isReportInItsPlace(app));
    app.click(deleteFirst);
    app.click(QStringLiteral("confirmation.confirm"));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList());
    QCOMPARE(messages.texts().filter(QStringLiteral("qrc:")), QStringList());
}

void TestPresetsPage::presetIsSavedLoadedAndDeletedByKeysAlone()
{
    AppSession app(8);
    app.press(QStringLiteral("presets.save"), Qt::Key_Return);
    type(app, QStringLiteral("Shoes"));
    QTest::keyClick(app.window(), Qt::Key_Return);
    QTRY_COMPARE(PrinterOptionsFile::presets(), QStringList({QStringLiteral("Shoes")}));
    app.press(loadFirst, Qt::Key_Space);
    QCOMPARE(app.text(report), QStringLiteral("“Shoes” was loaded"));
    deleteByKeys(app, 0);
    QTRY_COMPARE(PrinterOptionsFile::presets(), QStringList());
    QVERIFY(app.property(QStringLiteral("presets.save"), "visualFocus").toBool());
}

void TestPresetsPage::deletionByKeysLeavesTheFocusNearby()
{
    for (int number = 0; number < 9; ++number)
        PrinterOptionsFile::addPreset(QString::number(number), options(QStringLiteral("1")));
    AppSession app(8);
    const QRectF window(0, 0, 800, 480);
    deleteByKeys(app, 7);
    QCOMPARE(PrinterOptionsFile::presets().size(), 8);
    const QString next = QStringLiteral("preset.7.delete");
    QVERIFY(window.contains(app.rectangle(next)));
    QCOMPARE(app.text(QStringLiteral("preset.7")), QStringLiteral("8"));
    QVERIFY(app.property(next, "visualFocus").toBool());
    deleteByKeys(app, 7);
    QVERIFY(window.contains(app.rectangle(QStringLiteral("preset.6.delete"))));
    QVERIFY(app.property(QStringLiteral("preset.6.delete"), "visualFocus").toBool());

    // A finger has no use for a frame, but the keys go on from there.
    app.click(deleteFirst);
    app.click(QStringLiteral("confirmation.confirm"));
    QVERIFY(app.property(deleteFirst, "activeFocus").toBool());
    QVERIFY(!app.property(deleteFirst, "visualFocus").toBool());
}

void TestPresetsPage::leavingThePageClosesItsQuestions()
{
    PrinterOptionsFile::addPreset(QStringLiteral("Shoes"), options(QStringLiteral("0")));
    AppSession app(8);
    for (const QString &opener : {QStringLiteral("presets.save"), deleteFirst, QString()}) {
        if (opener.isEmpty())
            savePreset(app, QStringLiteral("Shoes"));
        else
            app.click(opener);
        QVERIFY(app.isVisible(QStringLiteral("name.field"))
                || app.isVisible(QStringLiteral("confirmation.text")));
        QMetaObject::invokeMethod(app.window(), "showTab", Q_ARG(QVariant, 0));
        QTRY_VERIFY(!app.isVisible(QStringLiteral("name.field"))
                    && !app.isVisible(QStringLiteral("confirmation.text")));
        app.turnTo(8);
    }
    QCOMPARE(PrinterOptionsFile::presets(), QStringList({QStringLiteral("Shoes")}));
}

QTEST_MAIN(TestPresetsPage)
#include "tst_presetspage.moc"
