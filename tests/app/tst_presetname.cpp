// Which characters of a name are kept: a name that cannot be seen must not come to be, and one that can be
// seen stays as it is.
#include "presetname.h"

#include <QtTest/QtTest>

class TestPresetName : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nameIsOneLineThatCanBeSeen_data();
    void nameIsOneLineThatCanBeSeen();
    void longNameIsCutBetweenCharacters_data();
    void longNameIsCutBetweenCharacters();
};

void TestPresetName::nameIsOneLineThatCanBeSeen_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("name");
    const auto same = [](const char *row, const char *text) {
        QTest::newRow(row) << QString::fromUtf8(text) << QString::fromUtf8(text);
    };
    same("empty", "");
    same("letters", "Winter 2.5/6");
    same("two blanks between", "a  b");
    same("accents",
         "Gr\xc3\xb6\xc3\x9f"
         "e e\xcc\x81");
    same("emoji", "\xf0\x9f\x91\x9f");
    same("emoji of three, joined",
         "\xf0\x9f\x91\xa8\xe2\x80\x8d\xf0\x9f\x91\xa9\xe2\x80\x8d\xf0\x9f\x91\xa7");
    same("heart with a variation selector at the end", "\xe2\x9d\xa4\xef\xb8\x8f");
    same("Persian with a non-joiner", "\xd9\x85\xdb\x8c\xe2\x80\x8c\xd8\xae");
    same("Hangul", "\xed\x95\x9c\xea\xb8\x80");
    same("flag of Scotland, with tags",
         "\xf0\x9f\x8f\xb4\xf3\xa0\x81\xa7\xf3\xa0\x81\xa2\xf3\xa0\x81\xb3\xf3\xa0\x81\xa3\xf3\xa0\x81\xb4"
         "\xf3\xa0\x81\xbf");
    same("Arabic number sign", "\xd8\x80\xd9\xa1");
    same("Arabic mark above a number", "\xd8\x85\xd9\xa1");
    same("end of ayah", "\xd9\xa1\xdb\x9d");
    same("Syriac abbreviation", "\xdc\x8f\xdc\x90");
    same("disputed end of ayah", "\xe0\xa3\xa2");
    same("Kaithi number sign", "\xf0\x91\x82\xbd\xf0\x91\x81\xa7");
    same("Kaithi number sign above", "\xf0\x91\x83\x8d\xf0\x91\x81\xa7");

    const auto row = [](const char *name, const QString &text, const char *expected) {
        QTest::newRow(name) << text << QString::fromUtf8(expected);
    };
    row("blanks around", QStringLiteral(" \u00a0 a b \u2003"), "a b");
    row("line ends", QStringLiteral("a\r\nb\u2028c\u2029d\n"), "a b c d");
    row("C0 controls", QStringLiteral("\u0001a\u001f\tb\u007f"), "a b");
    row("C1 controls", QStringLiteral("a\u0085\u009fb"), "a b");
    row("zero-width space alone", QStringLiteral("\u200b"), "");
    row("zero-width space between", QStringLiteral("a\u200bb"), "a b");
    row("from right to left", QStringLiteral("a\u202eb\u2066"), "a b");
    row("soft hyphen", QStringLiteral("\u00ada"), "a");
    row("byte order mark", QStringLiteral("\ufeffa"), "a");
    row("tags alone", QString::fromUtf8("\xf3\xa0\x81\xa7\xf3\xa0\x81\xbf"), "");
    row("tags behind a blank", QString::fromUtf8("a \xf3\xa0\x81\xa7\xf3\xa0\x81\xbf"), "a");
    row("language tag", QString::fromUtf8("a\xf3\xa0\x80\x81"), "a");
    row("Arabic letter mark, between the visible ones", QStringLiteral("\u061c\u061c"), "");
    row("empty braille", QStringLiteral("\u2800\u2800"), "");
    row("Hangul fillers", QStringLiteral("\u3164\u115f\uffa0"), "");
    row("joiner alone", QStringLiteral("\u200d"), "");
    row("joiner at the end", QStringLiteral("a\u200d\u200c"), "a");
    row("variation selectors alone", QStringLiteral(" \ufe0f\ufe0f"), "");
    row("first half of a pair", QStringLiteral("a") + QChar(0xd83d), "a");
    row("second half of a pair", QStringLiteral("a") + QChar(0xdc5f) + QLatin1Char('b'), "a b");
    row("halves the wrong way round", QString(QChar(0xdc5f)) + QChar(0xd83d), "");
}

void TestPresetName::nameIsOneLineThatCanBeSeen()
{
    QFETCH(QString, text);
    QFETCH(QString, name);
    QCOMPARE(visibleName(text), name);
}

void TestPresetName::longNameIsCutBetweenCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    const QString shoe = QString::fromUtf8("\xf0\x9f\x91\x9f");
    const QString accent = QStringLiteral("e\u0301");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("shorter") << QStringLiteral("ab") << QStringLiteral("ab");
    QTest::newRow("just as long") << QStringLiteral("abc") << QStringLiteral("abc");
    QTest::newRow("longer") << QStringLiteral("abcd") << QStringLiteral("abc…");
    QTest::newRow("emoji, just as long") << shoe.repeated(3) << shoe.repeated(3);
    QTest::newRow("emoji, longer") << QLatin1Char('a') + shoe.repeated(3)
                                   << QLatin1Char('a') + shoe.repeated(2) + QStringLiteral("…");
    QTest::newRow("accents of their own") << accent.repeated(4) << accent.repeated(3) + QStringLiteral("…");
}

void TestPresetName::longNameIsCutBetweenCharacters()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    QCOMPARE(shortened(text, 3), shown);
}

QTEST_APPLESS_MAIN(TestPresetName)
#include "tst_presetname.moc"
