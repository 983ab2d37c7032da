// Translations out of .mo files: what a good one gives, and that no bytes at all make the reader leave them.
#include "cataloguebuilder.h"
#include "messagecatalogue.h"

#include <QtCore/QFile>
#include <QtCore/QRandomGenerator>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <memory>

Q_DECLARE_METATYPE(ByteOrder)

namespace {

const char german[] = "German";
const char deutsch[] = "Deutsch";

QByteArray smallCatalogue(ByteOrder order = ByteOrder::LittleEndian)
{
    return catalogueBytes({{german, deutsch}, {"Akan", "Akanisch"}, {"Wolof", "Wolof (Senegal)"}}, order);
}

QByteArray withNumber(QByteArray bytes, int offset, quint32 number)
{
    return bytes.replace(offset, 4, numberBytes(number));
}

// Reads everything that can be read. The bytes stand in a block of exactly their size, so that the address
// sanitizer sees a read beyond them.
void readAll(const QByteArray &bytes)
{
    const std::unique_ptr<char[]> block(new char[size_t(bytes.size())]);
    std::copy(bytes.begin(), bytes.end(), block.get());
    const MessageCatalogue catalogue(QByteArray::fromRawData(block.get(), bytes.size()));
    for (const char *message : {"", german, "Akan", "Wolof", "A", "Zulu"})
        catalogue.translation(message);
}

} // namespace

class MessageCatalogueTest : public QObject
{
    Q_OBJECT

private slots:
    void translatesInEitherByteOrder_data()
    {
        QTest::addColumn<ByteOrder>("order");
        QTest::newRow("little") << ByteOrder::LittleEndian;
        QTest::newRow("big") << ByteOrder::BigEndian;
    }

    void translatesInEitherByteOrder()
    {
        QFETCH(ByteOrder, order);
        const MessageCatalogue catalogue(smallCatalogue(order));
        QVERIFY(catalogue.isValid());
        QCOMPARE(catalogue.translation("German"), QStringLiteral("Deutsch"));
        QCOMPARE(catalogue.translation("Akan"), QStringLiteral("Akanisch"));
        QCOMPARE(catalogue.translation("Wolof"), QStringLiteral("Wolof (Senegal)"));
    }

