// What the files look like, that any preset comes back from its text, and what is taken for damaged.
#include "presettext.h"

#include <QtTest/QtTest>

#include <random>

Q_DECLARE_METATYPE(PresetTextKind)

namespace {

const char wholePreset[] = "Corvanta preset, format 1\n"
                           "model: BrackenXL\n"
                           "name: Shoes\n"
                           "index: 7\n"
                           "\n"
                           "[options]\n"
                           "orientation-requested: 6\n"
                           "MirrorPrint: True\n"
                           "Stop: 2.5\n"
                           "\n"
                           "[end]\n";

PresetRecord shoes()
{
    return {QStringLiteral("BrackenXL"),
            QStringLiteral("Shoes"),
            QString(),
            7,
            {QStringLiteral("orientation-requested"), QStringLiteral("6"), QStringLiteral("MirrorPrint"),
             QStringLiteral("True"), QStringLiteral("Stop"), QStringLiteral("2.5")}};
}

QByteArray withReplaced(const char *before, const char *after)
{
    return QByteArray(wholePreset).replace(before, after);
}

// Mostly characters that mean something in the text.
QString randomText(std::mt19937 *random)
{
    static const QString special = QString::fromUtf8(" :\\\n\r\t#[].ue=0aZ\xC2\xA0\xC2\x85\xE2\x80\xA8");
    QString text;
    for (int size = int((*random)() % 6); size > 0; --size)
        text += (*random)() % 4 > 0 ? special.at(int((*random)() % uint(special.size())))
                                    : QChar(ushort((*random)()));
    return text;
}

} // namespace

class TestPresetText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPresetIsReadableText();
    void theOrderIsReadableText();
    void anOptionIsWrittenAsALine_data();
    void anOptionIsWrittenAsALine();
    void anyPresetComesBackFromItsText();
    void anyOrderComesBackFromItsText();
    void aPersonsEditsAreRead_data();
    void aPersonsEditsAreRead();
    void whatIsNoPresetIsTold_data();
    void whatIsNoPresetIsTold();
    void everyCutPresetIsDamaged();
};

void TestPresetText::aPresetIsReadableText()
{
    QCOMPARE(presetText(shoes()), QByteArray(wholePreset));
    PresetRecord record = shoes();
    record.description = QStringLiteral("for leather");
    QVERIFY(presetText(record).contains("name: Shoes\ndescription: for leather\nindex: 7\n"));
}

void TestPresetText::theOrderIsReadableText()
{
    PresetOrder order{QStringLiteral("BrackenXL"),
                      {{QStringLiteral("Boxes_p"), QStringLiteral("Boxes")},
                       {QStringLiteral("Winter%20shoes_p"), QStringLiteral("Winter shoes")}},
                      QStringLiteral("Boxes_p"),
                      false};
    const QByteArray entries = "\n[presets]\nBoxes_p: Boxes\nWinter%20shoes_p: Winter shoes\n\n[end]\n";
    QCOMPARE(presetOrderText(order),
             "Corvanta preset list, format 1\nmodel: BrackenXL\ncurrent: Boxes_p\n" + entries);
    order.current = QStringLiteral("<Default Settings>");
    order.currentIsPredefined = true;
    QCOMPARE(presetOrderText(order),
             "Corvanta preset list, format 1\nmodel: BrackenXL\ncurrent predefined: <Default Settings>\n"
                 + entries);
    order.current.clear();
    QCOMPARE(presetOrderText(order), "Corvanta preset list, format 1\nmodel: BrackenXL\n" + entries);
}

