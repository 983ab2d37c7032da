// What tab number a message of the local socket stands for, with bytes of any kind and length.
#include "tabmessage.h"

#include <QtCore/QElapsedTimer>
#include <QtTest/QtTest>

Q_DECLARE_METATYPE(uint)

class TestTabMessage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void messageGivesTabIndex_data();
    void messageGivesTabIndex();
    void everySingleByteIsReadWithoutHarm();
    void everyTabIsSelectedBothWays_data();
    void everyTabIsSelectedBothWays();
    void hugeMessageIsReadQuickly_data();
    void hugeMessageIsReadQuickly();
};

void TestTabMessage::messageGivesTabIndex_data()
{
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<uint>("tabIndex");

    QTest::newRow("number") << QByteArray("2") << 2u;
    QTest::newRow("u and number") << QByteArray("u\n4") << 4u;
    QTest::newRow("u alone") << QByteArray("u") << 0u;
    QTest::newRow("letters") << QByteArray("abc") << 0u;
    QTest::newRow("word with u and number") << QByteArray("menu\n7") << 7u;
    QTest::newRow("number, then u") << QByteArray("5\nu") << 0u;

    QTest::newRow("null") << QByteArray() << 0u;
    QTest::newRow("empty") << QByteArray("") << 0u;
    QTest::newRow("line feed alone") << QByteArray("\n") << 0u;
    QTest::newRow("line feeds alone") << QByteArray("\n\n\n\n") << 0u;
    QTest::newRow("NUL alone") << QByteArray("\0", 1) << 0u;

    QTest::newRow("number and line feed") << QByteArray("2\n") << 2u;
    QTest::newRow("number and carriage return") << QByteArray("2\r\n") << 2u;
    QTest::newRow("only the first line counts") << QByteArray("2\n3\n4") << 2u;
    QTest::newRow("line feed before the number") << QByteArray("\n2") << 0u;
    QTest::newRow("letters, then number") << QByteArray("abc\n7") << 0u;

    QTest::newRow("u, number, line feed") << QByteArray("u\n4\n") << 4u;
    QTest::newRow("u, number, rest") << QByteArray("u\n4\nu\n9\nmenu\n5") << 4u;
    QTest::newRow("u and line feed") << QByteArray("u\n") << 0u;
    QTest::newRow("u and letters") << QByteArray("u\nabc") << 0u;
    QTest::newRow("u, empty line, number") << QByteArray("u\n\n4") << 0u;
    QTest::newRow("u, not octal") << QByteArray("u\n010") << 10u;
    QTest::newRow("u, not hexadecimal") << QByteArray("u\n0x10") << 0u;
    QTest::newRow("u, minus sign") << QByteArray("u\n-3") << 0u;
    QTest::newRow("u, spaces") << QByteArray("u\n 3 ") << 3u;
    QTest::newRow("u, beyond int") << QByteArray("u\n4294967295") << 4294967295u;
    QTest::newRow("u twice, number") << QByteArray("u\nu\n4") << 0u;
    QTest::newRow("number, u, number") << QByteArray("5\nu\n6") << 6u;
    QTest::newRow("number, u, letters") << QByteArray("5\nu\nx") << 0u;
    QTest::newRow("word with u, then u, number") << QByteArray("menu\nu\n7") << 0u;
    QTest::newRow("u, word with u") << QByteArray("u\nmenu") << 0u;

    // A line that only contains the letter does not clear the number of the first line...
    QTest::newRow("number, word with u at the end") << QByteArray("5\nmenu") << 5u;
    QTest::newRow("number, word with u, number") << QByteArray("5\nmenu\n6") << 6u;
    QTest::newRow("number, word with u, empty last line") << QByteArray("5\nmenu\n") << 0u;
    QTest::newRow("first of two words with u") << QByteArray("menu\n7\nunit\n8") << 7u;
    QTest::newRow("first word's number is none") << QByteArray("menu\nx\nunit\n8") << 0u;
    QTest::newRow("word with u alone") << QByteArray("menu") << 0u;
    QTest::newRow("digits and u on a line") << QByteArray("12u\n3") << 3u;
    // ... and a line with a space or a carriage return is not exactly "u".
    QTest::newRow("number, u with a space") << QByteArray("5\nu ") << 5u;
    QTest::newRow("number, u with a carriage return") << QByteArray("5\r\nu\r") << 5u;
    QTest::newRow("u and number with carriage returns") << QByteArray("u\r\n4\r\n") << 4u;

    QTest::newRow("capital U is not the marker") << QByteArray("U\n4") << 0u;
    QTest::newRow("number, capital U") << QByteArray("5\nU") << 5u;
    QTest::newRow("capital U, then u") << QByteArray("U\nu\n4") << 4u;
    QTest::newRow("letter with two dots is another letter") << QByteArray("\xc3\xbc\n4") << 0u;
    QTest::newRow("decomposed letter holds a u") << QByteArray("u\xcc\x88\n4") << 4u;
    QTest::newRow("full-width u is another letter") << QByteArray("\xef\xbd\x95\n4") << 0u;

    QTest::newRow("NUL ends the text") << QByteArray("2\0garbage", 9) << 2u;
    QTest::newRow("NUL before the number") << QByteArray("\0"
                                                         "2",
                                                         2)
                                           << 0u;
    QTest::newRow("NUL inside the number") << QByteArray("1\0"
                                                         "2",
                                                         3)
                                           << 1u;
    QTest::newRow("NUL between u and the line feed") << QByteArray("u\0\n4", 4) << 0u;
    QTest::newRow("NUL hides a u") << QByteArray("5\n\0u", 4) << 5u;

    QTest::newRow("space before") << QByteArray(" 3") << 3u;
    QTest::newRow("space after") << QByteArray("3 ") << 3u;
    QTest::newRow("tabs around") << QByteArray("\t3\t") << 3u;
    QTest::newRow("space inside") << QByteArray("1 2") << 0u;
    QTest::newRow("plus sign") << QByteArray("+3") << 3u;
    QTest::newRow("minus sign") << QByteArray("-3") << 0u;
    QTest::newRow("minus nought") << QByteArray("-0") << 0u;
    QTest::newRow("leading noughts") << QByteArray("0012") << 12u;
    QTest::newRow("not octal") << QByteArray("010") << 10u;
    QTest::newRow("not hexadecimal") << QByteArray("0x10") << 0u;
    QTest::newRow("decimal point") << QByteArray("2.0") << 0u;
    QTest::newRow("decimal comma") << QByteArray("2,0") << 0u;
    QTest::newRow("thousands separator") << QByteArray("1,000") << 0u;
    QTest::newRow("exponent") << QByteArray("1e1") << 0u;
    QTest::newRow("digits of another script") << QByteArray("\xd9\xa3") << 0u;
    QTest::newRow("full-width digit") << QByteArray("\xef\xbc\x93") << 0u;
    QTest::newRow("largest int") << QByteArray("2147483647") << 2147483647u;
    QTest::newRow("beyond int") << QByteArray("2147483648") << 2147483648u;
    QTest::newRow("largest number") << QByteArray("4294967295") << 4294967295u;
    QTest::newRow("one too large") << QByteArray("4294967296") << 0u;
    QTest::newRow("far too large") << QByteArray("u\n99999999999999999999999999") << 0u;
    QTest::newRow("a number that is no tab") << QByteArray("999") << 999u;

    QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbf"
                                                   "4")
                                     << 4u;
    QTest::newRow("invalid UTF-8 before") << QByteArray("\xff"
                                                        "4")
                                          << 0u;
    QTest::newRow("invalid UTF-8 in another line") << QByteArray("4\n\xff\xfe") << 4u;
    QTest::newRow("invalid UTF-8 beside u") << QByteArray("\xffu\n4") << 4u;
    QTest::newRow("cut multibyte character") << QByteArray("4\n\xe2\x82") << 4u;
    QTest::newRow("overlong NUL") << QByteArray("4\xc0\x80") << 0u;
    QTest::newRow("multibyte text") << QByteArray("\xe8\xa8\xad\xe5\xae\x9a\n4") << 0u;
}

