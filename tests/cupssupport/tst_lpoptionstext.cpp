// The text of the file: which line is the queue's, and that a change touches one option and nothing else.
#include "lpoptionstext.h"

#include <QtTest/QtTest>

#include <cups/cups.h>
#include <cups/file.h>
#include <random>

#include <sys/mman.h>
#include <unistd.h>

namespace {

const QByteArray queue = QByteArrayLiteral("BrackenXL");

QByteArray changed(const QByteArray &text, const QByteArray &value)
{
    return withLpOption(text, queue, QByteArrayLiteral("Feed"), value).value_or(QByteArray("refused"));
}

/// A file in memory that holds \a text.
int openedText(const QByteArray &text)
{
    const int file = memfd_create("lpoptions", MFD_CLOEXEC);
    if (write(file, text.constData(), size_t(text.size())) != text.size() || lseek(file, 0, SEEK_SET) != 0)
        qFatal("no file in memory");
    return file;
}

/// The value of Feed for the queue in \a text, found with libcups' own functions for such files.
QByteArray feedByCups(const QByteArray &text)
{
    cups_file_t *const file = cupsFileOpenFd(openedText(text), "r");
    char line[8192];
    char *rest = nullptr;
    int number = 0;
    QByteArray result;
    while (file && cupsFileGetConf(file, line, sizeof line, &rest, &number)) {
        const QByteArray kind = QByteArray(line).toLower();
        if ((kind != "dest" && kind != "default") || !rest)
            continue;
        const QByteArray name = QByteArray(rest).left(int(strcspn(rest, " \t\v\f\r\n")));
        if (name.toLower() != queue.toLower())
            continue;
        cups_option_t *options = nullptr;
        const int count = cupsParseOptions(rest + name.size(), 0, &options);
        const char *const value = cupsGetOption("Feed", count, options);
        result = value ? QByteArray("").append(value) : QByteArray();
        cupsFreeOptions(count, options);
        break;
    }
    cupsFileClose(file);
    return result;
}

QByteArray randomText(std::mt19937 &random)
{
    static const QList<QByteArray> pieces{"Dest ",
                                          "dest\t",
                                          "Default ",
                                          "BrackenXL",
                                          "brackenxl",
                                          "/draft",
                                          "Other",
                                          "Feed=",
                                          "Feed",
                                          "noFeed",
                                          " ",
                                          "\n",
                                          "\n",
                                          "\r",
                                          "\r\n",
                                          "#",
                                          "\\#",
                                          "\\",
                                          "1",
                                          "Custom.-3",
                                          "'",
                                          "\"",
                                          "=",
                                          "{",
                                          "}",
                                          "Note='a b'",
                                          "<",
                                          ">",
                                          "Dest BrackenXL ",
                                          "Dest BrackenXL Feed=4 "};
    std::uniform_int_distribution<int> piece(0, pieces.size() - 1);
    std::uniform_int_distribution<int> length(0, 16);
    QByteArray result;
    for (int left = length(random); left > 0; --left)
        result += pieces.at(piece(random));
    return result;
}

} // namespace

class TestLpOptionsText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lineOfTheQueueIsFound_data();
    void lineOfTheQueueIsFound();
    void changeTouchesNothingElse_data();
    void changeTouchesNothingElse();
    void lineThatCupsWouldCutIsRefused();
    void randomFilesReadAsInCups();
    void changedRandomFilesReadAsInCups();
};