    void unknownMessageHasNoTranslation_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("before all") << QByteArray("AAA");
        QTest::newRow("between") << QByteArray("German (Austria)");
        QTest::newRow("after all") << QByteArray("Zulu");
        QTest::newRow("part of one") << QByteArray("Germ");
        QTest::newRow("other case") << QByteArray("german");
        QTest::newRow("empty, which is the header") << QByteArray("");
        QTest::newRow("null") << QByteArray();
    }

    void unknownMessageHasNoTranslation()
    {
        QFETCH(QByteArray, message);
        QVERIFY(MessageCatalogue(smallCatalogue()).translation(message).isNull());
    }

    void unusableTranslationIsNone_data()
    {
        QTest::addColumn<QByteArray>("translation");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("no UTF-8") << QByteArray("Fran\xe7"
                                                "ais");
        QTest::newRow("cut UTF-8") << QByteArray("Fran\xc3");
    }

    void unusableTranslationIsNone()
    {
        QFETCH(QByteArray, translation);
        const MessageCatalogue catalogue(catalogueBytes({{"French", translation}, {german, deutsch}}));
        QVERIFY(catalogue.translation("French").isNull());
        QCOMPARE(catalogue.translation("German"), QStringLiteral("Deutsch"));
    }

    void pluralFormsAreReadUpToTheFirst()
    {
        const MessageCatalogue catalogue(
            catalogueBytes({{QByteArray("key\0keys", 8), QByteArray("Taste\0Tasten", 12)}}));
        QCOMPARE(catalogue.translation("key"), QStringLiteral("Taste"));
    }

    void bytesThatAreNoCatalogueTranslateNothing_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray good = smallCatalogue();
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("one byte") << QByteArray("x");
        QTest::newRow("header only") << good.left(28);
        QTest::newRow("text") << QByteArray("#!/bin/sh\nThis is no catalogue, whatever it is called.\n");
        QTest::newRow("zeros") << QByteArray(1000, '\0');
        QTest::newRow("other magic number") << withNumber(good, 0, 0x950412dd);
        QTest::newRow("revision of the future") << withNumber(good, 4, 0x00020000);
        QTest::newRow("no texts") << withNumber(good, 8, 0);
        QTest::newRow("more texts than bytes") << withNumber(good, 8, 1000);
        QTest::newRow("count that overflows") << withNumber(good, 8, 0x20000001);
        QTest::newRow("largest count") << withNumber(good, 8, 0xffffffff);
        QTest::newRow("messages beyond the end") << withNumber(good, 12, 0x7fffffff);
        QTest::newRow("translations beyond the end") << withNumber(good, 16, 0xfffffff0);
        QTest::newRow("header text beyond the end") << withNumber(good, 28 + 4 * 8 + 4, 0xfffffff0);
        QTest::newRow("header text too long") << withNumber(good, 28 + 4 * 8, 0xffffffff);
        QTest::newRow("without a header") << catalogueBytes({{"", ""}, {german, deutsch}});
        QTest::newRow("other character set")
            << catalogueBytes({{"", "Content-Type: text/plain; charset=iso-8859-1\n"}, {german, deutsch}});
    }

    void bytesThatAreNoCatalogueTranslateNothing()
    {
        QFETCH(QByteArray, bytes);
        const MessageCatalogue catalogue(bytes);
        QVERIFY(!catalogue.isValid());
        QVERIFY(catalogue.translation("German").isNull());
        readAll(bytes);
    }

    void oneWrongTextLeavesTheOthers()
    {
        // "Wolof" is the fourth message: its translation is said to lie far behind the end.
        const MessageCatalogue catalogue(withNumber(smallCatalogue(), 28 + 4 * 8 + 3 * 8 + 4, 0xfffffffe));
        QVERIFY(catalogue.translation("Wolof").isNull());
        QCOMPARE(catalogue.translation("German"), QStringLiteral("Deutsch"));
    }

    void cutAnywhereItStaysInBounds()
    {
        for (const ByteOrder order : {ByteOrder::LittleEndian, ByteOrder::BigEndian}) {
            const QByteArray good = smallCatalogue(order);
            for (int size = 0; size <= good.size(); ++size)
                readAll(good.left(size));
        }
    }

    void changedAnywhereItStaysInBounds()
    {
        const QByteArray good = smallCatalogue();
        for (int offset = 0; offset < good.size(); ++offset) {
            for (const char byte : {'\x00', '\x01', '\x7f', '\x80', '\xff'}) {
                QByteArray changed = good;
                changed[offset] = byte;
                readAll(changed);
            }
        }
    }

    void randomTablesStayInBounds()
    {
        QRandomGenerator random(20240517);
        const QByteArray start = smallCatalogue().left(8);
        for (int round = 0; round < 20000; ++round) {
            QByteArray bytes = start + numberBytes(random.bounded(4U)) + numberBytes(random.bounded(120U))
                + numberBytes(random.bounded(120U));
            while (bytes.size() < 100)
                bytes += numberBytes(random.bounded(2U) ? random.generate() : random.bounded(120U));
            readAll(bytes);
        }
    }

    void installedGermanCatalogueIsFoundAndRead()
    {
        const QString path = installedCatalogue(QStringLiteral("xkeyboard-config"), QStringLiteral("de_DE"));
        QVERIFY2(path.endsWith(QLatin1String("/locale/de/LC_MESSAGES/xkeyboard-config.mo")),
                 qPrintable(path));
        const MessageCatalogue catalogue = readCatalogue(path);
        QCOMPARE(catalogue.translation("German"), QStringLiteral("Deutsch"));
        QCOMPARE(catalogue.translation("German (no dead keys)"),
                 QStringLiteral("Deutsch (ohne Akzenttasten)"));
        QCOMPARE(catalogue.translation("Russian"), QStringLiteral("Russisch"));
    }

    void regionComesBeforeLanguageAlone()
    {
        const QString path = installedCatalogue(QStringLiteral("xkeyboard-config"), QStringLiteral("pt_BR"));
        QVERIFY2(path.endsWith(QLatin1String("/locale/pt_BR/LC_MESSAGES/xkeyboard-config.mo")),
                 qPrintable(path));
    }

    void whatIsNoFileIsNoCatalogue()
    {
        QVERIFY(installedCatalogue(QStringLiteral("no-such-domain"), QStringLiteral("de_DE")).isEmpty());
        QVERIFY(!readCatalogue(QString()).isValid());
        QVERIFY(!readCatalogue(QStringLiteral("/no/such/file.mo")).isValid());
        const QTemporaryDir folder;
        QVERIFY(folder.isValid());
        QVERIFY(!readCatalogue(folder.path()).isValid());
    }

    void hugeFileIsRefused()
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("huge.mo")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write(smallCatalogue()) > 0);
        QVERIFY(file.resize(10000000));
        file.close();
        QVERIFY(!readCatalogue(file.fileName()).isValid());
    }
};

QTEST_GUILESS_MAIN(MessageCatalogueTest)
#include "tst_messagecatalogue.moc"
