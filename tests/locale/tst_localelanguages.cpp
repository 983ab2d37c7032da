// ZBLocaleLanguages as its users see it: processes in many languages, whole and broken data on the machine,
// and objects side by side in one process.
#include "xkbfolder.h"
#include "zblocalelanguages.h"

#include <QtCore/QCollator>
#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLocale>
#include <QtCore/QProcess>
#include <QtCore/QSet>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <xkbcommon/xkbcommon.h>

#include <limits>
#include <memory>

namespace {

using Environment = QMap<QString, QString>;

const QStringList &allCodes()
{
    static const QStringList codes = QStringLiteral("ar_sa bg_bg cs_cz da_dk de_de el_gr en_us en_gb es_es "
                                                    "es_mx fi_fi fr_fr fr_ca he_il hr_hr hu_hu id_id it_it "
                                                    "ja_jp ko_kr nb_no nl_nl pl_pl pt_br pt_pt ro_ro ru_ru "
                                                    "sk_sk sl_si sv_se th_th tr_tr uk_ua vi_vn zh_cn zh_tw")
                                         .split(QLatin1Char(' '));
    return codes;
}

// What a process of its own said.
struct Lists
{
    QString currentCode;
    QStringList codes;
    QStringList languages;
    QStringList keyboards;
    QList<int> keys;
    QList<QStringList> table; // language, layout, variant, description
    QStringList log;

    QString language(const char *code) const { return languages.value(codes.indexOf(QLatin1String(code))); }

    int position(const char *layout, const char *variant) const
    {
        for (int i = 0; i < table.size(); ++i) {
            if (table.at(i).at(1) == QLatin1String(layout) && table.at(i).at(2) == QLatin1String(variant))
                return i;
        }
        return -1;
    }

    QString keyboard(const char *layout, const char *variant) const
    {
        return keyboards.value(position(layout, variant));
    }
};

QStringList texts(const QJsonValue &array)
{
    QStringList list;
    for (const QJsonValue text : array.toArray())
        list += text.toString();
    return list;
}

Lists parsed(const QByteArray &output, const QByteArray &log)
{
    const QJsonObject json = QJsonDocument::fromJson(output).object();
    Lists lists;
    lists.codes = texts(json.value(QLatin1String("codes")));
    lists.currentCode = lists.codes.value(json.value(QLatin1String("current")).toInt(-1));
    lists.languages = texts(json.value(QLatin1String("languages")));
    lists.keyboards = texts(json.value(QLatin1String("keyboards")));
    for (const QJsonValue key : json.value(QLatin1String("keys")).toArray())
        lists.keys += key.toInt();
    for (const QJsonValue row : json.value(QLatin1String("table")).toArray())
        lists.table += texts(row);
    lists.log = QString::fromUtf8(log).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return lists;
}

template <typename List> QSet<typename List::value_type> distinct(const List &list)
{
    return QSet<typename List::value_type>(list.begin(), list.end());
}

QList<XkbLayout> twoLayouts()
{
    return {{"de", "German", {{"nodeadkeys", "German (no dead keys)"}}}, {"us", "English (US)", {}}};
}

// Messages that the library logs within the test's own process.
QStringList *capturedMessages = nullptr;

void captureMessage(QtMsgType, const QMessageLogContext &, const QString &message)
{
    capturedMessages->append(message);
}

} // namespace

class LocaleLanguagesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_home.isValid());
        qputenv("XDG_CACHE_HOME", QFile::encodeName(m_home.filePath(QStringLiteral("own"))));
    }

    void init() { QLocale::setDefault(QLocale::system()); }

    void listsFitTogetherInEachLanguage_data()
    {
        QTest::addColumn<QString>("code");
        for (const QString &code : allCodes())
            QTest::newRow(qPrintable(code)) << code;
    }

    void listsFitTogetherInEachLanguage()
    {
        QFETCH(QString, code);
        const QString language = code.left(3) + code.mid(3).toUpper() + QStringLiteral(".UTF-8");
        const Lists lists = listsIn({{QStringLiteral("LANG"), language}});

        QCOMPARE(lists.currentCode, code);
        QCOMPARE(lists.codes, allCodes());
        QVERIFY(lists.codes.size() >= 25);
        QCOMPARE(lists.languages.size(), lists.codes.size());
        QCOMPARE(distinct(lists.languages).size(), lists.languages.size());
        QVERIFY(!lists.languages.contains(QString()));
        for (const QString &name : lists.languages)
            QVERIFY2(!name.at(0).isLower(), qPrintable(name));

        QVERIFY2(lists.keyboards.size() > 500, qPrintable(QString::number(lists.keyboards.size())));
        QCOMPARE(distinct(lists.keyboards).size(), lists.keyboards.size());
        QVERIFY(!lists.keyboards.contains(QString()));
        QCOMPARE(lists.table.size(), lists.keyboards.size());
        QCOMPARE(distinct(lists.table).size(), lists.table.size());
        QCOMPARE(lists.keys.size(), lists.keyboards.size());
        for (int i = 0; i < lists.keys.size(); ++i)
            QCOMPARE(lists.keys.at(i), i);
        QVERIFY(lists.position("de", "") >= 0);
        QCOMPARE(lists.table.at(lists.position("de", "nodeadkeys")),
                 QStringList({QStringLiteral("de"), QStringLiteral("de"), QStringLiteral("nodeadkeys"),
                              QStringLiteral("German (no dead keys)")}));
        QCOMPARE(lists.log, QStringList());
    }

    void namesAreThoseOfTheLanguage_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("currentCode");
        QTest::addColumn<QString>("german");
        QTest::addColumn<QString>("brazilian");
        QTest::addColumn<QString>("traditionalChinese");
        QTest::addColumn<QString>("germanKeyboard");
        const auto row = [](const char *language, const char *code, const char *german, const char *brazilian,
                            const char *chinese, const char *keyboard) {
            QTest::newRow(language) << QString::fromUtf8(language) << QString::fromUtf8(code)
                                    << QString::fromUtf8(german) << QString::fromUtf8(brazilian)
                                    << QString::fromUtf8(chinese) << QString::fromUtf8(keyboard);
        };
        row("en_US.UTF-8", "en_us", "German (Germany)", "Portuguese (Brazil)",
            "Chinese (Traditional, Taiwan)", "German (no dead keys)");
        row("de_DE.UTF-8", "de_de", "Deutsch (Deutschland)", "Portugiesisch (Brasilien)",
            "Chinesisch (Traditionell, Taiwan)", "Deutsch (ohne Akzenttasten)");
        row("fr_FR.UTF-8", "fr_fr", "Allemand (Allemagne)", "Portugais (Brésil)",
            "Chinois (traditionnel, Taïwan)", "Allemand (sans touche morte)");
        row("cs_CZ.UTF-8", "cs_cz", "Němčina (Německo)", "Portugalština (Brazílie)",
            "Čínština (tradiční, Tchaj-wan)", "Německé (bez mrtvých kláves)");
        row("ja_JP.UTF-8", "ja_jp", "ドイツ語 (ドイツ)", "ポルトガル語 (ブラジル)", "中国語 (繁体字、台湾)",
            "German (no dead keys)");
        row("ar_SA.UTF-8", "ar_sa", "الألمانية (ألمانيا)", "البرتغالية (البرازيل)",
            "الصينية (التقليدية، تايوان)", "الألمانية (بدون مفاتيح ميتة)");
        row("pt_BR.UTF-8", "pt_br", "Alemão (Alemanha)", "Português (Brasil)", "Chinês (tradicional, Taiwan)",
            "Alemão (sem teclas mortas)");
        row("zh_CN.UTF-8", "zh_cn", "德语（德国）", "葡萄牙语（巴西）", "中文（繁体，台湾）",
            "德语（无死键）");
    }

    void namesAreThoseOfTheLanguage()
    {
        QFETCH(QString, language);
        const Lists lists = listsIn({{QStringLiteral("LANG"), language}});
        QTEST(lists.currentCode, "currentCode");
        QTEST(lists.language("de_de"), "german");
        QTEST(lists.language("pt_br"), "brazilian");
        QTEST(lists.language("zh_tw"), "traditionalChinese");
        QTEST(lists.keyboard("de", "nodeadkeys"), "germanKeyboard");
    }

    void keyboardsStandInAlphabeticalOrder()
    {
        const Lists lists = listsIn({{QStringLiteral("LANG"), QStringLiteral("cs_CZ.UTF-8")}});
        const QStringList samples{
            QStringLiteral("Albánské"), QStringLiteral("České"), QStringLiteral("Dánské"),
            QStringLiteral("Německé"),  QStringLiteral("Řecké"), QStringLiteral("Vietnamské"),
        };
        int last = -1;
        for (const QString &sample : samples) {
            const int position = lists.keyboards.indexOf(sample);
            QVERIFY2(position > last, qPrintable(sample));
            last = position;
        }
    }

    void languageIsTheOneThatQtTranslatesTo_data()
    {
        QTest::addColumn<QString>("environment");
        QTest::addColumn<QString>("currentCode");
        const auto row = [](const char *environment, const char *code) {
            QTest::newRow(environment) << QString::fromLatin1(environment) << QString::fromLatin1(code);
        };
        row("", "en_us");
        row("LANG=C", "en_us");
        row("LANG=C.UTF-8", "en_us");
        row("LANG=de_DE.UTF-8", "de_de");
        row("LANG=de_AT", "de_de");
        row("LANG=de_DE LC_MESSAGES=fr_FR", "fr_fr");
        row("LANG=de_DE LC_MESSAGES=fr_FR LC_ALL=it_IT", "it_it");
        row("LANG=de_DE LC_ALL=C.UTF-8", "en_us");
        row("LANG=de_DE LANGUAGE=ja_JP", "ja_jp");
        row("LANG=C.UTF-8 LANGUAGE=is:pt_PT:de", "pt_pt");
        row("LANG=nn_NO.UTF-8", "nb_no");
        row("LANG=zh_HK.UTF-8", "zh_tw");
        row("LANG=zh_SG.UTF-8", "zh_cn");
        row("LANG=is_IS.UTF-8", "en_us");
        row("LANG=rubbish/../..", "en_us");
    }

    void languageIsTheOneThatQtTranslatesTo()
    {
        QFETCH(QString, environment);
        Environment variables;
        for (const QString &variable : environment.split(QLatin1Char(' '), Qt::SkipEmptyParts))
            variables.insert(variable.section(QLatin1Char('='), 0, 0), variable.section(QLatin1Char('='), 1));
        QTEST(listsIn(variables).currentCode, "currentCode");
    }

    void everyLayoutCompiles()
    {
        const ZBLocaleLanguages languages(nullptr);
        const std::unique_ptr<xkb_context, void (*)(xkb_context *)> context(
            xkb_context_new(XKB_CONTEXT_NO_FLAGS), &xkb_context_unref);
        QVERIFY(context);
        QStringList broken;
        const auto table = languages.getKeyboardLayoutInfo();
        QVERIFY(table.size() > 500);
        for (const ZBLocaleLanguages::ZBKeyboardInfo &info : table) {
            const QByteArray layout = info.layout.toUtf8();
            const QByteArray variant = info.variant.toUtf8();
            const xkb_rule_names names{"evdev", "pc105", layout.constData(), variant.constData(), ""};
            xkb_keymap *keymap =
                xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
            if (!keymap || xkb_keymap_num_layouts(keymap) != 1)
                broken += info.layout + QLatin1Char('(') + info.variant + QLatin1Char(')');
            xkb_keymap_unref(keymap);
        }
        QCOMPARE(broken, QStringList());
    }

    void placeHolderLayoutIsNotOffered() { QCOMPARE(listsIn({}).position("custom", ""), -1); }

    void indexOutsideTheListIsEmpty_data()
    {
        QTest::addColumn<int>("index");
        QTest::newRow("before") << -1;
        QTest::newRow("behind") << allCodes().size();
        QTest::newRow("huge") << std::numeric_limits<int>::max();
        QTest::newRow("lowest") << std::numeric_limits<int>::min();
    }

    void indexOutsideTheListIsEmpty()
    {
        QFETCH(int, index);
        const ZBLocaleLanguages languages(nullptr);
        QCOMPARE(languages.getLanguageCode(index), QString());
        const auto table = languages.getKeyboardLayoutInfo();
        const ZBLocaleLanguages::ZBKeyboardInfo info =
            table.value(index == allCodes().size() ? table.size() : index);
        QCOMPARE(info.layout + info.variant, QString());
    }

    void listsStayWhileTheObjectLives()
    {
        QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
        const ZBLocaleLanguages german(nullptr);
        const QStringList languages = german.getTrLanguageNamesList();
        QCOMPARE(languages.at(4), QStringLiteral("Deutsch (Deutschland)"));

        QLocale::setDefault(QLocale(QStringLiteral("fr_FR")));
        const ZBLocaleLanguages french(nullptr);
        QCOMPARE(french.getTrLanguageNamesList().at(4), QStringLiteral("Allemand (Allemagne)"));
        QCOMPARE(french.getLanguageCode(french.getCurrentLanguageId()), QStringLiteral("fr_fr"));
        const QStringList frenchKeyboards = french.getTranslatedKeyboardLayoutList();

        // Asked for only now, and yet of the object's own language.
        const QStringList keyboards = german.getTranslatedKeyboardLayoutList();
        QVERIFY(keyboards.contains(QStringLiteral("Deutsch (ohne Akzenttasten)")));
        QVERIFY(frenchKeyboards.contains(QStringLiteral("Allemand (sans touche morte)")));
        QCOMPARE(german.getTrLanguageNamesList(), languages);
        QCOMPARE(german.getLanguageCode(german.getCurrentLanguageId()), QStringLiteral("de_de"));
        const int position = keyboards.indexOf(QStringLiteral("Deutsch (ohne Akzenttasten)"));
        QCOMPARE(german.getKeyboardLayoutInfo().value(position).variant, QStringLiteral("nodeadkeys"));
    }

    void objectsOfOneLanguageShareTheirLists()
    {
        const ZBLocaleLanguages first(nullptr);
        const ZBLocaleLanguages second(nullptr);
        QVERIFY(first.getTrLanguageNamesList().isSharedWith(second.getTrLanguageNamesList()));
        QVERIFY(
            first.getTranslatedKeyboardLayoutList().isSharedWith(second.getTranslatedKeyboardLayoutList()));
        QVERIFY(first.getKeyboardLayoutInfo().isSharedWith(second.getKeyboardLayoutInfo()));
    }

    void parentOwnsTheObject()
    {
        auto parent = std::make_unique<QObject>();
        const QPointer<ZBLocaleLanguages> languages(new ZBLocaleLanguages(parent.get()));
        parent.reset();
        QVERIFY(languages.isNull());
    }

    void nothingIsReadBeforeAListIsAskedFor()
    {
        QStringList messages;
        capturedMessages = &messages;
        const QtMessageHandler earlier = qInstallMessageHandler(captureMessage);
        qputenv("XKB_CONFIG_ROOT", "/no/such/folder");
        QLocale::setDefault(QLocale(QStringLiteral("fi_FI")));

        const ZBLocaleLanguages languages(nullptr);
        languages.getTrLanguageNamesList();
        const QStringList beforeKeyboards = messages;
        languages.getTranslatedKeyboardLayoutList();
        languages.getKeyboardLayoutInfo();
        ZBLocaleLanguages(nullptr).getTranslatedKeyboardLayoutList();

        qunsetenv("XKB_CONFIG_ROOT");
        qInstallMessageHandler(earlier);
        QCOMPARE(beforeKeyboards, QStringList());
        QCOMPARE(messages,
                 QStringList(QStringLiteral("No keyboard layouts in /etc/xkb and /no/such/folder: "
                                            "offering \"us\" only")));
    }

    void withoutLayoutsThereIsUs_data()
    {
        QTest::addColumn<QByteArray>("registry");
        QTest::addColumn<bool>("withSymbols");
        QTest::newRow("empty file") << QByteArray() << true;
        QTest::newRow("rubbish") << QByteArray("\x7f"
                                               "ELF rubbish <")
                                 << true;
        QTest::newRow("cut") << QByteArray("<?xml version=\"1.0\"?><xkbConfigRegistry><layoutList><lay")
                             << true;
        QTest::newRow("zeros") << QByteArray(10000, '\0') << true;
        QTest::newRow("no symbols") << QByteArray() << false;
    }

    void withoutLayoutsThereIsUs()
    {
        QFETCH(QByteArray, registry);
        QFETCH(bool, withSymbols);
        const XkbFolder folder(twoLayouts());
        if (withSymbols) {
            folder.setRegistry(registry);
        } else {
            folder.removeSymbols("de");
            folder.removeSymbols("us");
        }
        verifyOnlyUs(QString::fromUtf8(folder.path()));
    }

    void withoutXkbDataThereIsUs()
    {
        const QTemporaryDir empty;
        verifyOnlyUs(QStringLiteral("/no/such/folder"));
        verifyOnlyUs(empty.path());
        verifyOnlyUs(QStringLiteral("/etc/passwd"));
        QVERIFY(QDir(empty.path()).mkpath(QStringLiteral("rules/evdev.xml")));
        verifyOnlyUs(empty.path());
    }

    void unreadableCatalogueLeavesEnglishLayoutNames_data()
    {
        QTest::addColumn<QByteArray>("catalogue");
        QTest::addColumn<bool>("isThere");
        QTest::newRow("absent") << QByteArray() << false;
        QTest::newRow("empty") << QByteArray() << true;
        QTest::newRow("text") << QByteArray("no catalogue\n") << true;
        QTest::newRow("cut") << installedCatalogueBytes().left(5000) << true;
        QTest::newRow("zeros") << QByteArray(5000, '\0') << true;
    }

    void unreadableCatalogueLeavesEnglishLayoutNames()
    {
        QFETCH(QByteArray, catalogue);
        QFETCH(bool, isThere);
        const QTemporaryDir data;
        const QString folder = data.filePath(QStringLiteral("locale/de/LC_MESSAGES"));
        QVERIFY(QDir().mkpath(folder));
        if (isThere) {
            QFile file(folder + QStringLiteral("/xkeyboard-config.mo"));
            QVERIFY(file.open(QIODevice::WriteOnly));
            QCOMPARE(file.write(catalogue), qint64(catalogue.size()));
        }
        const Lists lists = listsIn({{QStringLiteral("LANG"), QStringLiteral("de_DE.UTF-8")},
                                     {QStringLiteral("XDG_DATA_DIRS"), data.path()}});
        QCOMPARE(lists.keyboard("de", "nodeadkeys"), QStringLiteral("German (no dead keys)"));
        QCOMPARE(lists.language("de_de"), QStringLiteral("Deutsch (Deutschland)"));
        QVERIFY(lists.keyboards.size() > 500);
        QCOMPARE(lists.log, QStringList());
    }

    void folderInPlaceOfTheCatalogueLeavesEnglishLayoutNames()
    {
        const QTemporaryDir data;
        QVERIFY(QDir().mkpath(data.filePath(QStringLiteral("locale/de/LC_MESSAGES/xkeyboard-config.mo"))));
        const Lists lists = listsIn({{QStringLiteral("LANG"), QStringLiteral("de_DE.UTF-8")},
                                     {QStringLiteral("XDG_DATA_DIRS"), data.path()}});
        QCOMPARE(lists.keyboard("de", "nodeadkeys"), QStringLiteral("German (no dead keys)"));
    }

    void layoutsOfTheMachineAreAdded()
    {
        const XkbFolder extra({{"label", "Label printer", {{"wide", "Label printer (wide)"}}}});
        const Lists lists =
            listsIn({{QStringLiteral("XKB_CONFIG_EXTRA_PATH"), QString::fromUtf8(extra.path())}});
        QCOMPARE(lists.keyboard("label", "wide"), QStringLiteral("Label printer (wide)"));
        QVERIFY(lists.position("de", "") >= 0);
    }

    void registryOfTheMachineMayRepeatTheSystems()
    {
        const Lists lists = listsIn({});
        const Lists repeated =
            listsIn({{QStringLiteral("XKB_CONFIG_EXTRA_PATH"), QStringLiteral("/usr/share/X11/xkb")}});
        QVERIFY(lists.keyboards.size() > 500);
        QCOMPARE(repeated.keyboards, lists.keyboards);
        QCOMPARE(repeated.table, lists.table);
    }

    void layoutsOfOneUserAreNotOffered()
    {
        const XkbFolder own({{"mine", "My own", {}}});
        const QTemporaryDir configuration;
        QVERIFY(QFile::link(QString::fromUtf8(own.path()), configuration.filePath(QStringLiteral("xkb"))));
        const Lists lists = listsIn({{QStringLiteral("XDG_CONFIG_HOME"), configuration.path()}});
        QCOMPARE(lists.position("mine", ""), -1);
        QVERIFY(lists.position("de", "") >= 0);
    }

    void keptListIsTheSameAsAFreshOne()
    {
        const Environment german{{QStringLiteral("LANG"), QStringLiteral("de_DE.UTF-8")}};
        const Lists fresh = listsIn(german);
        const Lists kept = listsIn(german, Cache::Keep);
        QCOMPARE(kept.keyboards, fresh.keyboards);
        QCOMPARE(kept.table, fresh.table);
        QCOMPARE(kept.keys, fresh.keys);
    }

    void keptListIsUsed()
    {
        // The one way to tell: a name that only the file holds.
        listsIn({});
        QFile file(cachePath());
        QVERIFY(file.open(QIODevice::ReadWrite));
        QByteArray bytes = file.readAll();
        QVERIFY(bytes.contains("Albanian (Plisi)"));
        QVERIFY(file.seek(0));
        QCOMPARE(file.write(bytes.replace("Albanian (Plisi)", "Albanian (Kept!)")), file.size());
        file.close();
        QCOMPARE(listsIn({}, Cache::Keep).keyboard("al", "plisi"), QStringLiteral("Albanian (Kept!)"));
    }

    void keptListGivesWayToWhatIsInstalled()
    {
        const XkbFolder folder(twoLayouts());
        folder.addSymbols("fr");
        const Environment environment{{QStringLiteral("XKB_CONFIG_ROOT"), QString::fromUtf8(folder.path())}};
        QCOMPARE(listsIn(environment).keyboards.size(), 3);

        QList<XkbLayout> more = twoLayouts();
        more.append({"fr", "French", {}});
        folder.setLayouts(more);
        QCOMPARE(listsIn(environment, Cache::Keep).keyboards.size(), 4);
        more.append({"nl", "Dutch", {}});
        folder.setLayouts(more);
        QCOMPARE(listsIn(environment, Cache::Keep).keyboards.size(), 4);
        folder.addSymbols("nl");
        QCOMPARE(listsIn(environment, Cache::Keep).keyboards.size(), 5);

        Environment german = environment;
        german.insert(QStringLiteral("LANG"), QStringLiteral("de_DE.UTF-8"));
        QCOMPARE(listsIn(german, Cache::Keep).keyboard("de", ""), QStringLiteral("Deutsch"));
        QCOMPARE(listsIn(environment, Cache::Keep).keyboard("de", ""), QStringLiteral("German"));
    }

    void keptListGivesWayToAnotherLanguageAlsoWithoutCatalogues()
    {
        const XkbFolder folder({{"at", "Österreich", {}}, {"zu", "Zulu", {}}});
        Environment environment{{QStringLiteral("XKB_CONFIG_ROOT"), QString::fromUtf8(folder.path())},
                                {QStringLiteral("XDG_DATA_DIRS"), QStringLiteral("/no/such/folder")},
                                {QStringLiteral("LANG"), QStringLiteral("de_DE.UTF-8")}};
        QCOMPARE(listsIn(environment).position("zu", ""), 1);
        environment.insert(QStringLiteral("LANG"), QStringLiteral("sv_SE.UTF-8"));
        QCOMPARE(listsIn(environment, Cache::Keep).position("zu", ""), 0);
    }

    void damagedCacheIsNotBelieved_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<bool>("zeros");
        for (const int size : {0, 1, 100, 300, 10000}) {
            QTest::addRow("cut at %d", size) << size << false;
            QTest::addRow("zeros from %d", size) << size << true;
        }
    }

    void damagedCacheIsNotBelieved()
    {
        QFETCH(int, size);
        QFETCH(bool, zeros);
        const Lists fresh = listsIn({});
        const qint64 whole = QFileInfo(cachePath()).size();
        QVERIFY(whole > 10000);
        QVERIFY(QFile::resize(cachePath(), size));
        if (zeros)
            QVERIFY(QFile::resize(cachePath(), whole));
        const Lists lists = listsIn({}, Cache::Keep);
        QCOMPARE(lists.keyboards, fresh.keyboards);
        QCOMPARE(lists.table, fresh.table);
        QCOMPARE(QFileInfo(cachePath()).size(), whole);
    }

