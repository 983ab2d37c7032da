// Registry entries, which of them are offered, and the translated, sorted list that is made of them.
#include "cataloguebuilder.h"
#include "keyboardlayouts.h"
#include "xkbfolder.h"

#include <QtCore/QDir>
#include <QtTest/QtTest>

namespace {

KeyboardEntry entry(const char *layout, const char *variant, const char *description)
{
    return {layout, variant, "", description};
}

QStringList namesOf(const QVector<KeyboardEntry> &entries)
{
    QStringList names;
    for (const KeyboardEntry &e : entries)
        names += QString::fromUtf8(e.layout + '(' + e.variant + ')');
    return names;
}

// The layouts in their order, as "layout(variant)".
QStringList orderOf(const QByteArray &packed)
{
    QStringList order;
    for (const auto &info : layoutTable(packed))
        order += info.layout + QLatin1Char('(') + info.variant + QLatin1Char(')');
    return order;
}

} // namespace

class KeyboardLayoutsTest : public QObject
{
    Q_OBJECT

private slots:
    void registryGivesLayoutsAndVariantsWithTheirTexts()
    {
        const XkbFolder folder(
            {{"de", "German", {{"nodeadkeys", "German (no dead keys)"}}}, {"us", "English (US)", {}}});
        const QVector<KeyboardEntry> entries = readRegistry({"/no/such/folder", folder.path()});
        QCOMPARE(
            namesOf(entries),
            QStringList({QStringLiteral("de()"), QStringLiteral("de(nodeadkeys)"), QStringLiteral("us()")}));
        QCOMPARE(entries.at(1).description, QByteArray("German (no dead keys)"));
    }

    void installedRegistryHasShortLanguageCodes()
    {
        const QVector<KeyboardEntry> entries = readRegistry(xkbFolders());
        const auto german = std::find_if(entries.begin(), entries.end(), [](const KeyboardEntry &e) {
            return e.layout == "at" && e.variant == "nodeadkeys";
        });
        QVERIFY(german != entries.end());
        QCOMPARE(german->language, QByteArray("de"));
    }

