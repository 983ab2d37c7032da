// Any text becomes a safe file name that is none of the folder's own.
#include "presetfilename.h"

#include <QtTest/QtTest>

class TestPresetFileName : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anyTextBecomesASafeName_data();
    void anyTextBecomesASafeName();
    void aNumberTellsEqualNamesApart();
    void aNameFitsWhereverItsCutFalls();
    void theFoldersOwnFilesAreNoPresets_data();
    void theFoldersOwnFilesAreNoPresets();
};

void TestPresetFileName::anyTextBecomesASafeName_data()
{
    QTest::addColumn<QString>("wish");
    QTest::addColumn<QString>("fileName");

    const auto row = [](const char *title, const char *wish, const char *fileName) {
        QTest::newRow(title) << QString::fromUtf8(wish) << QString::fromUtf8(fileName);
    };
    row("plain", "Shoes_p", "Shoes_p");
    row("blank", "Winter shoes_p", "Winter%20shoes_p");
    row("only blanks", "   _p", "%20%20%20_p");
    row("empty name", "_p", "_p");
    row("empty", "", "preset");
    row("path", "../../etc/passwd_p", "%2E%2E%2F%2E%2E%2Fetc%2Fpasswd_p");
    row("dot", ".", "%2E");
    row("two dots", "..", "%2E%2E");
    row("hidden", ".profile_p", "%2Eprofile_p");
    row("list file", "BrackenXL.list", "BrackenXL%2Elist");
    row("unfinished file", "presets.new", "presets%2Enew");
    row("set aside", "Shoes_p.damaged", "Shoes_p%2Edamaged");
    row("home", "~", "%7E");
    row("option of a command", "-rf", "-rf");
    row("shell", "$(reboot)_p", "%24%28reboot%29_p");
    row("percent", "100%_p", "100%25_p");
    row("umlaut", "Größe_p", "Gr%C3%B6%C3%9Fe_p");
    row("emoji", "\xF0\x9F\x91\x9F_p", "%F0%9F%91%9F_p");
    row("line end", "a\nb_p", "a%0Ab_p");
    QTest::newRow("NUL") << QString(QChar(0)) << QStringLiteral("%00");
    QTest::newRow("half of an emoji") << QString(QChar(0xd83d)) << QStringLiteral("%3F");
    QTest::newRow("300 letters") << QString(300, QLatin1Char('x')) << QString(120, QLatin1Char('x'));
    QTest::newRow("300 blanks") << QString(300, QLatin1Char(' ')) << QStringLiteral("%20").repeated(40);
}

void TestPresetFileName::anyTextBecomesASafeName()
{
    QFETCH(QString, wish);
    QFETCH(QString, fileName);
    QCOMPARE(presetFileName(wish), fileName);
    QVERIFY(mayBePresetFile(presetFileName(wish)));
}

void TestPresetFileName::aNumberTellsEqualNamesApart()
{
    QCOMPARE(presetFileName(QStringLiteral("Shoes_p"), 1), QStringLiteral("Shoes_p"));
    QCOMPARE(presetFileName(QStringLiteral("Shoes_p"), 2), QStringLiteral("Shoes_p-2"));
    QCOMPARE(damagedFileName(QStringLiteral("Shoes_p")), QStringLiteral("Shoes_p.damaged"));
    QCOMPARE(damagedFileName(QStringLiteral("Shoes_p"), 2), QStringLiteral("Shoes_p.2.damaged"));
    QCOMPARE(presetOrderFileName(QStringLiteral("BrackenXL")), QStringLiteral("BrackenXL.list"));
}

void TestPresetFileName::aNameFitsWhereverItsCutFalls()
{
    for (int letters = 110; letters < 125; ++letters) {
        const QString name =
            presetFileName(QString(letters, QLatin1Char('x')) + QString(9, QLatin1Char('/')));
        QVERIFY2(name.size() > 117 && name.size() <= 120, qPrintable(name));
        QString rest = name;
        rest.remove(QLatin1Char('x')).remove(QStringLiteral("%2F"));
        QCOMPARE(rest, QString());
    }
}

void TestPresetFileName::theFoldersOwnFilesAreNoPresets_data()
{
    QTest::addColumn<bool>("mayBe");
    QTest::newRow("Shoes_p") << true;
    QTest::newRow("copy of shoes.txt") << true;
    QTest::newRow("BrackenXL.list") << false;
    QTest::newRow("OtherModel.list") << false;
    QTest::newRow("presets.new") << false;
    QTest::newRow("Shoes_p.damaged") << false;
    QTest::newRow("Shoes_p.2.damaged") << false;
    QTest::newRow("Shoes_p~") << false;
    QTest::newRow(".Shoes_p.swp") << false;
    QTest::newRow("#Shoes_p#") << false;
}

void TestPresetFileName::theFoldersOwnFilesAreNoPresets()
{
    QFETCH(bool, mayBe);
    QCOMPARE(mayBePresetFile(QString::fromLatin1(QTest::currentDataTag())), mayBe);
}

QTEST_GUILESS_MAIN(TestPresetFileName)
#include "tst_presetfilename.moc"