private:
    enum class Cache { Fresh, Keep };

    QString cacheFolder() const { return m_home.filePath(QStringLiteral("cache")); }

    QString cachePath() const
    {
        return cacheFolder() + QStringLiteral("/Corvanta/ZBLocaleLanguages/keyboard-layouts");
    }

    // The lists in a process with this environment and no other word about languages or XKB.
    Lists listsIn(const Environment &variables, Cache cache = Cache::Fresh)
    {
        if (cache == Cache::Fresh)
            QDir(cacheFolder()).removeRecursively();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"LANG", "LANGUAGE", "LC_ALL", "LC_MESSAGES", "XKB_CONFIG_ROOT",
                                 "XKB_CONFIG_EXTRA_PATH", "XDG_DATA_DIRS"})
            environment.remove(QLatin1String(name));
        environment.insert(QStringLiteral("XDG_CACHE_HOME"), cacheFolder());
        for (auto variable = variables.begin(); variable != variables.end(); ++variable)
            environment.insert(variable.key(), variable.value());

        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(ZB_LOCALE_LISTS), QStringList());
        if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit
            || process.exitCode() != 0)
            qWarning("zblocalelists failed: %s", process.readAllStandardError().constData());
        return parsed(process.readAllStandardOutput(), process.readAllStandardError());
    }

    void verifyOnlyUs(const QString &folder)
    {
        const Lists lists = listsIn({{QStringLiteral("XKB_CONFIG_ROOT"), folder},
                                     {QStringLiteral("LANG"), QStringLiteral("de_DE.UTF-8")}});
        QCOMPARE(lists.keyboards, QStringList(QStringLiteral("English (USA)")));
        QCOMPARE(lists.table,
                 QList<QStringList>({{QStringLiteral("en"), QStringLiteral("us"), QString(),
                                      QStringLiteral("English (US)")}}));
        QCOMPARE(lists.keys, QList<int>({0}));
        QCOMPARE(lists.languages.size(), 36);
        QCOMPARE(
            lists.log,
            QStringList(
                QStringLiteral("No keyboard layouts in /etc/xkb and %1: offering \"us\" only").arg(folder)));
        QVERIFY(!QFile::exists(cachePath()));
    }

    static QByteArray installedCatalogueBytes()
    {
        QFile file(QStringLiteral("/usr/share/locale/de/LC_MESSAGES/xkeyboard-config.mo"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir m_home;
};

QTEST_GUILESS_MAIN(LocaleLanguagesTest)
#include "tst_localelanguages.moc"
