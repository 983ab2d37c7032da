// The language table, which row fits the process, and the rows' names.
#include "languages.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QSet>
#include <QtTest/QtTest>

class LanguagesTest : public QObject
{
    Q_OBJECT

private slots:
    void codesAreThoseOfTheSettingsFile()
    {
        const QRegularExpression form(QStringLiteral("^[a-z]{2,3}_[a-z]{2}$"));
        QSet<QString> codes;
        for (const auto &language : languageTable()) {
            QVERIFY2(form.match(language.code).hasMatch(), qPrintable(language.code));
            codes.insert(language.code);
        }
        QCOMPARE(codes.size(), languageTable().size());
        QVERIFY2(codes.size() >= 25, qPrintable(QString::number(codes.size())));
    }

    void bestRowIsFound_data()
    {
        QTest::addColumn<QStringList>("uiLanguages");
        QTest::addColumn<QString>("code");
        const auto row = [](const char *uiLanguages, const char *code) {
            QTest::newRow(uiLanguages)
                << QString::fromLatin1(uiLanguages).split(QLatin1Char(' '), Qt::SkipEmptyParts)
                << QString::fromLatin1(code);
        };
        row("de-DE", "de_de");
        row("de", "de_de");
        row("de-AT", "de_de");
        row("en-GB", "en_gb");
        row("en-AU", "en_us");
        row("pt", "pt_br");
        row("pt-PT", "pt_pt");
        row("pt-AO", "pt_br");
        row("fr-CA", "fr_ca");
        row("fr-CH", "fr_fr");
        row("es-AR", "es_es");
        row("no-NO", "nb_no");
        row("nn-NO", "nb_no");
        row("nn", "nb_no");
        row("nn-NO nn de-DE", "nb_no");
        row("de-DE nn-NO", "de_de");
        row("iw-IL", "he_il");
        row("zh", "zh_cn");
        row("zh-CN", "zh_cn");
        row("zh-SG", "zh_cn");
        row("zh-TW", "zh_tw");
        row("zh-HK", "zh_tw");
        row("zh-Hant", "zh_tw");
        row("is-IS de-DE", "de_de");
        row("is-IS", "en_us");
        row("C", "en_us");
        row("C fr-FR", "fr_fr");
        row("", "en_us");
        row("xx-YY rubbish/../.. ;%s", "en_us");
    }

    void bestRowIsFound()
    {
        QFETCH(QStringList, uiLanguages);
        QFETCH(QString, code);
        QCOMPARE(languageTable().at(languagePosition(uiLanguages)).code, code);
    }

    void onlyTheFirstLetterIsACapital_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("german");
        QTest::addColumn<QString>("english");
        const auto row = [](const char *locale, const char *german, const char *english) {
            QTest::newRow(locale) << QString::fromLatin1(locale) << QString::fromUtf8(german)
                                  << QString::fromUtf8(english);
        };
        row("bg_BG", "Немски (Германия)", "Английски (Съединени щати)");
        row("hu_HU", "Német (Németország)", "Angol (Egyesült Államok)");
        row("nb_NO", "Tysk (Tyskland)", "Engelsk (USA)");
        row("pl_PL", "Niemiecki (Niemcy)", "Angielski (Stany Zjednoczone)");
        row("ro_RO", "Germană (Germania)", "Engleză (Statele Unite ale Americii)");
        row("sl_SI", "Nemščina (Nemčija)", "Angleščina (Združene države Amerike)");
        row("fr_FR", "Allemand (Allemagne)", "Anglais (États-Unis)");
        row("tr_TR", "Almanca (Almanya)", "İngilizce (Amerika Birleşik Devletleri)");
        row("vi_VN", "Tiếng Đức (Đức)", "Tiếng Anh (Hoa Kỳ)");
        row("he_IL", "גרמנית (גרמניה)", "אנגלית (ארצות הברית)");
    }

    void onlyTheFirstLetterIsACapital()
    {
        QFETCH(QString, locale);
        const QStringList names = translatedLanguageNames(locale);
        QTEST(names.value(4), "german");
        QTEST(names.value(6), "english");
    }

    void unknownLocaleStillGivesANameForEveryRow()
    {
        for (const char *locale : {"", "xx_YY", "rubbish/../..", "C"}) {
            const QStringList names = translatedLanguageNames(QString::fromLatin1(locale));
            QCOMPARE(names.size(), languageTable().size());
            QVERIFY(!names.contains(QString()));
        }
    }

    void tableNamesAreTheEnglishOnes()
    {
        const QStringList names = translatedLanguageNames(QStringLiteral("en_US"));
        QVERIFY(names.contains(QStringLiteral("Chinese (Simplified, China)")));
        for (int i = 0; i < names.size(); ++i) {
            // ICU releases differ in the name of this one country.
            if (languageTable().at(i).code != QLatin1String("tr_tr"))
                QCOMPARE(languageTable().at(i).name, names.at(i));
        }
    }
};

QTEST_GUILESS_MAIN(LanguagesTest)
#include "tst_languages.moc"
