// Which lines a full spool keeps.
#include "spooltrimming.h"

#include <QtTest/QTest>

class TestSpoolTrimming : public QObject
{
    Q_OBJECT

private slots:
    void theNewestHalfOfTheLinesStays_data();
    void theNewestHalfOfTheLinesStays();
    void linesAreHalvedUntilTheyFit_data();
    void linesAreHalvedUntilTheyFit();
};

void TestSpoolTrimming::theNewestHalfOfTheLinesStays_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QByteArray>("kept");

    QTest::newRow("nothing") << QByteArray() << QByteArray();
    QTest::newRow("one") << QByteArray("a\n") << QByteArray();
    QTest::newRow("one without line end") << QByteArray("a") << QByteArray();
    QTest::newRow("two") << QByteArray("a\nb\n") << QByteArray("b\n");
    QTest::newRow("two, the last torn") << QByteArray("a\nb") << QByteArray("b");
    QTest::newRow("three") << QByteArray("a\nb\nc\n") << QByteArray("c\n");
    QTest::newRow("four") << QByteArray("a\nb\nc\nd\n") << QByteArray("c\nd\n");
    QTest::newRow("lines count, not bytes")
        << QByteArray("aaaaaaaaaaaaaaaa\nb\nc\nd\n") << QByteArray("c\nd\n");
    QTest::newRow("empty lines count") << QByteArray("\n\n\na\n") << QByteArray("\na\n");
    QTest::newRow("NUL is an ordinary byte") << QByteArray("a\0\nb\0c\n", 7) << QByteArray("b\0c\n", 4);
}

void TestSpoolTrimming::theNewestHalfOfTheLinesStays()
{
    QFETCH(QByteArray, lines);
    QFETCH(QByteArray, kept);
    QCOMPARE(newestHalf(lines), kept);
}

void TestSpoolTrimming::linesAreHalvedUntilTheyFit_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<int>("room");
    QTest::addColumn<QByteArray>("kept");

    const QByteArray eight("1\n2\n3\n4\n5\n6\n7\n8\n");
    QTest::newRow("half is dropped even if a line would do") << eight << 14 << QByteArray("5\n6\n7\n8\n");
    QTest::newRow("exactly half") << eight << 8 << QByteArray("5\n6\n7\n8\n");
    QTest::newRow("a byte too little for half") << eight << 7 << QByteArray("7\n8\n");
    QTest::newRow("room for one") << eight << 3 << QByteArray("8\n");
    QTest::newRow("room for none") << eight << 1 << QByteArray();
    QTest::newRow("no room") << eight << 0 << QByteArray();
    QTest::newRow("the newest line is the long one")
        << QByteArray("1\n2\n3\n44444444\n") << 8 << QByteArray();
    QTest::newRow("a torn line gets its line end") << QByteArray("1\n2\n3\n4") << 4 << QByteArray("3\n4\n");
    QTest::newRow("the line end counts") << QByteArray("1\n2\n3\n4") << 3 << QByteArray("4\n");
    QTest::newRow("nothing") << QByteArray() << 5 << QByteArray();
}

void TestSpoolTrimming::linesAreHalvedUntilTheyFit()
{
    QFETCH(QByteArray, lines);
    QFETCH(int, room);
    QFETCH(QByteArray, kept);
    QCOMPARE(trimmedToFit(lines, room), kept);
}

QTEST_APPLESS_MAIN(TestSpoolTrimming)
#include "tst_spooltrimming.moc"
