// The printer's offsets as two display lines.
#include "offsets.h"

#include <QtTest/QtTest>

class TestOffsets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesHoldFiveValuesEach_data();
    void linesHoldFiveValuesEach();
};

void TestOffsets::linesHoldFiveValuesEach_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    const auto row = [](const char *name, const char *output, const char *first, const char *second) {
        QTest::newRow(name) << QString::fromUtf8(output) << QString::fromUtf8(first)
                            << QString::fromUtf8(second);
    };
    row("ten values", "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n", "1, 2, 3, 4, 5", "6, 7, 8, 9, 10");
    row("no last line end", "1\n2\n3\n4\n5\n6\n7\n8\n9\n10", "1, 2, 3, 4, 5", "6, 7, 8, 9, 10");
    row("empty value", "1\n\n3\n4\n5\n6\n7\n8\n\n10\n", "1, , 3, 4, 5", "6, 7, 8, , 10");
    row("empty value first and last", "\n2\n3\n4\n\n\n7\n8\n9\n\n", ", 2, 3, 4, ", ", 7, 8, 9, ");
    row("ten empty values", "\n\n\n\n\n\n\n\n\n\n", ", , , , ", ", , , , ");
    row("nothing", "", ", , , , ", ", , , , ");
    row("one line end", "\n", ", , , , ", ", , , , ");
    row("one value", "1", "1, , , , ", ", , , , ");
    row("four values", "1\n2\n3\n4\n", "1, 2, 3, 4, ", ", , , , ");
    row("five values", "1\n2\n3\n4\n5\n", "1, 2, 3, 4, 5", ", , , , ");
    row("six values", "1\n2\n3\n4\n5\n6\n", "1, 2, 3, 4, 5", "6, , , , ");
    row("nine values", "1\n2\n3\n4\n5\n6\n7\n8\n9\n", "1, 2, 3, 4, 5", "6, 7, 8, 9, ");
    row("eleven values", "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n", "1, 2, 3, 4, 5", "6, 7, 8, 9, 10");
    row("twelve values", "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n", "1, 2, 3, 4, 5", "6, 7, 8, 9, 10");
    row("values as printed", " 1\n-2 \n+3\n04\n5.50\n0x6\nseven\n8, 8\n\t9\n1 0\n", " 1, -2 , +3, 04, 5.50",
        "0x6, seven, 8, 8, \t9, 1 0");
    row("carriage returns stay", "1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7\r\n8\r\n9\r\n10\r\n",
        "1\r, 2\r, 3\r, 4\r, 5\r", "6\r, 7\r, 8\r, 9\r, 10\r");
    row("carriage return ends no line", "1\r2\n3\n", "1\r2, 3, , , ", ", , , , ");
    row("other line separators end no line", "1\u20282\u00852\v2\f2\n3\n", "1\u20282\u00852\v2\f2, 3, , , ",
        ", , , , ");
    row("place markers", "%1\n%2\n%%\n%10\n%L1\n%1\n%2\n%3\n%4\n%5\n", "%1, %2, %%, %10, %L1",
        "%1, %2, %3, %4, %5");
    row("non-Latin", "日\n😀\né\nе\nא\n1\n2\n3\n4\n5\n", "日, 😀, é, е, א", "1, 2, 3, 4, 5");
    row("error text", "Cannot read environment", "Cannot read environment, , , , ", ", , , , ");
}

void TestOffsets::linesHoldFiveValuesEach()
{
    QFETCH(QString, output);
    QFETCH(QString, first);
    QFETCH(QString, second);
    QCOMPARE(offsetLines(output), QStringList({first, second}));
}

QTEST_APPLESS_MAIN(TestOffsets)
#include "tst_offsets.moc"
