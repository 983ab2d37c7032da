// How the output of the tools behind the About page is taken apart.
#include "tooloutput.h"

#include <QtTest/QtTest>

class TestToolOutput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tableOfDfBecomesRows();
    void mountPointAndFileSystemMayHaveBlanks();
    void tableOfAnotherFormGivesNoRows_data();
    void tableOfAnotherFormGivesNoRows();
    void sizesGetAUnit_data();
    void sizesGetAUnit();
    void valuesAreOneALine_data();
    void valuesAreOneALine();
    void offsetsAreTakenApart_data();
    void offsetsAreTakenApart();
};

void TestToolOutput::tableOfDfBecomesRows()
{
    const QVector<StorageRow> rows =
        storageRows(QStringLiteral("Filesystem      Size  Used Avail Use% Mounted on\n"
                                   "/dev/root       2.9G  1.2G  1.6G  43% /\n"
                                   "/dev/mmcblk2p3   12G   24K   11G   1% /mnt/data\n"));
    QCOMPARE(rows.size(), 2);
    QCOMPARE(rows.at(0).fileSystem, QStringLiteral("/dev/root"));
    QCOMPARE(rows.at(0).size, QStringLiteral("2.9 GiB"));
    QCOMPARE(rows.at(0).used, QStringLiteral("1.2 GiB"));
    QCOMPARE(rows.at(0).available, QStringLiteral("1.6 GiB"));
    QCOMPARE(rows.at(0).usedPercent, 43);
    QCOMPARE(rows.at(0).mountPoint, QStringLiteral("/"));
    QCOMPARE(rows.at(1).used, QStringLiteral("24 KiB"));
    QCOMPARE(rows.at(1).usedPercent, 1);
    QCOMPARE(rows.at(1).mountPoint, QStringLiteral("/mnt/data"));
}

void TestToolOutput::mountPointAndFileSystemMayHaveBlanks()
{
    const QVector<StorageRow> rows = storageRows(QStringLiteral(
        "Filesystem Size Used Avail Use% Mounted on\n/dev/my disk 1G 0 1G - /mnt/USB stick 2\n"));
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.at(0).fileSystem, QStringLiteral("/dev/my disk"));
    QCOMPARE(rows.at(0).used, QStringLiteral("0"));
    QCOMPARE(rows.at(0).usedPercent, 0);
    QCOMPARE(rows.at(0).mountPoint, QStringLiteral("/mnt/USB stick 2"));
}

void TestToolOutput::tableOfAnotherFormGivesNoRows_data()
{
    QTest::addColumn<QString>("table");
    const QString header = QStringLiteral("Filesystem Size Used Avail Use% Mounted on\n");
    QTest::newRow("nothing") << QString();
    QTest::newRow("header alone") << header;
    QTest::newRow("no header") << QStringLiteral("/dev/root 2.9G 1.2G 1.6G 43% /\n");
    QTest::newRow("translated") << QStringLiteral("Dateisystem Größe\n/dev/root 2,9G 1,2G 1,6G 43% /\n");
    QTest::newRow("decimal comma") << header + QStringLiteral("/dev/root 2,9G 1,2G 1,6G 43% /\n");
    QTest::newRow("one line of several")
        << header + QStringLiteral("/dev/root 2.9G 1.2G 1.6G 43% /\ndf: /mnt: Input/output error\n");
    QTest::newRow("row on two lines") << header + QStringLiteral("/dev/root\n 2.9G 1.2G 1.6G 43% /\n");
    QTest::newRow("cut") << header + QStringLiteral("/dev/root 2.9G 1.2");
    QTest::newRow("many lines") << header + QStringLiteral("/dev/root 2.9G 1.2G 1.6G 43% /\n").repeated(64);
    QTest::newRow("ten megabytes") << header + QString(10 * 1024 * 1024, QLatin1Char('x'));
}

void TestToolOutput::tableOfAnotherFormGivesNoRows()
{
    QFETCH(QString, table);
    QVERIFY(storageRows(table).isEmpty());
}

void TestToolOutput::sizesGetAUnit_data()
{
    QTest::addColumn<QString>("readable");
    QTest::newRow("2.9G") << QStringLiteral("2.9 GiB");
    QTest::newRow("512M") << QStringLiteral("512 MiB");
    QTest::newRow("1T") << QStringLiteral("1 TiB");
    QTest::newRow("0") << QStringLiteral("0");
    QTest::newRow("512") << QStringLiteral("512 bytes");
    QTest::newRow("") << QString();
}

void TestToolOutput::sizesGetAUnit()
{
    QFETCH(QString, readable);
    QCOMPARE(readableSize(QString::fromLatin1(QTest::currentDataTag())), readable);
}

void TestToolOutput::valuesAreOneALine_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QStringList>("values");
    const auto texts = [](std::initializer_list<const char *> list) {
        QStringList result;
        for (const char *text : list)
            result += QString::fromUtf8(text);
        return result;
    };
    QTest::newRow("three") << QStringLiteral("1\n2\n3\n") << texts({"1", "2", "3"});
    QTest::newRow("no last line end") << QStringLiteral("1\n2\n3") << texts({"1", "2", "3"});
    QTest::newRow("trimmed") << QStringLiteral("  1 \n\t2\n3\r\n") << texts({"1", "2", "3"});
    QTest::newRow("deleted values keep their place") << QStringLiteral("\n2\n\n") << texts({"", "2", ""});
    QTest::newRow("all deleted") << QStringLiteral("\n\n\n") << texts({"", "", ""});
    QTest::newRow("a line too many") << QStringLiteral("Environment WRONG, copy 0\n1\n2\n3\n") << texts({});
    QTest::newRow("a line too few") << QStringLiteral("1\n2\n") << texts({});
    QTest::newRow("nothing") << QString() << texts({});
}

void TestToolOutput::valuesAreOneALine()
{
    QFETCH(QString, output);
    QFETCH(QStringList, values);
    QCOMPARE(valueLines(output, 3), values);
}

void TestToolOutput::offsetsAreTakenApart_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("values");
    QTest::newRow("three") << QStringLiteral("112, -3, 18") << QStringLiteral("112|-3|18");
    QTest::newRow("trimmed") << QStringLiteral(" 112 , -3, 18 ") << QStringLiteral("112|-3|18");
    QTest::newRow("one missing") << QStringLiteral("112, , 18") << QStringLiteral("112||18");
    QTest::newRow("all missing") << QStringLiteral(", , ") << QString();
    QTest::newRow("too many") << QStringLiteral("1, 2, 3, 4") << QString();
    QTest::newRow("too few") << QStringLiteral("1, 2") << QString();
    QTest::newRow("nothing") << QString() << QString();
}

void TestToolOutput::offsetsAreTakenApart()
{
    QFETCH(QString, line);
    QFETCH(QString, values);
    QCOMPARE(offsetValues(line, 3).join(QLatin1Char('|')), values);
}

QTEST_APPLESS_MAIN(TestToolOutput)
#include "tst_tooloutput.moc"
