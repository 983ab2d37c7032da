// The list as the printer object uses it, and its files as a person sees them.
#include "filebytes.h"
#include "messagelog.h"
#include "presethome.h"
#include "presetlist.h"
#include "texts.h"

#include <QtTest/QtTest>

#include <memory>
#include <sys/stat.h>

namespace {

const QString model = QStringLiteral("BrackenXL");
const QStringList predefinedNames{QStringLiteral("<Current Settings>"), QStringLiteral("<System Settings>"),
                                  QStringLiteral("<Default Settings>")};

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

QStringList feed(const char *value)
{
    return texts({"Feed", value});
}

// As the printer object saves a preset.
Preset *addPreset(PresetList *list, const QString &name, const QStringList &options = feed("1"))
{
    const int index = list->applyLastPresetIndex();
    auto *preset =
        new Preset(model, name + QStringLiteral("_p"), Preset::_State(2), options, name, QString(), index);
    list->addPreset(preset);
    list->setCurrentPreset(preset);
    list->save(list->getPredefinedPresetNames());
    return preset;
}

// As the printer object deletes one. Returns what the list returned.
QString deletePreset(PresetList *list, const QString &name)
{
    const QString next = list->deletePreset(list->findPreset(name));
    list->setCurrentPreset(list->findPreset(next));
    list->save(list->getPredefinedPresetNames());
    return next;
}

QStringList optionsOf(const PresetList &list, const QString &name)
{
    const Preset *preset = list.findPreset(name);
    return preset ? preset->options() : QStringList{QStringLiteral("no such preset")};
}

} // namespace

class TestPresetList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void readingMakesNothing();
    void thePredefinedPresetsAreInTheListIfAskedFor();
    void thePredefinedPresetsHaveTheirOptions();
    void aPresetIsAFileThatAPersonCanRead();
    void filesAreForTheUserAlone();
    void everyNameComesBack_data();
    void everyNameComesBack();
    void ofTwoPresetsWithOneNameTheNewestIsFound();
    void aPresetNamedLikeAPredefinedOneIsTheUsers();
    void theOrderSurvivesARestart();
    void theCurrentPresetSurvivesARestart();
    void noCurrentPresetSurvivesARestart();
    void loadingAPredefinedPresetSurvivesARestart();
    void thePresetBeforeADeletedOneBecomesCurrent_data();
    void thePresetBeforeADeletedOneBecomesCurrent();
    void aListOfItsOwnHasNothingBeforeItsFirstPreset();
    void predefinedPresetsAreNotDeleted();
    void whatIsNotInTheListIsNotDeleted();
    void ofTwoPresetsWithOneNameTheGivenOneIsDeleted();
    void thePresetBeforeADeletedOneBecomesCurrentByItsName();
    void aPresetThatWasNeverSavedIsDeleted();
    void aTemporaryPresetIsNotWritten();
    void indicesGrowAndAreNotGivenTwice();
    void presetsThatTheOrderDoesNotNameComeLastByIndex();
    void aFileThatIsGoneIsLoggedAndLeftOut();
    void whatIsNoPresetIsSetAsideAndTheRestIsRead_data();
    void whatIsNoPresetIsSetAsideAndTheRestIsRead();
    void aDamagedOrderIsSetAside();
    void anOrderThatIsDamagedMeanwhileIsSetAside();
    void anOrderOfANewerFormatIsLeftAlone();
    void aPresetWhoseFileIsDamagedMeanwhileIsWrittenAgain();
    void filesOfOthersAreLeftAlone();
    void aPresetOfAnotherModelKeepsItsFileName();
    void aPersonsPresetIsRead();
    void whatAnotherListChangedIsMerged();
    void aDeletedPresetDoesNotTakeItsSuccessorAway();
    void savingTwiceWritesNothing();

private:
    QByteArray order() const { return m_home->content("BrackenXL.list"); }

    std::unique_ptr<PresetHome> m_home;
    std::unique_ptr<MessageLog> m_log;
};

