// The page Presets: saving, loading and deleting, with names of all kinds and with each answer to its
// questions.
#include "appsession.h"
#include "messagelog.h"
#include "printeroptionsfile.h"
#include "settingsfile.h"

#include <preset.h>
#include <presetlist.h>

#include <QtTest/QtTest>

class TestPresetsPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
    void deletionAsksFirst_data();
    void deletionAsksFirst();
    void confirmedDeletionTakesThePresetAway();
    void oddNameIsPlainTextInOneLine_data();
    void oddNameIsPlainTextInOneLine();
    void oddNameIsLoadedAndDeleted_data();
    void oddNameIsLoadedAndDeleted();
    void presetIsSavedLoadedAndDeletedByKeysAlone();
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

/// As another program does it.
void addPreset(const QString &name, const QStringList &options)
{
    PresetList list(QStringLiteral("BrackenXL"), true);
    list.addPreset(new Preset(QStringLiteral("BrackenXL"), name + QStringLiteral("_p"),
                              static_cast<Preset::_State>(2), options, name, QString(),
                              list.applyLastPresetIndex()));
    list.save(list.getPredefinedPresetNames());
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
    QCOMPARE(app.text(report), QStringLiteral("Saved as “Boots”"));
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
    const QString shoe = QString::fromUtf8("\xf0\x9f\x91\x9f");
    QTest::newRow("markup") << QStringLiteral("<b>Bold</b>") << QStringLiteral("<b>Bold</b>");
    QTest::newRow("path") << QStringLiteral("../../a") << QStringLiteral("../../a");
    QTest::newRow("emoji") << shoe << shoe;
    QTest::newRow("newline") << QStringLiteral("two\nlines\n") << QStringLiteral("two lines");
    QTest::newRow("long") << QString(400, QLatin1Char('W')) << QString(300, QLatin1Char('W'));
    QTest::newRow("cut in the middle of an emoji")
        << QString(299, QLatin1Char('W')) + shoe << QString(299, QLatin1Char('W'));
}

void TestPresetsPage::oddNameIsSaved()
{
    QFETCH(QString, pasted);
    QFETCH(QString, saved);
    AppSession app(8);
    app.click(QStringLiteral("presets.save"));
    app.item(QStringLiteral("name.field")).setProperty("text", pasted);
    app.click(QStringLiteral("name.confirm"));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList({saved}));
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QStringLiteral("In use"));
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
    addPreset(QStringLiteral("Shoes"), options(QStringLiteral("77")));
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

    // What was set by hand does not come again, also after the time for which values wait.
    app.turnTo(7);
    app.press(QStringLiteral("feedOffset"), Qt::Key_Right);
    app.turnTo(8);
    app.click(loadFirst);
    QTest::qWait(350);
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("Custom.5"));
}

void TestPresetsPage::ditheringThatTheModelDoesNotHaveIsShownAsThreshold()
{
    addPreset(QStringLiteral("Bayer"), {QStringLiteral("Dithering"), QStringLiteral("32")});
    AppSession app(8);
    app.click(loadFirst);
    QCOMPARE(PrinterOptionsFile::value("Dithering"), QByteArray("0"));
    app.turnTo(6);
    QCOMPARE(app.property(QStringLiteral("ditheringMethod"), "displayText").toString(),
             QStringLiteral("Threshold (No) Dither"));
}

void TestPresetsPage::changeAfterLoadingIsSaid()
{
    addPreset(QStringLiteral("Shoes"), options(QStringLiteral("0")));
    AppSession app(8);
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QString());
    app.click(loadFirst);
    app.turnTo(6);
    app.click(QStringLiteral("negative"));
    app.turnTo(8);
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QStringLiteral("Options were changed since"));
}

void TestPresetsPage::presetWithoutOptionsChangesNothing()
{
    addPreset(QStringLiteral("Nothing"), {});
    AppSession app(8);
    app.click(loadFirst);
    QCOMPARE(PrinterOptionsFile::count(), 0);
    QCOMPARE(app.text(report), QStringLiteral("“Nothing” holds no options, nothing was changed"));
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QString());
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
    addPreset(QStringLiteral("Shoes"), options(QStringLiteral("0")));
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
    addPreset(QStringLiteral("Boots"), options(QStringLiteral("0")));
    addPreset(QStringLiteral("Shoes"), options(QStringLiteral("0")));
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

void TestPresetsPage::oddNameIsPlainTextInOneLine_data()
{
    addOddNames();
}

void TestPresetsPage::oddNameIsPlainTextInOneLine()
{
    QFETCH(QString, name);
    QFETCH(QString, shown);
    addPreset(name, options(QStringLiteral("5")));
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
    QCOMPARE(messages.texts().filter(QStringLiteral("qrc:")), QStringList());
}

void TestPresetsPage::oddNameIsLoadedAndDeleted_data()
{
    addOddNames();
}

void TestPresetsPage::oddNameIsLoadedAndDeleted()
{
    QFETCH(QString, name);
    addPreset(name, options(QStringLiteral("5")));
    AppSession app(8);
    app.click(loadFirst);
    QCOMPARE(PrinterOptionsFile::value("Feed"), QByteArray("Custom.5"));
    QCOMPARE(app.text(QStringLiteral("preset.0.state")), QStringLiteral("In use"));
    app.click(deleteFirst);
    app.click(QStringLiteral("confirmation.confirm"));
    QCOMPARE(PrinterOptionsFile::presets(), QStringList());
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
    app.press(deleteFirst, Qt::Key_Return);
    QVERIFY(app.isVisible(QStringLiteral("confirmation.text")));
    QTest::keyClick(app.window(), Qt::Key_Tab);
    QTest::keyClick(app.window(), Qt::Key_Return);
    QTRY_COMPARE(PrinterOptionsFile::presets(), QStringList());
}

void TestPresetsPage::leavingThePageClosesItsQuestions()
{
    addPreset(QStringLiteral("Shoes"), options(QStringLiteral("0")));
    AppSession app(8);
    for (const QString &opener : {QStringLiteral("presets.save"), deleteFirst}) {
        app.click(opener);
        QMetaObject::invokeMethod(app.window(), "showTab", Q_ARG(QVariant, 0));
        QTRY_VERIFY(!app.isVisible(QStringLiteral("name.field"))
                    && !app.isVisible(QStringLiteral("confirmation.text")));
        app.turnTo(8);
    }
    QCOMPARE(PrinterOptionsFile::presets(), QStringList({QStringLiteral("Shoes")}));
}

QTEST_MAIN(TestPresetsPage)
#include "tst_presetspage.moc"