void TestTabMessage::messageGivesTabIndex()
{
    QFETCH(QByteArray, message);
    QFETCH(uint, tabIndex);
    QCOMPARE(tabIndexFromMessage(message), tabIndex);
}

void TestTabMessage::everySingleByteIsReadWithoutHarm()
{
    for (int byte = 0; byte < 256; ++byte) {
        const bool isDigit = byte >= '0' && byte <= '9';
        const uint expected = isDigit ? uint(byte - '0') : 0u;
        QCOMPARE(tabIndexFromMessage(QByteArray(1, char(byte))), expected);
        // After a first line it is a second line, which counts only when it is the letter "u".
        QCOMPARE(tabIndexFromMessage("5\n" + QByteArray(1, char(byte))), byte == 'u' ? 0u : 5u);
        // Before a line it is what decides whether that line counts.
        const uint expectedBefore = byte == 'u' ? 7u : expected;
        QCOMPARE(tabIndexFromMessage(QByteArray(1, char(byte)) + "\n7"), expectedBefore);
    }
}

void TestTabMessage::everyTabIsSelectedBothWays_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<uint>("tabIndex");
    QTest::newRow("0") << QByteArray("0") << 0u;
    QTest::newRow("1") << QByteArray("1") << 1u;
    QTest::newRow("2") << QByteArray("2") << 2u;
    QTest::newRow("3") << QByteArray("3") << 3u;
    QTest::newRow("4") << QByteArray("4") << 4u;
    QTest::newRow("5") << QByteArray("5") << 5u;
    QTest::newRow("6") << QByteArray("6") << 6u;
    QTest::newRow("7") << QByteArray("7") << 7u;
    QTest::newRow("8") << QByteArray("8") << 8u;
    QTest::newRow("9") << QByteArray("9") << 9u;
    QTest::newRow("10") << QByteArray("10") << 10u;
    QTest::newRow("11") << QByteArray("11") << 11u;
}