void TestPresetText::anOptionIsWrittenAsALine_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("lines");

    const auto row = [](const char *title, const QStringList &options, const char *lines) {
        QTest::newRow(title) << options << QByteArray(lines);
    };
    const auto text = [](const char *utf8) { return QString::fromUtf8(utf8); };
    row("none", {}, "");
    row("a key twice", {text("Feed"), text("1"), text("Feed"), text("2")}, "Feed: 1\nFeed: 2\n");
    row("a key without its value", {text("Feed"), text("1"), text("Stop")}, "Feed: 1\nStop\n");
    row("only an empty key", {QString()}, "\\.\n");
    row("empty key and value", {QString(), QString()}, ":\n");
    row("empty value", {text("Feed"), QString()}, "Feed:\n");
    row("line ends", {text("a\nb"), text("c\r\nd\te")}, "a\\nb: c\\r\\nd\\te\n");
    row("colons", {text("a:b"), text("c:d")}, "a\\:b: c:d\n");
    row("backslash", {text("a\\"), text("\\n")}, "a\\\\: \\\\n\n");
    row("blanks at the ends", {text(" a b "), text("  c ")}, "\\u0020a b\\u0020: \\u0020 c\\u0020\n");
    row("what looks like a section", {text("[end]"), text("[end]")}, "\\u005bend]: [end]\n");
    row("what looks like a comment", {text("#a"), text("#b")}, "\\u0023a: #b\n");
    row("umlaut and emoji", {text("Größe"), text("\xF0\x9F\x91\x9F")}, "Größe: \xF0\x9F\x91\x9F\n");
    row("line separator", {text("a"), text("\xE2\x80\xA8")}, "a: \\u2028\n");
    row("NUL and half an emoji", {QString(QChar(0)), QString(QChar(0xd83d))}, "\\u0000: \\ud83d\n");
}

void TestPresetText::anOptionIsWrittenAsALine()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, lines);
    PresetRecord record = shoes();
    record.options = options;
    const QByteArray text = presetText(record);
    QCOMPARE(text.mid(text.indexOf("[options]\n")), "[options]\n" + lines + "\n[end]\n");
    PresetRecord read;
    QCOMPARE(readPresetText(text, &read), PresetTextKind::Readable);
    QCOMPARE(read.options, options);
}

void TestPresetText::anyPresetComesBackFromItsText()
{
    std::mt19937 random(1);
    for (int round = 0; round < 3000; ++round) {
        PresetRecord record{randomText(&random), randomText(&random), randomText(&random), int(random()), {}};
        for (int size = int(random() % 8); size > 0; --size)
            record.options.append(randomText(&random));
        PresetRecord read;
        const QByteArray text = presetText(record);
        QVERIFY2(readPresetText(text, &read) == PresetTextKind::Readable, text.constData());
        QVERIFY2(read == record, text.constData());
    }
}

void TestPresetText::anyOrderComesBackFromItsText()
{
    std::mt19937 random(2);
    for (int round = 0; round < 2000; ++round) {
        PresetOrder order{randomText(&random), {}, randomText(&random), random() % 2 == 0};
        order.currentIsPredefined = order.currentIsPredefined && !order.current.isEmpty();
        for (int size = int(random() % 4); size > 0; --size)
            order.entries.append({randomText(&random), randomText(&random)});
        PresetOrder read;
        const QByteArray text = presetOrderText(order);
        QVERIFY2(readPresetOrderText(text, &read) == PresetTextKind::Readable, text.constData());
        QCOMPARE(read.modelName, order.modelName);
        QCOMPARE(read.current, order.current);
        QCOMPARE(read.currentIsPredefined, order.currentIsPredefined);
        QCOMPARE(read.entries.size(), order.entries.size());
        for (int i = 0; i < read.entries.size(); ++i) {
            QCOMPARE(read.entries.at(i).fileName, order.entries.at(i).fileName);
            QCOMPARE(read.entries.at(i).displayName, order.entries.at(i).displayName);
        }
    }
}