void TestLpOptionsText::lineOfTheQueueIsFound_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("feed");
    const QByteArray none;
    QTest::newRow("nothing") << QByteArray() << none;
    QTest::newRow("plain") << QByteArray("Dest BrackenXL Feed=1\n") << QByteArray("1");
    QTest::newRow("default") << QByteArray("Default BrackenXL Feed=1\n") << QByteArray("1");
    QTest::newRow("any case") << QByteArray("dEST bRACKENxl fEED=1\n") << QByteArray("1");
    QTest::newRow("indented") << QByteArray(" \tDest \t BrackenXL\t Feed=1\n") << QByteArray("1");
    QTest::newRow("without line end") << QByteArray("Dest BrackenXL Feed=1") << QByteArray("1");
    QTest::newRow("first of two") << QByteArray("Dest BrackenXL a=1\nDefault BrackenXL Feed=1\n") << none;
    QTest::newRow("instance") << QByteArray("Dest BrackenXL/draft Feed=1\n") << none;
    QTest::newRow("instance without name") << QByteArray("Dest BrackenXL/ Feed=1\n") << none;
    QTest::newRow("instance before") << QByteArray("Dest BrackenXL/a Feed=1\nDest BrackenXL Feed=2\n")
                                     << QByteArray("2");
    QTest::newRow("other queue") << QByteArray("Dest BrackenXL2 Feed=1\nDest Bracken Feed=1\n") << none;
    QTest::newRow("other word") << QByteArray("Destination BrackenXL Feed=1\n") << none;
    QTest::newRow("comment") << QByteArray("#Dest BrackenXL Feed=1\n") << none;
    QTest::newRow("comment behind") << QByteArray("Dest BrackenXL a=1 # Feed=1\n") << none;
    QTest::newRow("comment at the value") << QByteArray("Dest BrackenXL Feed=1#2\n") << QByteArray("1");
    QTest::newRow("escaped sign") << QByteArray("Dest BrackenXL Feed=1\\#2\n") << QByteArray("1#2");
    QTest::newRow("carriage returns")
        << QByteArray("Dest a b=1\rDest BrackenXL Feed=1\r\n") << QByteArray("1");
    QTest::newRow("line without options") << QByteArray("Dest BrackenXL\n") << none;
}

void TestLpOptionsText::lineOfTheQueueIsFound()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, feed);
    const QByteArray found = lpOptionValue(lpOptionsOf(text, queue), "Feed");
    QCOMPARE(found, feed);
    QCOMPARE(found.isNull(), feed.isNull());
}

void TestLpOptionsText::changeTouchesNothingElse_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("result");
    const auto row = [](const char *name, const QByteArray &text, const QByteArray &value,
                        const QByteArray &result) { QTest::newRow(name) << text << value << result; };
    const QByteArray none;
    row("no file", "", "0", "Dest BrackenXL Feed=0\n");
    row("other lines", "# mine\n\nDest Other Feed=1\n", "0",
        "# mine\n\nDest Other Feed=1\nDest BrackenXL Feed=0\n");
    row("last line without end", "Dest Other a=1", "0", "Dest Other a=1\nDest BrackenXL Feed=0\n");
    row("instance alone", "Dest BrackenXL/a Feed=1\n", "0",
        "Dest BrackenXL/a Feed=1\nDest BrackenXL Feed=0\n");
    row("value in its place", "Default brackenxl  a=1\tFeed=Custom.3  b='x  y' # c\nDest Other Feed=2\n",
        "Custom.-7", "Default brackenxl  a=1\tFeed=Custom.-7  b='x  y' # c\nDest Other Feed=2\n");
    row("name in another case", "Dest BrackenXL fEED=1\n", "2", "Dest BrackenXL Feed=2\n");
    row("name alone", "Dest BrackenXL a noFeed b\n", "2", "Dest BrackenXL a Feed=2 b\n");
    row("value in quotes", "Dest BrackenXL a=1 Feed='x \\' y' b\n", "2", "Dest BrackenXL a=1 Feed=2 b\n");
    row("space before the sign", "Dest BrackenXL Feed  =1 b\n", "2", "Dest BrackenXL Feed=2 b\n");
    row("the last of two", "Dest BrackenXL Feed=1 a feed=2 b\n", "3", "Dest BrackenXL Feed=1 a Feed=3 b\n");
    row("not there yet", "Dest BrackenXL a=1 b\n", "2", "Dest BrackenXL Feed=2 a=1 b\n");
    row("line without options", "Dest BrackenXL\nDest Other\n", "2", "Dest BrackenXL Feed=2\nDest Other\n");
    row("line with a comment alone", "Dest BrackenXL # a\n", "2", "Dest BrackenXL Feed=2 # a\n");
    row("carriage returns", "Dest BrackenXL a=1\r\nDest Other b\r\n", "2",
        "Dest BrackenXL Feed=2 a=1\r\nDest Other b\r\n");
    row("quote that never ends", "Dest BrackenXL a='b\n", "2", "Dest BrackenXL Feed=2 a='b\n");
    row("reading ends early", "Dest BrackenXL a =b =c\n", "2", "Dest BrackenXL Feed=2 a =b =c\n");
    row("braces", "Dest BrackenXL {a=1 b=2}\n", "2", "Dest BrackenXL {Feed=2 a=1 b=2}\n");
    row("behind an escaped sign", "Dest BrackenXL a=\\#1 Feed=1 b=x#y\n", "2",
        "Dest BrackenXL a=\\#1 Feed=2 b=x#y\n");
    row("escaped sign in the value", "Dest BrackenXL Feed=\\#1 b\n", "2", "Dest BrackenXL Feed=2 b\n");
    row("same value", "Dest BrackenXL  Feed=2 a\n", "2", "Dest BrackenXL  Feed=2 a\n");
    row("bytes that are no text", "\xff\xfe\nDest BrackenXL a=\xff Feed=1\n", "2",
        "\xff\xfe\nDest BrackenXL a=\xff Feed=2\n");
    row("taken out", "Dest BrackenXL a=1 Feed=2 b=3\n", none, "Dest BrackenXL a=1 b=3\n");
    row("taken out, the only one", "Dest BrackenXL Feed=2\nDest Other\n", none,
        "Dest BrackenXL\nDest Other\n");
    row("taken out, all of them", "Dest BrackenXL Feed=2 a feed=3 FEED # c\n", none,
        "Dest BrackenXL a # c\n");
    row("taken out, not there", "Dest BrackenXL a\n", none, "Dest BrackenXL a\n");
    row("taken out, no line", "Dest Other a\n", none, "Dest Other a\n");
    row("refused: a sign without name would get one", "Dest BrackenXL a Feed=2 =b\n", none, "refused");
    row("refused: another sign would start a comment", "Dest BrackenXL Feed=\\#1 b=x#y\n", "2", "refused");
}

