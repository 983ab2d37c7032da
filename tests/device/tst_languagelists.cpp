// The language and keyboard lists are passed on as the locale library gives them.
#include "emissionrecorder.h"
#include "messagelog.h"
#include "scriptedlocale.h"
#include "settingsfile.h"
#include "zbsettingsmain.h"

#include <QtTest/QtTest>

#include <limits>

using ScriptedLocale::script;

class TestLanguageLists : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void languageCodeIsTextInAVariant_data();
    void languageCodeIsTextInAVariant();
    void languageIndexIsTheCurrentLanguage_data();
    void languageIndexIsTheCurrentLanguage();
    void listsAreNeitherSortedNorFiltered();
    void nothingIsCachedButTheProperties();
    void layoutTableIsNotAskedForByTheLists();
    void nothingIsStoredEmittedOrLogged();
};

void TestLanguageLists::init()
{
    SettingsFile::removeAll();
    script() = {};
}

void TestLanguageLists::cleanup()
{
    SettingsFile::removeAll();
}

void TestLanguageLists::languageCodeIsTextInAVariant_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("code");
    QTest::newRow("first") << 0 << QStringLiteral("en_us");
    QTest::newRow("last") << 1 << QStringLiteral("DE de");
    QTest::newRow("behind the list") << 2 << QString();
    QTest::newRow("negative") << -1 << QString();
    QTest::newRow("largest") << std::numeric_limits<int>::max() << QString();
    QTest::newRow("smallest") << std::numeric_limits<int>::min() << QString();
}

void TestLanguageLists::languageCodeIsTextInAVariant()
{
    QFETCH(int, index);
    QFETCH(QString, code);
    script().codes = QStringList{QStringLiteral("en_us"), QStringLiteral("DE de")};
    ZBSettingsMain settings(nullptr, false);
    script().questions.clear();
    const QVariant answer = settings.getLanguageCode(index);
    QCOMPARE(answer.userType(), int(QMetaType::QString));
    QCOMPARE(answer.toString(), code);
    QCOMPARE(script().questions, QStringList{QStringLiteral("getLanguageCode %1").arg(index)});
}

void TestLanguageLists::languageIndexIsTheCurrentLanguage_data()
{
    QTest::addColumn<int>("index");
    for (const int index : {0, 3, -1, std::numeric_limits<int>::max()})
        QTest::addRow("%d", index) << index;
}

void TestLanguageLists::languageIndexIsTheCurrentLanguage()
{
    QFETCH(int, index);
    ZBSettingsMain settings(nullptr, false);
    script().questions.clear();
    script().currentLanguage = index;
    QCOMPARE(settings.getLanguageIndex(), index);
    QCOMPARE(script().questions, QStringList{QStringLiteral("getCurrentLanguageId")});
}

void TestLanguageLists::listsAreNeitherSortedNorFiltered()
{
    const QStringList languages{QStringLiteral("b"), QStringLiteral("a"), QString(), QStringLiteral("b"),
                                QStringLiteral(" 日 ")};
    const QStringList layouts{QStringLiteral("2"), QStringLiteral("10"), QStringLiteral("2"), QString()};
    script().languages = languages;
    script().layoutNames = layouts;
    ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.getLanguageComboBoxModel(), languages);
    QCOMPARE(settings.getKeyboardLanguageComboBoxModel(), layouts);
    QCOMPARE(settings.property("languagesComboBoxModel"), QVariant(languages));
    QCOMPARE(settings.property("keyboardLanguagesComboBoxModel"), QVariant(layouts));
}

void TestLanguageLists::nothingIsCachedButTheProperties()
{
    script().languages = QStringList{QStringLiteral("old")};
    script().layoutNames = QStringList{QStringLiteral("old layout")};
    ZBSettingsMain settings(nullptr, false);
    script().questions.clear();
    script().languages = QStringList{QStringLiteral("new")};
    script().layoutNames = QStringList{QStringLiteral("new layout")};
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(settings.getLanguageComboBoxModel(), QStringList{QStringLiteral("new")});
        QCOMPARE(settings.getKeyboardLanguageComboBoxModel(), QStringList{QStringLiteral("new layout")});
        QCOMPARE(settings.languagesComboBoxModel(), QStringList{QStringLiteral("old")});
        QCOMPARE(settings.keyboardLanguagesComboBoxModel(), QStringList{QStringLiteral("old layout")});
    }
    QCOMPARE(script().questions,
             QStringList({QStringLiteral("getTrLanguageNamesList"),
                          QStringLiteral("getTranslatedKeyboardLayoutList"),
                          QStringLiteral("getTrLanguageNamesList"),
                          QStringLiteral("getTranslatedKeyboardLayoutList")}));
}

// The layouts are many; a page that only shows their names does not pay for the table.
void TestLanguageLists::layoutTableIsNotAskedForByTheLists()
{
    ZBSettingsMain settings(nullptr, false);
    settings.getLanguageComboBoxModel();
    settings.getKeyboardLanguageComboBoxModel();
    QVERIFY(!script().questions.contains(QStringLiteral("getKeyboardLayoutInfo")));
}

void TestLanguageLists::nothingIsStoredEmittedOrLogged()
{
    ZBSettingsMain settings(nullptr, false);
    const MessageLog log;
    const EmissionRecorder recorder(&settings);
    settings.getLanguageCode(0);
    settings.getLanguageIndex();
    settings.getLanguageComboBoxModel();
    settings.getKeyboardLanguageComboBoxModel();
    QCOMPARE(log.texts(), QStringList());
    QCOMPARE(recorder.names(), QStringList());
    QVERIFY(!SettingsFile::exists());
}

QTEST_GUILESS_MAIN(TestLanguageLists)
#include "tst_languagelists.moc"