void TestPresetText::aPersonsEditsAreRead_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("carriage returns") << withReplaced("\n", "\r\n");
    QTest::newRow("byte order mark") << "\xef\xbb\xbf" + QByteArray(wholePreset);
    QTest::newRow("no last line end") << QByteArray(wholePreset).trimmed();
    QTest::newRow("comments") << withReplaced("[options]\n", "[options]\n# for leather\n") + "# end\n";
    QTest::newRow("blanks") << withReplaced(": ", "  :\t  ").replace("\n", "  \n\n");
    QTest::newRow("no blanks") << withReplaced(": ", ":").replace("\n\n", "\n");
    QTest::newRow("another order") << withReplaced("model: BrackenXL\nname: Shoes\n",
                                                   "name: Shoes\nmodel: BrackenXL\n");
    QTest::newRow("a line that is new") << withReplaced("index: 7\n", "index: 7\ncolour: red\n");
    QTest::newRow("capitals in an escape") << withReplaced("Shoes", "\\u0053hoe\\u0073");
}

void TestPresetText::aPersonsEditsAreRead()
{
    QFETCH(QByteArray, text);
    PresetRecord record;
    QCOMPARE(readPresetText(text, &record), PresetTextKind::Readable);
    QCOMPARE(record.modelName, shoes().modelName);
    QCOMPARE(record.displayName, shoes().displayName);
    QCOMPARE(record.index, 7);
    QCOMPARE(record.options, shoes().options);
}

void TestPresetText::whatIsNoPresetIsTold_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<PresetTextKind>("kind");

    const auto damaged = [](const char *title, const QByteArray &text) {
        QTest::newRow(title) << text << PresetTextKind::Damaged;
    };
    damaged("empty", QByteArray());
    damaged("NUL bytes of a power cut", QByteArray(200, '\0'));
    damaged("another text", "Dest BrackenXL Feed=Custom.3\n");
    damaged("the order's file", withReplaced("preset,", "preset list,"));
    damaged("no UTF-8", withReplaced("Shoes", "Sh\xffoes"));
    damaged("half a character at the end", QByteArray(wholePreset) + "# \xc3");
    damaged("format 0", withReplaced("format 1", "format 0"));
    damaged("no format", withReplaced("format 1", "format"));
    damaged("no model", withReplaced("model: BrackenXL\n", ""));
    damaged("no name", withReplaced("name: Shoes\n", ""));
    damaged("a word without a value", withReplaced("name: Shoes\n", "name: Shoes\nwinter\n"));
    damaged("a key without a value before others", withReplaced("MirrorPrint: True", "MirrorPrint"));
    damaged("an unknown section", withReplaced("[options]", "[choices]"));
    damaged("no section", withReplaced("[options]\n", ""));
    damaged("the section twice", withReplaced("[options]\n", "[options]\n[options]\n"));
    damaged("text behind the end", QByteArray(wholePreset) + "Feed: 1\n");
    damaged("two presets in one file", QByteArray(wholePreset) + wholePreset);
    damaged("unknown escape", withReplaced("Shoes", "Sh\\oes"));
    damaged("half an escape", withReplaced("Shoes", "Shoes\\u00"));
    damaged("backslash at the end", withReplaced("Shoes", "Shoes\\"));
    damaged("sign in an escape", withReplaced("Shoes", "Shoes\\u+053"));
    QTest::newRow("newer format") << withReplaced("format 1", "format 2") << PresetTextKind::Newer;
    QTest::newRow("newer format of another form")
        << QByteArray("Corvanta preset, format 3\n{}") << PresetTextKind::Newer;
}

void TestPresetText::whatIsNoPresetIsTold()
{
    QFETCH(QByteArray, text);
    QFETCH(PresetTextKind, kind);
    PresetRecord record = shoes();
    QCOMPARE(readPresetText(text, &record), kind);
    QVERIFY(record == shoes());
}

void TestPresetText::everyCutPresetIsDamaged()
{
    const QByteArray text(wholePreset);
    // Without its last line end it is still whole.
    for (int size = 0; size < text.size() - 1; ++size) {
        PresetRecord record;
        QVERIFY2(readPresetText(text.left(size), &record) == PresetTextKind::Damaged,
                 text.left(size).constData());
    }
}

QTEST_GUILESS_MAIN(TestPresetText)
#include "tst_presettext.moc"