    void brokenRegistryGivesNothing_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("text") << QByteArray("root:x:0:0:root:/root:/bin/bash\n");
        QTest::newRow("cut") << QByteArray("<?xml version=\"1.0\"?><xkbConfigRegistry><layoutList><layout>");
        QTest::newRow("other XML") << QByteArray("<html/>");
        QTest::newRow("zeros") << QByteArray(4096, '\0');
    }

    void brokenRegistryGivesNothing()
    {
        QFETCH(QByteArray, bytes);
        const XkbFolder folder({});
        folder.setRegistry(bytes);
        QVERIFY(readRegistry({folder.path()}).isEmpty());
        QVERIFY(readRegistry({}).isEmpty());
    }

    void layoutWithoutSymbolsIsLeftOut()
    {
        const XkbFolder folder({{"de", "German", {}}, {"custom", "A user-defined custom Layout", {}}});
        folder.removeSymbols("custom");
        const QVector<KeyboardEntry> entries = readRegistry({folder.path()});
        QCOMPARE(namesOf(loadableEntries(entries, {folder.path()})), QStringList(QStringLiteral("de()")));

        folder.addSymbols("custom");
        QCOMPARE(namesOf(loadableEntries(entries, {"/no/such/folder", folder.path()})),
                 QStringList({QStringLiteral("de()"), QStringLiteral("custom()")}));
    }

    void entryOfTwoFoldersIsListedOnceAsTheFirstHasIt()
    {
        const XkbFolder makers({{"de", "German of the maker", {{"neo", "Neo of the maker"}}}});
        const XkbFolder systems({{"de", "German", {{"neo", "Neo"}, {"bone", "Bone"}}}, {"us", "US", {}}});
        const QVector<KeyboardEntry> entries = readRegistry({makers.path(), systems.path()});
        QCOMPARE(namesOf(entries),
                 QStringList({QStringLiteral("de()"), QStringLiteral("de(neo)"), QStringLiteral("de(bone)"),
                              QStringLiteral("us()")}));
        QCOMPARE(entries.at(0).description, QByteArray("German of the maker"));
        QCOMPARE(entries.at(1).description, QByteArray("Neo of the maker"));
        QCOMPARE(entries.at(2).description, QByteArray("Bone"));
        QCOMPARE(readRegistry({systems.path(), makers.path()}).at(1).description, QByteArray("Neo"));
    }

    void registryGivenTwiceListsEverythingOnce()
    {
        const QByteArray folder = xkbFolders().last();
        const QVector<KeyboardEntry> once = readRegistry({folder});
        QVERIFY(once.size() > 500);
        QCOMPARE(namesOf(readRegistry({folder, folder})), namesOf(once));
    }

    void folderThatOnlyAddsAVariantLeavesTheLayoutAsItIs()
    {
        const XkbFolder makers({});
        makers.setRegistry("<?xml version=\"1.0\"?><!DOCTYPE xkbConfigRegistry SYSTEM \"xkb.dtd\">"
                           "<xkbConfigRegistry version=\"1.1\"><layoutList><layout><configItem>"
                           "<name>us</name></configItem><variantList><variant><configItem>"
                           "<name>label</name><description>Label printer</description></configItem>"
                           "</variant></variantList></layout></layoutList></xkbConfigRegistry>");
        const QVector<KeyboardEntry> entries = readRegistry({makers.path(), xkbFolders().last()});
        QCOMPARE(namesOf(entries.mid(0, 2)),
                 QStringList({QStringLiteral("us()"), QStringLiteral("us(label)")}));
        QCOMPARE(entries.at(0).description, QByteArray("English (US)"));
        QCOMPARE(entries.at(0).language, QByteArray("en"));
        QCOMPARE(entries.at(1).description, QByteArray("Label printer"));
        QCOMPARE(entries.at(1).language, QByteArray("en"));
    }

    void onlyAFileIsTakenForSymbols()
    {
        const XkbFolder folder({{"us", "English (US)", {}}, {"de", "German", {}}});
        const QString symbols = QString::fromUtf8(folder.path()) + QStringLiteral("/symbols/");
        QVERIFY(QDir(symbols).mkpath(QStringLiteral("folder")));
        QVERIFY(QFile::link(QStringLiteral("us"), symbols + QStringLiteral("link")));
        QVERIFY(QFile::link(QStringLiteral("folder"), symbols + QStringLiteral("folderlink")));
        QVERIFY(QFile::link(QStringLiteral("nothing"), symbols + QStringLiteral("dangling")));
        const QVector<KeyboardEntry> entries{
            entry("/", "", "Root"),    entry("//", "", "Root"),           entry("folder", "", "Folder"),
            entry("folder/", "", ""),  entry("folderlink", "", "Folder"), entry("dangling", "", "Nothing"),
            entry("link", "", "Link"), entry("us", "", "English (US)"),   entry("us/", "", "English (US)"),
            entry("us", "/", "Slash"),
        };
        QCOMPARE(namesOf(loadableEntries(entries, {folder.path()})),
                 QStringList({QStringLiteral("link()"), QStringLiteral("us()"), QStringLiteral("us(/)")}));
    }

    void nameThatWouldBreakAnEnvironmentFileIsLeftOut_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<bool>("offered");
        QTest::newRow("letters") << QByteArray("de") << true;
        QTest::newRow("all kinds") << QByteArray("De-102_Qwertz") << true;
        QTest::newRow("line end") << QByteArray("de\nPATH=x") << false;
        QTest::newRow("space") << QByteArray("de at") << false;
        QTest::newRow("dollar") << QByteArray("$HOME") << false;
        QTest::newRow("quote") << QByteArray("de\"") << false;
        QTest::newRow("folder above") << QByteArray("..") << false;
        QTest::newRow("accent") << QByteArray("d\xc3\xa9") << false;
    }

    void nameThatWouldBreakAnEnvironmentFileIsLeftOut()
    {
        QFETCH(QByteArray, name);
        QFETCH(bool, offered);
        const XkbFolder folder({{"us", "English (US)", {}}});
        if (name != "..")
            folder.addSymbols(name);
        const QByteArrayList folders{folder.path()};
        QCOMPARE(loadableEntries({{name, "", "", "x"}}, folders).size(), offered ? 1 : 0);
        QCOMPARE(loadableEntries({{"us", name, "", "x"}}, folders).size(), offered ? 1 : 0);
        QCOMPARE(loadableEntries({{"", "", "", "x"}}, folders).size(), 0);
    }

    void listAndTableBelongTogether()
    {
        const QByteArray packed = packedLayouts({{"us", "", "en", "English (US)"},
                                                 {"de", "neo", "de", "German (Neo 2)"},
                                                 {"al", "", "sq", "Albanian"}},
                                                MessageCatalogue(), QStringLiteral("en_US"));
        QCOMPARE(layoutNames(packed),
                 QStringList({QStringLiteral("Albanian"), QStringLiteral("English (US)"),
                              QStringLiteral("German (Neo 2)")}));
        const auto table = layoutTable(packed);
        QCOMPARE(table.keys(), QList<int>({0, 1, 2}));
        QCOMPARE(table.value(2).language, QStringLiteral("de"));
        QCOMPARE(table.value(2).layout, QStringLiteral("de"));
        QCOMPARE(table.value(2).variant, QStringLiteral("neo"));
        QCOMPARE(table.value(2).description, QStringLiteral("German (Neo 2)"));
    }

    void namesAreTranslatedWhereTheyCanBe()
    {
        const MessageCatalogue catalogue(catalogueBytes({
            {"German", "Deutsch"},
            {"Norwegian", " Norwegisch "},
            {"Czech (with &lt;\\|&gt; key)", "Tschechisch (mit Taste &lt;\\|&gt; &amp; so)"},
        }));
        const QByteArray packed = packedLayouts({entry("de", "", "German"), entry("no", "", "Norwegian"),
                                                 entry("cz", "bksl", "Czech (with <\\|> key)"),
                                                 entry("zz", "", "Zulu"), entry("yy", "odd", "")},
                                                catalogue, QStringLiteral("de_DE"));
        QCOMPARE(layoutNames(packed),
                 QStringList({QStringLiteral("Deutsch"), QStringLiteral("Norwegisch"),
                              QStringLiteral("Tschechisch (mit Taste <\\|> & so)"), QStringLiteral("yy(odd)"),
                              QStringLiteral("Zulu")}));
    }

    void equalNamesAreToldApart()
    {
        const MessageCatalogue catalogue(
            catalogueBytes({{"German", "Njemački"}, {"German (dead acute)", "Njemački"}}));
        const QByteArray packed = packedLayouts({entry("de", "deadacute", "German (dead acute)"),
                                                 entry("de", "", "German"), entry("al", "", "Albanian")},
                                                catalogue, QStringLiteral("hr_HR"));
        QCOMPARE(layoutNames(packed),
                 QStringList({QStringLiteral("Albanian"), QStringLiteral("Njemački [de(deadacute)]"),
                              QStringLiteral("Njemački [de]")}));
        QCOMPARE(
            orderOf(packed),
            QStringList({QStringLiteral("al()"), QStringLiteral("de(deadacute)"), QStringLiteral("de()")}));
    }

    void orderIsThatOfTheLanguage_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QStringList>("order");
        const auto row = [](const char *locale, const char *order) {
            QTest::newRow(locale) << QString::fromLatin1(locale)
                                  << QString::fromUtf8(order).split(QLatin1Char(' '));
        };
        row("de_DE", "Akan ändern Norsk Österreich Zulu");
        row("sv_SE", "Akan Norsk Zulu ändern Österreich");
        row("en_US", "Akan ändern Norsk Österreich Zulu");
    }

    void orderIsThatOfTheLanguage()
    {
        QFETCH(QString, locale);
        QFETCH(QStringList, order);
        const QVector<KeyboardEntry> entries{entry("a", "", "Österreich"), entry("b", "", "Zulu"),
                                             entry("c", "", "Akan"), entry("d", "", "ändern"),
                                             entry("e", "", "Norsk")};
        QCOMPARE(layoutNames(packedLayouts(entries, MessageCatalogue(), locale)), order);
    }

    void orderDoesNotDependOnTheRegistry()
    {
        QVector<KeyboardEntry> entries = readRegistry(xkbFolders());
        // Names that differ only in what sorting ignores, a soft hyphen.
        entries += {entry("x1", "", "Soft\u00adware"), entry("x2", "", "Software")};
        const QByteArray packed = packedLayouts(entries, MessageCatalogue(), QStringLiteral("en_US"));
        std::reverse(entries.begin(), entries.end());
        QCOMPARE(packedLayouts(entries, MessageCatalogue(), QStringLiteral("en_US")), packed);
    }

    void longNamesAreSortedToo()
    {
        const QByteArray longName = QByteArray(2000, 'a') + "b";
        const QByteArray longerName = QByteArray(2000, 'a') + "c";
        const QByteArray packed = packedLayouts({{"x", "", "", longerName}, {"y", "", "", longName}},
                                                MessageCatalogue(), QStringLiteral("en_US"));
        QCOMPARE(orderOf(packed), QStringList({QStringLiteral("y()"), QStringLiteral("x()")}));
    }

    void nothingPackedIsAnEmptyList()
    {
        const QByteArray packed = packedLayouts({}, MessageCatalogue(), QStringLiteral("en_US"));
        QVERIFY(layoutNames(packed).isEmpty());
        QVERIFY(layoutTable(packed).isEmpty());
    }
};

QTEST_GUILESS_MAIN(KeyboardLayoutsTest)
#include "tst_keyboardlayouts.moc"