void TestTabMessage::everyTabIsSelectedBothWays()
{
    QFETCH(QByteArray, number);
    QFETCH(uint, tabIndex);
    QCOMPARE(tabIndexFromMessage(number), tabIndex);
    QCOMPARE(tabIndexFromMessage("u\n" + number), tabIndex);
}

void TestTabMessage::hugeMessageIsReadQuickly_data()
{
    constexpr int size = 1024 * 1024;
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<uint>("tabIndex");

    QByteArray rubbish(size, '\0');
    quint32 state = 12345;
    for (char &byte : rubbish) {
        state = state * 1664525u + 1013904223u;
        byte = char(1 + (state >> 24) % 255);
    }
    // Without the letter and without the digits of the first line the number is known.
    rubbish.replace('u', 'v');
    rubbish[0] = 'x';
    QTest::newRow("rubbish") << rubbish << 0u;
    QTest::newRow("number, rubbish, marker, number") << "3\n" + rubbish + "\nu\n8" << 8u;
    QTest::newRow("one line of digits") << QByteArray(size, '9') << 0u;
    QTest::newRow("one line of noughts") << QByteArray(size, '0') << 0u;
    QTest::newRow("line feeds") << QByteArray(size, '\n') << 0u;
    QTest::newRow("one line of u") << QByteArray(size, 'u') << 0u;
    QTest::newRow("lines of u") << QByteArray("u\n").repeated(size / 2) << 0u;
    QTest::newRow("lines of numbers") << QByteArray("7\n").repeated(size / 2) << 7u;
    QTest::newRow("NUL bytes") << QByteArray(size, '\0') << 0u;
    QTest::newRow("number and a megabyte behind NUL") << QByteArray("7\0", 2) + QByteArray(size, 'u') << 7u;
    QTest::newRow("invalid UTF-8") << QByteArray(size, '\xff') << 0u;
    QTest::newRow("spaces") << QByteArray(size, ' ') << 0u;
    QTest::newRow("number behind spaces") << QByteArray(size, ' ') + "6" << 6u;
}

void TestTabMessage::hugeMessageIsReadQuickly()
{
    QFETCH(QByteArray, message);
    QFETCH(uint, tabIndex);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(tabIndexFromMessage(message), tabIndex);
    QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
}

QTEST_GUILESS_MAIN(TestTabMessage)
#include "tst_tabmessage.moc"