void TestPresetList::init()
{
    m_home = std::make_unique<PresetHome>();
    QVERIFY(m_home->isValid());
    m_log = std::make_unique<MessageLog>();
}

void TestPresetList::cleanup()
{
    const QStringList messages = m_log->texts();
    m_log.reset();
    m_home.reset();
    QCOMPARE(messages, QStringList());
}

void TestPresetList::readingMakesNothing()
{
    PresetList list(model, true);
    list.save(predefinedNames);
    QVERIFY(QDir(m_home->path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

void TestPresetList::thePredefinedPresetsAreInTheListIfAskedFor()
{
    const PresetList with(model, true);
    QCOMPARE(with.getPredefinedPresetNames(), predefinedNames);
    QCOMPARE(with.getUserPresetNames(), QStringList());
    const PresetList without(model, false);
    QCOMPARE(without.getPredefinedPresetNames(), QStringList());
    QVERIFY(!without.findPreset(text("<Default Settings>")));
}

void TestPresetList::thePredefinedPresetsHaveTheirOptions()
{
    const PresetList list(model, true);
    QCOMPARE(optionsOf(list, text("<Current Settings>")), QStringList());
    QCOMPARE(optionsOf(list, text("<System Settings>")),
             texts({"orientation-requested", "5", "copies", "1"}));
    QCOMPARE(optionsOf(list, text("<Default Settings>")),
             texts({"orientation-requested", "5", "copies", "1"}));
}

void TestPresetList::aPresetIsAFileThatAPersonCanRead()
{
    const QStringList options = texts({"orientation-requested",
                                       "6",
                                       "MirrorPrint",
                                       "True",
                                       "NegativePrint",
                                       "False",
                                       "Overprint",
                                       "False",
                                       "WhiteBase",
                                       "True",
                                       "CutMedia",
                                       "2",
                                       "Hoffset1",
                                       "-12",
                                       "Hoffset2",
                                       "0",
                                       "Voffset1",
                                       "4",
                                       "Voffset2",
                                       "5",
                                       "Feed",
                                       "3",
                                       "Stop",
                                       "2.5",
                                       "Dithering",
                                       "32",
                                       "head1Offset",
                                       "-7",
                                       "head2Offset",
                                       "8",
                                       "R1TensionAdjust",
                                       "1",
                                       "R2TensionAdjust",
                                       "-2",
                                       "RibbonSaver",
                                       "Enabled"});
    PresetList list(model, true);
    addPreset(&list, text("Shoes"), options);
    QCOMPARE(m_home->names(), texts({"BrackenXL.list", "Shoes_p"}));
    QCOMPARE(m_home->content("Shoes_p"),
             QByteArray("Corvanta preset, format 1\n"
                        "model: BrackenXL\n"
                        "name: Shoes\n"
                        "index: 1\n"
                        "\n"
                        "[options]\n"
                        "orientation-requested: 6\n"
                        "MirrorPrint: True\n"
                        "NegativePrint: False\n"
                        "Overprint: False\n"
                        "WhiteBase: True\n"
                        "CutMedia: 2\n"
                        "Hoffset1: -12\n"
                        "Hoffset2: 0\n"
                        "Voffset1: 4\n"
                        "Voffset2: 5\n"
                        "Feed: 3\n"
                        "Stop: 2.5\n"
                        "Dithering: 32\n"
                        "head1Offset: -7\n"
                        "head2Offset: 8\n"
                        "R1TensionAdjust: 1\n"
                        "R2TensionAdjust: -2\n"
                        "RibbonSaver: Enabled\n"
                        "\n"
                        "[end]\n"));
    QCOMPARE(order(),
             QByteArray("Corvanta preset list, format 1\n"
                        "model: BrackenXL\n"
                        "current: Shoes_p\n"
                        "\n"
                        "[presets]\n"
                        "Shoes_p: Shoes\n"
                        "\n"
                        "[end]\n"));
    QCOMPARE(optionsOf(PresetList(model, true), text("Shoes")), options);
}

void TestPresetList::filesAreForTheUserAlone()
{
    const mode_t before = umask(0);
    PresetList list(model, true);
    addPreset(&list, text("Shoes"));
    umask(before);
    for (const char *name : {"", "../", "Shoes_p", "BrackenXL.list"}) {
        struct stat status = {};
        QCOMPARE(stat(QFile::encodeName(m_home->folder() + text(name)).constData(), &status), 0);
        QCOMPARE(int(status.st_mode & 0777), S_ISDIR(status.st_mode) ? 0700 : 0600);
    }
}

void TestPresetList::everyNameComesBack_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("blanks") << QStringLiteral("   ");
    QTest::newRow("path upwards") << QStringLiteral("../../../outside");
    QTest::newRow("absolute path") << QStringLiteral("/tmp/outside");
    QTest::newRow("dot") << QStringLiteral(".");
    QTest::newRow("two dots") << QStringLiteral("..");
    QTest::newRow("line end") << QStringLiteral("a\nname: b\n[end]\n");
    QTest::newRow("colon and backslash") << QStringLiteral("a: b\\n");
    QTest::newRow("emoji") << text("\xF0\x9F\x91\x9F");
    QTest::newRow("half an emoji") << QString(QChar(0xd83d));
    QTest::newRow("NUL") << QString(QChar(0)) + QLatin1Char('a');
    QTest::newRow("300 letters") << QString(300, QLatin1Char('x'));
    QTest::newRow("300 emojis") << text("\xF0\x9F\x91\x9F").repeated(300);
    QTest::newRow("list file") << QStringLiteral("BrackenXL.list");
    QTest::newRow("unfinished file") << QStringLiteral("presets.new");
    QTest::newRow("shell") << QStringLiteral("$(touch /tmp/outside)`;'\"");
}

void TestPresetList::everyNameComesBack()
{
    QFETCH(QString, name);
    PresetList list(model, true);
    addPreset(&list, name, feed("1"));
    addPreset(&list, name, feed("2"));
    addPreset(&list, name + QLatin1Char('x'), feed("3"));

    const PresetList after(model, true);
    QCOMPARE(after.getUserPresetNames(), QStringList({name, name, name + QLatin1Char('x')}));
    QCOMPARE(optionsOf(after, name), feed("2"));
    QCOMPARE(optionsOf(after, name + QLatin1Char('x')), feed("3"));
    QCOMPARE(m_home->names().size(), 4);
    QCOMPARE(QDir(m_home->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             texts({".cups"}));
}

void TestPresetList::ofTwoPresetsWithOneNameTheNewestIsFound()
{
    PresetList list(model, true);
    addPreset(&list, text("Shoes"), feed("1"));
    addPreset(&list, text("Boxes"), feed("2"));
    addPreset(&list, text("Shoes"), feed("3"));
    QCOMPARE(optionsOf(list, text("Shoes")), feed("3"));
    QCOMPARE(list.getUserPresetNames(), texts({"Shoes", "Boxes", "Shoes"}));
    QCOMPARE(optionsOf(PresetList(model, true), text("Shoes")), feed("3"));
    QVERIFY(!list.findPreset(text("shoes")));
    QVERIFY(!list.findPreset(QString()));
}

void TestPresetList::aPresetNamedLikeAPredefinedOneIsTheUsers()
{
    const QString name = text("<Default Settings>");
    PresetList list(model, true);
    addPreset(&list, name, feed("1"));
    QCOMPARE(list.getUserPresetNames(), QStringList{name});
    QCOMPARE(list.getPredefinedPresetNames(), predefinedNames);
    PresetList after(model, true);
    QCOMPARE(optionsOf(after, name), feed("1"));
    deletePreset(&after, name);
    QCOMPARE(optionsOf(after, name), texts({"orientation-requested", "5", "copies", "1"}));
    QCOMPARE(deletePreset(&after, name), name);
    QCOMPARE(after.getPredefinedPresetNames(), predefinedNames);
}

void TestPresetList::theOrderSurvivesARestart()
{
    QStringList names;
    {
        PresetList list(model, true);
        for (int i = 0; i < 12; ++i) {
            names.append(QString::number((i * 7) % 12));
            addPreset(&list, names.last());
        }
        names.removeOne(text("5"));
        deletePreset(&list, text("5"));
        QCOMPARE(list.getUserPresetNames(), names);
    }
    PresetList list(model, true);
    QCOMPARE(list.getUserPresetNames(), names);
    addPreset(&list, text("5"));
    QCOMPARE(PresetList(model, true).getUserPresetNames(), names + texts({"5"}));
}

void TestPresetList::theCurrentPresetSurvivesARestart()
{
    {
        PresetList list(model, true);
        addPreset(&list, text("Shoes"));
        addPreset(&list, text("Boxes"));
        QVERIFY(order().contains("\ncurrent: Boxes_p\n"));
        // As the printer object does when a preset is loaded: nothing is saved afterwards.
        list.setCurrentPreset(list.findPreset(text("Shoes")));
        QVERIFY(order().contains("\ncurrent: Shoes_p\n"));
    }
    PresetList list(model, true);
    // What is not deleted leaves the current one as it is, and tells which it is.
    QCOMPARE(list.deletePreset(nullptr), text("Shoes"));
}

void TestPresetList::noCurrentPresetSurvivesARestart()
{
    PresetList list(model, true);
    QCOMPARE(list.deletePreset(nullptr), text("<Current Settings>"));
    addPreset(&list, text("Shoes"));
    list.setCurrentPreset(nullptr);
    QVERIFY(!order().contains("current"));
    QCOMPARE(list.deletePreset(nullptr), QString());
    QCOMPARE(PresetList(model, true).deletePreset(nullptr), QString());
    list.save(predefinedNames);
    QCOMPARE(list.deletePreset(nullptr), QString());
}

void TestPresetList::loadingAPredefinedPresetSurvivesARestart()
{
    PresetList list(model, true);
    list.setCurrentPreset(list.findPreset(text("<Default Settings>")));
    QVERIFY(order().contains("\ncurrent predefined: <Default Settings>\n"));
    QCOMPARE(PresetList(model, true).deletePreset(nullptr), text("<Default Settings>"));

    // A list that does not know it leaves it.
    PresetList without(model, false);
    auto *preset = new Preset(model, text("Shoes_p"), Preset::User, feed("1"), text("Shoes"), {}, 1);
    without.addPreset(preset);
    without.save({});
    QVERIFY(order().contains("\ncurrent predefined: <Default Settings>\n"));
}

void TestPresetList::thePresetBeforeADeletedOneBecomesCurrent_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("next");
    QTest::newRow("last") << text("c") << text("b");
    QTest::newRow("middle") << text("b") << text("a");
    QTest::newRow("first") << text("a") << text("<Default Settings>");
}

void TestPresetList::thePresetBeforeADeletedOneBecomesCurrent()
{
    QFETCH(QString, name);
    QFETCH(QString, next);
    PresetList list(model, true);
    QStringList names = texts({"a", "b", "c"});
    for (const QString &each : qAsConst(names))
        addPreset(&list, each);
    names.removeOne(name);
    QCOMPARE(deletePreset(&list, name), next);
    QCOMPARE(list.getUserPresetNames(), names);
    QVERIFY(!list.findPreset(name));

    PresetList after(model, true);
    QCOMPARE(after.getUserPresetNames(), names);
    QCOMPARE(after.deletePreset(nullptr), next);
    QCOMPARE(m_home->names().size(), 3);
}

void TestPresetList::aListOfItsOwnHasNothingBeforeItsFirstPreset()
{
    PresetList list(model, false);
    addPreset(&list, text("a"));
    addPreset(&list, text("b"));
    QCOMPARE(deletePreset(&list, text("a")), text("b"));
    QCOMPARE(deletePreset(&list, text("b")), QString());
    QCOMPARE(PresetList(model, false).getUserPresetNames(), QStringList());
}

void TestPresetList::predefinedPresetsAreNotDeleted()
{
    PresetList list(model, true);
    addPreset(&list, text("Shoes"));
    for (const QString &name : predefinedNames)
        QCOMPARE(deletePreset(&list, name), text("Shoes"));
    QCOMPARE(list.getPredefinedPresetNames(), predefinedNames);
    QCOMPARE(list.getUserPresetNames(), texts({"Shoes"}));
}

void TestPresetList::whatIsNotInTheListIsNotDeleted()
{
    PresetList list(model, true);
    addPreset(&list, text("Shoes"));
    Preset other(model, text("Shoes_p"), Preset::User, feed("1"), text("Shoes"), {}, 1);
    QCOMPARE(list.deletePreset(&other), text("Shoes"));
    QCOMPARE(list.deletePreset(nullptr), text("Shoes"));
    list.setCurrentPreset(&other);
    list.addPreset(nullptr);
    list.addPreset(list.findPreset(text("Shoes")));
    list.save(predefinedNames);
    QCOMPARE(PresetList(model, true).getUserPresetNames(), texts({"Shoes"}));
    QVERIFY(order().contains("\ncurrent: Shoes_p\n"));
}

void TestPresetList::ofTwoPresetsWithOneNameTheGivenOneIsDeleted()
{
    PresetList list(model, true);
    Preset *first = addPreset(&list, text("Shoes"), feed("1"));
    addPreset(&list, text("Boxes"));
    addPreset(&list, text("Shoes"), feed("2"));
    QCOMPARE(list.deletePreset(first), text("<Default Settings>"));
    list.save(predefinedNames);
    const PresetList after(model, true);
    QCOMPARE(after.getUserPresetNames(), texts({"Boxes", "Shoes"}));
    QCOMPARE(optionsOf(after, text("Shoes")), feed("2"));
}

void TestPresetList::thePresetBeforeADeletedOneBecomesCurrentByItsName()
{
    PresetList list(model, true);
    addPreset(&list, text("Shoes"), feed("1"));
    addPreset(&list, text("Boxes"));
    addPreset(&list, text("Shoes"), feed("2"));
    QCOMPARE(deletePreset(&list, text("Boxes")), text("Shoes"));
    // Two have that name: the newest is meant.
    QVERIFY(order().contains("\ncurrent: Shoes_p-2\n"));
}

void TestPresetList::aPresetThatWasNeverSavedIsDeleted()
{
    PresetList list(model, true);
    auto *preset = new Preset(model, text("Shoes_p"), Preset::User, feed("1"), text("Shoes"), {}, 1);
    list.addPreset(preset);
    QCOMPARE(list.getUserPresetNames(), texts({"Shoes"}));
    QCOMPARE(list.deletePreset(preset), text("<Default Settings>"));
    list.save(predefinedNames);
    QCOMPARE(m_home->names(), texts({"BrackenXL.list"}));
}

void TestPresetList::aTemporaryPresetIsNotWritten()
{
    PresetList list(model, true);
    auto *preset = new Preset(model, text("Draft_p"), Preset::Temporary, feed("1"), text("Draft"), {}, 1);
    list.addPreset(preset);
    list.setCurrentPreset(preset);
    addPreset(&list, text("Shoes"));
    QCOMPARE(optionsOf(list, text("Draft")), feed("1"));
    QCOMPARE(list.getUserPresetNames().size(), 2);
    QCOMPARE(PresetList(model, true).getUserPresetNames(), texts({"Shoes"}));

    // There is no file that could be named as the current one.
    list.setCurrentPreset(list.findPreset(text("Draft")));
    QVERIFY(!order().contains("current"));
    list.save(predefinedNames);
    QCOMPARE(list.deletePreset(nullptr), QString());
}

void TestPresetList::indicesGrowAndAreNotGivenTwice()
{
    QVERIFY(m_home->write("Shoes_p", presetFile("Shoes", 41)));
    QVERIFY(m_home->write("Boxes_p", presetFile("Boxes", -3)));
    PresetList list(model, true);
    QCOMPARE(list.applyLastPresetIndex(), 42);
    QCOMPARE(list.applyLastPresetIndex(), 43);
    list.addPreset(new Preset(model, text("a_p"), Preset::User, feed("1"), text("a"), {},
                              std::numeric_limits<int>::max()));
    QCOMPARE(list.applyLastPresetIndex(), std::numeric_limits<int>::max());
}

void TestPresetList::presetsThatTheOrderDoesNotNameComeLastByIndex()
{
    QVERIFY(m_home->write("a", presetFile("a", 9)));
    QVERIFY(m_home->write("b", presetFile("b", 3)));
    QVERIFY(m_home->write("c", presetFile("c", 8)));
    QVERIFY(m_home->write("d", presetFile("d", 3)));
    QVERIFY(m_home->write("BrackenXL.list",
                          "Corvanta preset list, format 1\nmodel: BrackenXL\ncurrent: c\n\n"
                          "[presets]\nc: c\na: a\n[end]\n"));
    PresetList list(model, true);
    QCOMPARE(list.getUserPresetNames(), texts({"c", "a", "b", "d"}));
    QCOMPARE(list.deletePreset(nullptr), text("c"));
}

void TestPresetList::aFileThatIsGoneIsLoggedAndLeftOut()
{
    {
        PresetList list(model, true);
        addPreset(&list, text("Shoes"));
        addPreset(&list, text("Boxes"));
    }
    QVERIFY(m_home->remove("Boxes_p"));
    PresetList list(model, true);
    QCOMPARE(list.getUserPresetNames(), texts({"Shoes"}));
    QCOMPARE(list.deletePreset(nullptr), text("<Current Settings>"));
    list.save(predefinedNames);
    QVERIFY(!order().contains("Boxes"));
    QCOMPARE(m_log->texts(),
             QStringList{QStringLiteral("PresetList: %1Boxes_p is gone.").arg(m_home->folder())});
    m_log->clear();
}

void TestPresetList::whatIsNoPresetIsSetAsideAndTheRestIsRead_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty, as after a power cut") << QByteArray("");
    QTest::newRow("cut") << presetFile("Shoes", 1).left(60);
    QTest::newRow("foreign") << QByteArray("Dest BrackenXL Feed=Custom.3\n");
    QTest::newRow("bytes") << QByteArray("\xff\0\x01", 3);
    QTest::newRow("too large") << QByteArray(5000000, 'x');
    QTest::newRow("link to a preset elsewhere") << QByteArray();
    QTest::newRow("pipe") << QByteArray();
}

void TestPresetList::whatIsNoPresetIsSetAsideAndTheRestIsRead()
{
    QFETCH(QByteArray, content);
    QVERIFY(m_home->write("Boxes_p", presetFile("Boxes", 2, "Feed: 7")));
    QVERIFY(m_home->write("Shoes_p.damaged", "an older one"));
    const QString path = m_home->folder() + QStringLiteral("Shoes_p");
    const QString elsewhere = m_home->path() + QStringLiteral("/elsewhere");
    if (QTest::currentDataTag() == QByteArray("pipe"))
        QCOMPARE(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    else if (content.isNull())
        QVERIFY(FileBytes::write(elsewhere, presetFile("Shoes", 1)) && QFile::link(elsewhere, path));
    else
        QVERIFY(m_home->write("Shoes_p", content));

    PresetList list(model, true);
    QCOMPARE(list.getUserPresetNames(), texts({"Boxes"}));
    QCOMPARE(optionsOf(list, text("Boxes")), feed("7"));
    list.save(predefinedNames);
    QCOMPARE(m_log->texts(),
             QStringList{QStringLiteral("PresetList: %1Shoes_p is damaged or no preset and is "
                                        "now Shoes_p.2.damaged.")
                             .arg(m_home->folder())});
    m_log->clear();
    QCOMPARE(m_home->names(), texts({"Boxes_p", "BrackenXL.list", "Shoes_p.2.damaged", "Shoes_p.damaged"}));
    if (!content.isNull())
        QVERIFY(m_home->content("Shoes_p.2.damaged") == content);
    QCOMPARE(m_home->content("Shoes_p.damaged"), QByteArray("an older one"));

    const PresetList again(model, true);
}

void TestPresetList::aDamagedOrderIsSetAside()
{
    QVERIFY(m_home->write("a", presetFile("a", 2)));
    QVERIFY(m_home->write("b", presetFile("b", 1)));
    QVERIFY(m_home->write("BrackenXL.list", "Corvanta preset list, format 1\nmodel"));
    const PresetList list(model, true);
    QCOMPARE(list.getUserPresetNames(), texts({"b", "a"}));
    QCOMPARE(m_home->names(), texts({"BrackenXL.list.damaged", "a", "b"}));
    QCOMPARE(m_log->texts().size(), 1);
    m_log->clear();
}

void TestPresetList::anOrderThatIsDamagedMeanwhileIsSetAside()
{
    PresetList list(model, true);
    addPreset(&list, text("Shoes"));
    addPreset(&list, text("Boxes"));
    QVERIFY(m_home->write("BrackenXL.list", "a person's notes"));
    list.setCurrentPreset(list.findPreset(text("Shoes")));
    QCOMPARE(m_home->content("BrackenXL.list.damaged"), QByteArray("a person's notes"));
    QVERIFY(order().contains("\ncurrent: Shoes_p\n"));
    QVERIFY(order().contains("\nShoes_p: Shoes\nBoxes_p: Boxes\n"));
    QCOMPARE(m_log->texts().size(), 1);
    m_log->clear();
}

void TestPresetList::anOrderOfANewerFormatIsLeftAlone()
{
    const QByteArray newer("Corvanta preset list, format 2\nwhatever\n");
    QVERIFY(m_home->write("Boxes_p", presetFile("Boxes", 1)));
    QVERIFY(m_home->write("BrackenXL.list", newer));
    PresetList list(model, true);
    addPreset(&list, text("Shoes"));
    addPreset(&list, text("Hats"));
    list.setCurrentPreset(list.findPreset(text("Shoes")));
    list.save(predefinedNames);
    list.save(predefinedNames);
    // All but the order is kept, and this list goes on with the current preset.
    QCOMPARE(list.deletePreset(nullptr), text("Shoes"));
    QCOMPARE(deletePreset(&list, text("Hats")), text("Shoes"));
    QCOMPARE(PresetList(model, true).getUserPresetNames(), texts({"Boxes", "Shoes"}));
    QCOMPARE(order(), newer);
    QCOMPARE(m_home->names(), texts({"Boxes_p", "BrackenXL.list", "Shoes_p"}));
    const QString line = QStringLiteral("PresetList: %1BrackenXL.list has a newer format and is left alone.")
                             .arg(m_home->folder());
    // Each list says it once.
    QCOMPARE(m_log->texts(), QStringList({line, line}));
    m_log->clear();
}

void TestPresetList::aPresetWhoseFileIsDamagedMeanwhileIsWrittenAgain()
{
    PresetList list(model, true);
    addPreset(&list, text("Shoes"));
    addPreset(&list, text("Boxes"));
    const QByteArray before = m_home->content("Shoes_p");
    QVERIFY(m_home->write("Shoes_p", before.left(40)));
    list.save(predefinedNames);
    QCOMPARE(m_home->content("Shoes_p"), before);
    QCOMPARE(m_home->content("Shoes_p.damaged"), before.left(40));
    QCOMPARE(PresetList(model, true).getUserPresetNames(), texts({"Boxes", "Shoes"}));
    QCOMPARE(m_log->texts().size(), 1);
    m_log->clear();
}

void TestPresetList::filesOfOthersAreLeftAlone()
{
    const QByteArray other = presetFile("Shoes", 1).replace("BrackenXL", "Other");
    QVERIFY(m_home->write("Shoes_p", other));
    QVERIFY(m_home->write("Other.list", "not ours"));
    QVERIFY(m_home->write("Boxes_p~", "an editor's"));
    QVERIFY(m_home->write(".hidden", "hidden"));
    QVERIFY(QDir(m_home->folder()).mkdir(QStringLiteral("subfolder")));
    QVERIFY(m_home->write("Newer_p", "Corvanta preset, format 2\n"));
    const QStringList before = m_home->names();

    PresetList list(model, true);
    QCOMPARE(list.getUserPresetNames(), QStringList());
    list.save(predefinedNames);
    QCOMPARE(m_home->names(), before);
    QCOMPARE(m_home->content("Shoes_p"), other);
    QCOMPARE(m_log->texts(),
             QStringList{QStringLiteral("PresetList: %1Newer_p has a newer format and is left alone.")
                             .arg(m_home->folder())});
    m_log->clear();
}

void TestPresetList::aPresetOfAnotherModelKeepsItsFileName()
{
    PresetList other(text("Other"), true);
    addPreset(&other, text("Shoes"), feed("1"));
    PresetList list(model, true);
    addPreset(&list, text("Shoes"), feed("2"));
    QCOMPARE(optionsOf(PresetList(text("Other"), true), text("Shoes")), feed("1"));
    QCOMPARE(optionsOf(PresetList(model, true), text("Shoes")), feed("2"));
    QCOMPARE(m_home->names(), texts({"BrackenXL.list", "Other.list", "Shoes_p", "Shoes_p-2"}));
}

void TestPresetList::aPersonsPresetIsRead()
{
    QVERIFY(m_home->write("my copy.txt", presetFile("Größe 40", 5, "# wide\nFeed: 4\nStop: 2.5")));
    PresetList list(model, true);
    QCOMPARE(optionsOf(list, text("Größe 40")), texts({"Feed", "4", "Stop", "2.5"}));
    deletePreset(&list, text("Größe 40"));
    QCOMPARE(m_home->names(), texts({"BrackenXL.list"}));
}

void TestPresetList::whatAnotherListChangedIsMerged()
{
    PresetList one(model, true);
    addPreset(&one, text("a"));
    addPreset(&one, text("b"), feed("1"));
    PresetList two(model, true);
    addPreset(&two, text("c"));
    deletePreset(&two, text("a"));
    QVERIFY(m_home->write("b_p", presetFile("b", 2, "Feed: 9")));

    addPreset(&one, text("d"));
    QCOMPARE(one.getUserPresetNames(), texts({"b", "c", "d"}));
    QCOMPARE(optionsOf(one, text("b")), feed("9"));
    two.save(predefinedNames);
    QCOMPARE(two.getUserPresetNames(), texts({"b", "c", "d"}));
    QCOMPARE(two.deletePreset(nullptr), text("d"));
}

void TestPresetList::aDeletedPresetDoesNotTakeItsSuccessorAway()
{
    PresetList one(model, true);
    addPreset(&one, text("Shoes"), feed("1"));
    PresetList two(model, true);
    deletePreset(&two, text("Shoes"));
    addPreset(&two, text("Shoes"), feed("2"));
    QCOMPARE(m_home->names(), texts({"BrackenXL.list", "Shoes_p"}));

    deletePreset(&one, text("Shoes"));
    QCOMPARE(optionsOf(PresetList(model, true), text("Shoes")), feed("2"));
    QCOMPARE(optionsOf(one, text("Shoes")), feed("2"));
}

void TestPresetList::savingTwiceWritesNothing()
{
    PresetList list(model, true);
    addPreset(&list, text("Shoes"));
    const auto inodes = [this] {
        QVector<ino_t> result;
        for (const char *name : {"Shoes_p", "BrackenXL.list"}) {
            struct stat status = {};
            stat(QFile::encodeName(m_home->folder() + text(name)).constData(), &status);
            result.append(status.st_ino);
        }
        return result;
    };
    const QVector<ino_t> before = inodes();
    list.save(predefinedNames);
    list.setCurrentPreset(list.findPreset(text("Shoes")));
    PresetList(model, true).save(predefinedNames);
    QCOMPARE(inodes(), before);
    QCOMPARE(m_home->names(), texts({"BrackenXL.list", "Shoes_p"}));
}

QTEST_GUILESS_MAIN(TestPresetList)
#include "tst_presetlist.moc"