void TestLpOptionsText::changeTouchesNothingElse()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, result);
    QCOMPARE(changed(text, value), result);
}

void TestLpOptionsText::lineThatCupsWouldCutIsRefused()
{
    const QByteArray start("Dest BrackenXL a=");
    const QByteArray addition(" Feed=0");
    const QByteArray fits = start + QByteArray(8190 - start.size() - addition.size(), 'x') + '\n';
    QCOMPARE(changed(fits, "0").size(), fits.size() + addition.size());
    const QByteArray isTooLong = start + QByteArray(8191 - start.size() - addition.size(), 'x') + '\n';
    QCOMPARE(changed(isTooLong, "0"), QByteArray("refused"));
    const QByteArray isCut = start + QByteArray(9000, 'x') + " Feed=1\n";
    QCOMPARE(changed(isCut, "0"), QByteArray("refused"));
    QVERIFY(lpOptionValue(lpOptionsOf(isCut, queue), "Feed").isNull());
}

void TestLpOptionsText::randomFilesReadAsInCups()
{
    std::mt19937 random(20240518);
    for (int i = 0; i < 20000; ++i) {
        const QByteArray text = randomText(random);
        const QByteArray expected = feedByCups(text);
        const QByteArray found = lpOptionValue(lpOptionsOf(text, queue), "Feed");
        QVERIFY2(found == expected && found.isNull() == expected.isNull(), text.constData());
    }
}

void TestLpOptionsText::changedRandomFilesReadAsInCups()
{
    std::mt19937 random(20240519);
    int refused = 0;
    for (int i = 0; i < 20000; ++i) {
        const QByteArray text = randomText(random);
        const QByteArray value = i % 2 == 0 ? QByteArray("Custom.-7") : QByteArray();
        const std::optional<QByteArray> result = withLpOption(text, queue, "Feed", value);
        refused += result ? 0 : 1;
        if (result)
            QVERIFY2(feedByCups(*result) == value, text.constData());
    }
    QVERIFY2(refused < 1000, qPrintable(QString::number(refused)));
}

QTEST_APPLESS_MAIN(TestLpOptionsText)
#include "tst_lpoptionstext.moc"
