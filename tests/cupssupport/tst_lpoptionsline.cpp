// The options of a line: by a table, and as libcups itself reads them.
#include "lpoptionsline.h"

#include <QtTest/QtTest>

#include <cups/cups.h>
#include <random>

namespace {

using Pairs = QList<QPair<QByteArray, QByteArray>>;

/// What counts in the end: one value a name.
Pairs ourReading(const QByteArray &text)
{
    Pairs result;
    const QVector<LpOption> options = lpOptionsIn(text);
    for (const LpOption &option : options)
        result.append({option.name, option.value});
    return result;
}

/// Checks \a text against libcups; says how they differ, if they do.
QByteArray differenceFromCups(const QByteArray &text)
{
    const QVector<LpOption> ours = lpOptionsIn(text);
    cups_option_t *theirs = nullptr;
    const int count = cupsParseOptions(text.constData(), 0, &theirs);
    QByteArray difference;
    for (int i = 0; i < count; ++i) {
        const QByteArray name(theirs[i].name);
        const QByteArray theirValue(theirs[i].value);
        const QByteArray value = lpOptionValue(ours, name);
        if (value.isNull() || value != theirValue)
            difference += name + " is '" + theirValue + "' and not '" + value + "'; ";
    }
    for (const LpOption &option : ours) {
        if (!cupsGetOption(option.name.constData(), count, theirs))
            difference += option.name + " is not there; ";
    }
    cupsFreeOptions(count, theirs);
    return difference;
}

/// Pieces that mean something to CUPS, put together at random.
QByteArray randomLine(std::mt19937 &random)
{
    static const QList<QByteArray> pieces{
        " ",         "  ",          "\t",         "\v", "\f", "=",
        "'",         "\"",          "\\",         "{",  "}",  ",",
        "#",         "a",           "B",          "no", "no", "Feed",
        "feed",      "note",        "Feed=",      "1",  "-2", "Custom.",
        "1.5",       "=x",          "\xc3\xa4",   "\r", "\n", "key='two words'",
        "{a=1 b=2}", "c=\"q\\\"\"", "MirrorPrint"};
    std::uniform_int_distribution<int> piece(0, pieces.size() - 1);
    std::uniform_int_distribution<int> length(0, 14);
    QByteArray result;
    for (int left = length(random); left > 0; --left)
        result += pieces.at(piece(random));
    return result;
}

} // namespace

class TestLpOptionsLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lineReadsAs_data();
    void lineReadsAs();
    void placeOfAnOptionIsFromNameToValue();
    void lastOfTheSameNameCounts();
    void randomLinesReadAsInCups();
};

void TestLpOptionsLine::lineReadsAs_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Pairs>("options");
    QTest::newRow("empty") << QByteArray("") << Pairs{};
    QTest::newRow("plain") << QByteArray("MirrorPrint=True Feed=Custom.-12")
                           << Pairs{{"MirrorPrint", "True"}, {"Feed", "Custom.-12"}};
    QTest::newRow("white space of all kinds")
        << QByteArray(" \ta=1\v \fb=2\r\n") << Pairs{{"a", "1"}, {"b", "2"}};
    QTest::newRow("space before the sign") << QByteArray("a =1") << Pairs{{"a", "1"}};
    QTest::newRow("space after the sign") << QByteArray("a= 1") << Pairs{{"a", ""}, {"1", "true"}};
    QTest::newRow("names alone") << QByteArray("MirrorPrint noOverprint NOWhiteBase")
                                 << Pairs{{"MirrorPrint", "true"},
                                          {"Overprint", "false"},
                                          {"WhiteBase", "false"}};
    QTest::newRow("no alone") << QByteArray("no a=1") << Pairs{{"a", "1"}};
    QTest::newRow("single quotes") << QByteArray("a='x y' b=1") << Pairs{{"a", "x y"}, {"b", "1"}};
    QTest::newRow("double quotes") << QByteArray("a=\"x 'y' \\\"z\\\"\" b=1")
                                   << Pairs{{"a", "x 'y' \"z\""}, {"b", "1"}};
    QTest::newRow("quote that never ends") << QByteArray("a='x b=1") << Pairs{{"a", "x b=1"}};
    QTest::newRow("quote inside a word") << QByteArray("a=x'y b=1'") << Pairs{{"a", "x'y"}, {"b", "1'"}};
    QTest::newRow("escaped space") << QByteArray("a=x\\ y b=1") << Pairs{{"a", "x y"}, {"b", "1"}};
    QTest::newRow("backslash at the end") << QByteArray("a=x\\") << Pairs{{"a", "x\\"}};
    QTest::newRow("collection") << QByteArray("a={x=1 y={z=2}} b=1")
                                << Pairs{{"a", "{x=1 y={z=2}}"}, {"b", "1"}};
    QTest::newRow("collection that never ends") << QByteArray("a={x=1 b=1") << Pairs{{"a", "{x=1 b=1"}};
    QTest::newRow("list of quotes") << QByteArray("a='x y','z' b=1") << Pairs{{"a", "x y,z"}, {"b", "1"}};
    QTest::newRow("braces around all") << QByteArray("{a=1 b=2}") << Pairs{{"a", "1"}, {"b", "2"}};
    QTest::newRow("opening brace alone") << QByteArray("{a=1 b=2") << Pairs{{"{a", "1"}, {"b", "2"}};
    QTest::newRow("no name ends it") << QByteArray("a=1 =2 b=3") << Pairs{{"a", "1"}};
    QTest::newRow("number sign") << QByteArray("a=x#y b=1") << Pairs{{"a", "x#y"}, {"b", "1"}};
}

void TestLpOptionsLine::lineReadsAs()
{
    QFETCH(QByteArray, text);
    QFETCH(Pairs, options);
    QCOMPARE(ourReading(text), options);
    QCOMPARE(differenceFromCups(text), QByteArray());
}

void TestLpOptionsLine::placeOfAnOptionIsFromNameToValue()
{
    const QVector<LpOption> options = lpOptionsIn("  a='x y'  noB   c = d");
    QCOMPARE(options.size(), 4);
    QCOMPARE(options.at(0).begin, 2);
    QCOMPARE(options.at(0).end, 9);
    QCOMPARE(options.at(1).begin, 11);
    QCOMPARE(options.at(1).end, 14);
    QCOMPARE(options.at(2).begin, 17);
    QCOMPARE(options.at(2).end, 20);
}

void TestLpOptionsLine::lastOfTheSameNameCounts()
{
    const QVector<LpOption> options = lpOptionsIn("Feed=1 FEED=2 feed=3");
    QCOMPARE(lpOptionValue(options, "Feed"), QByteArray("3"));
    QVERIFY(lpOptionValue(options, "Fee").isNull());
}

void TestLpOptionsLine::randomLinesReadAsInCups()
{
    std::mt19937 random(20240517);
    for (int i = 0; i < 50000; ++i) {
        const QByteArray line = randomLine(random);
        const QByteArray difference = differenceFromCups(line);
        QVERIFY2(difference.isEmpty(), (line + ": " + difference).constData());
    }
}

QTEST_APPLESS_MAIN(TestLpOptionsLine)
#include "tst_lpoptionsline.moc"
