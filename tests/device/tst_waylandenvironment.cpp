// The XKB lines in the text of the compositor's environment file.
#include "waylandenvironment.h"

#include <QtTest/QtTest>

class TestWaylandEnvironment : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void missingKeysAreAppended_data();
    void missingKeysAreAppended();
    void keyTakesEverythingAfterItAway_data();
    void keyTakesEverythingAfterItAway();
    void variantBeforeLayoutSwallowsTheLayout_data();
    void variantBeforeLayoutSwallowsTheLayout();
    void lessThanSignHoldsTheExpression_data();
    void lessThanSignHoldsTheExpression();
    void keyThatIsNotMatchedStays_data();
    void keyThatIsNotMatchedStays();
    void namesAreTakenAsTheyStand_data();
    void namesAreTakenAsTheyStand();
    void secondCallReplacesTheFirst();
    void longTextIsReplacedToo_data();
    void longTextIsReplacedToo();

private:
    static void addColumns();
    static void compare();
};

namespace {

void row(const char *name, const char *content, const char *layout, const char *variant, const char *result)
{
    QTest::newRow(name) << QString::fromUtf8(content) << QString::fromUtf8(layout)
                        << QString::fromUtf8(variant) << QString::fromUtf8(result);
}

} // namespace

void TestWaylandEnvironment::addColumns()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QString>("variant");
    QTest::addColumn<QString>("result");
}

void TestWaylandEnvironment::compare()
{
    QFETCH(QString, content);
    QFETCH(QString, layout);
    QFETCH(QString, variant);
    QFETCH(QString, result);
    QCOMPARE(withKeyboardLayout(content, layout, variant), result);
}

void TestWaylandEnvironment::missingKeysAreAppended_data()
{
    addColumns();
    row("empty text", "", "de", "nodeadkeys", "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("one other line", "A=1\n", "de", "nodeadkeys",
        "A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("other lines", "# compositor\nXDG_SESSION_TYPE=wayland\n\nA=1\n", "us", "dvorak",
        "# compositor\nXDG_SESSION_TYPE=wayland\n\nA=1\nXKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=dvorak\n");
    row("empty variant", "A=1\n", "de", "", "A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("both names empty", "A=1\n", "", "", "A=1\nXKB_DEFAULT_LAYOUT=\nXKB_DEFAULT_VARIANT=\n");
    row("both names empty, empty text", "", "", "", "XKB_DEFAULT_LAYOUT=\nXKB_DEFAULT_VARIANT=\n");
    row("no last line end", "A=1", "de", "", "A=1XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("line ends alone", "\n\n", "de", "", "\n\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("CRLF", "A=1\r\n", "de", "", "A=1\r\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("lower case is another key", "xkb_default_layout=us\n", "de", "",
        "xkb_default_layout=us\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("mixed case is another key", "Xkb_Default_Layout=us\nXkb_Default_Variant=x\n", "de", "",
        "Xkb_Default_Layout=us\nXkb_Default_Variant=x\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("related keys", "XKB_DEFAULT_MODEL=pc105\nXKB_DEFAULT_OPTIONS=caps:none\n", "de", "",
        "XKB_DEFAULT_MODEL=pc105\nXKB_DEFAULT_OPTIONS=caps:none\nXKB_DEFAULT_LAYOUT=de\n"
        "XKB_DEFAULT_VARIANT=\n");
    row("less-than sign", "A=<1>\n", "de", "neo", "A=<1>\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=neo\n");
    row("non-Latin text", "NAME=日本 Ж é 😀\n", "jp", "kana",
        "NAME=日本 Ж é 😀\nXKB_DEFAULT_LAYOUT=jp\nXKB_DEFAULT_VARIANT=kana\n");
}

void TestWaylandEnvironment::missingKeysAreAppended()
{
    compare();
}

void TestWaylandEnvironment::keyTakesEverythingAfterItAway_data()
{
    addColumns();
    row("layout, variant, other lines around",
        "A=1\nXKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=dvorak\nB=2\n", "de", "nodeadkeys",
        "A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("layout and variant alone", "XKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=\n", "fr", "bepo",
        "XKB_DEFAULT_LAYOUT=fr\nXKB_DEFAULT_VARIANT=bepo\n");
    row("other line between", "XKB_DEFAULT_LAYOUT=us\nA=1\nXKB_DEFAULT_VARIANT=intl\nB=2\n", "fr", "",
        "XKB_DEFAULT_LAYOUT=fr\nXKB_DEFAULT_VARIANT=\n");
    row("layout alone", "XKB_DEFAULT_LAYOUT=us\n", "de", "neo",
        "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=neo\n");
    row("layout first, then another", "XKB_DEFAULT_LAYOUT=us\nA=1\n", "de", "",
        "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("layout last", "A=1\nXKB_DEFAULT_LAYOUT=us\n", "de", "",
        "A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("layout twice", "XKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_LAYOUT=gb\nA=1\n", "de", "",
        "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("both twice",
        "A=1\nXKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=x\nXKB_DEFAULT_LAYOUT=gb\nXKB_DEFAULT_VARIANT=y\n",
        "de", "neo", "A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=neo\n");
    row("empty values", "XKB_DEFAULT_LAYOUT=\nXKB_DEFAULT_VARIANT=\n", "de", "neo",
        "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=neo\n");
    row("to empty values", "A=1\nXKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=intl\n", "", "",
        "A=1\nXKB_DEFAULT_LAYOUT=\nXKB_DEFAULT_VARIANT=\n");
    row("empty lines after", "XKB_DEFAULT_LAYOUT=us\n\n\n\n", "de", "",
        "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("line without its end after", "XKB_DEFAULT_LAYOUT=us\nA=1\nB=2", "de", "",
        "XKB_DEFAULT_LAYOUT=de\nB=2XKB_DEFAULT_VARIANT=\n");
    row("variant without its end after layout", "XKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=intl", "de",
        "neo", "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=intl");
    row("CRLF", "A=1\r\nXKB_DEFAULT_LAYOUT=us\r\nXKB_DEFAULT_VARIANT=\r\nB=2\r\n", "de", "neo",
        "A=1\r\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=neo\n");
    row("key inside a comment", "# XKB_DEFAULT_LAYOUT=us is usual\nA=1\n", "de", "neo",
        "# XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=neo\n");
    row("key behind export", "export XKB_DEFAULT_LAYOUT=us\nA=1\n", "de", "",
        "export XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("key as the end of another", "MY_XKB_DEFAULT_LAYOUT=us\nA=1\n", "de", "",
        "MY_XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("key without = before the line", "XKB_DEFAULT_LAYOUT\nXKB_DEFAULT_LAYOUT=us\nA=1\n", "de", "",
        "XKB_DEFAULT_LAYOUT\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("Unicode line separators", "A=1\nXKB_DEFAULT_LAYOUT=us\u2028B\u0085C\u2029\vD\fE\nF=2\n", "de", "",
        "A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("non-Latin text", "日=Ж\nXKB_DEFAULT_LAYOUT=é😀\nB=日\n", "de", "",
        "日=Ж\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
}

void TestWaylandEnvironment::keyTakesEverythingAfterItAway()
{
    compare();
}

void TestWaylandEnvironment::variantBeforeLayoutSwallowsTheLayout_data()
{
    addColumns();
    row("variant, layout", "XKB_DEFAULT_VARIANT=dvorak\nXKB_DEFAULT_LAYOUT=us\n", "de", "nodeadkeys",
        "XKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("other lines around", "A=1\nXKB_DEFAULT_VARIANT=dvorak\nB=2\nXKB_DEFAULT_LAYOUT=us\nC=3\n", "de",
        "nodeadkeys", "A=1\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("variant alone", "XKB_DEFAULT_VARIANT=dvorak\n", "de", "neo", "XKB_DEFAULT_VARIANT=neo\n");
    row("variant alone, other lines around", "A=1\nXKB_DEFAULT_VARIANT=dvorak\nB=2\n", "de", "",
        "A=1\nXKB_DEFAULT_VARIANT=\n");
    // The layout's line ends the text by then, so that there is a line end for the expression to reach.
    row("variant without its line end", "A=1\nXKB_DEFAULT_VARIANT=dvorak", "de", "neo",
        "A=1\nXKB_DEFAULT_VARIANT=neo\n");
    row("variant, layout, variant", "XKB_DEFAULT_VARIANT=x\nXKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=y\n",
        "de", "neo", "XKB_DEFAULT_VARIANT=neo\n");
    row("layout, variant, layout", "XKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=x\nXKB_DEFAULT_LAYOUT=gb\n",
        "de", "neo", "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=neo\n");
    row("variant in the layout's value", "XKB_DEFAULT_LAYOUT=XKB_DEFAULT_VARIANT=x\n", "de", "neo",
        "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=neo\n");
    row("layout in the variant's value", "XKB_DEFAULT_VARIANT=XKB_DEFAULT_LAYOUT=x\n", "de", "neo",
        "XKB_DEFAULT_VARIANT=neo\n");
    row("variant without = before layout", "XKB_DEFAULT_VARIANT\nXKB_DEFAULT_LAYOUT=us\n", "de", "neo",
        "XKB_DEFAULT_VARIANT\nXKB_DEFAULT_LAYOUT=de\n");
    row("CRLF", "XKB_DEFAULT_VARIANT=x\r\nXKB_DEFAULT_LAYOUT=us\r\n", "de", "neo",
        "XKB_DEFAULT_VARIANT=neo\n");
}

void TestWaylandEnvironment::variantBeforeLayoutSwallowsTheLayout()
{
    compare();
}

void TestWaylandEnvironment::lessThanSignHoldsTheExpression_data()
{
    addColumns();
    row("before the keys", "A=<1\nXKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=x\nB=2\n", "de", "neo",
        "A=<1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=neo\n");
    row("after the keys", "XKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=x\nA=1\nB=<2\nC=3\n", "de", "neo",
        "XKB_DEFAULT_LAYOUT=de\nB=<2\nC=3\nXKB_DEFAULT_VARIANT=neo\n");
    row("between the keys", "XKB_DEFAULT_LAYOUT=us\nA=<1\nXKB_DEFAULT_VARIANT=x\nB=2\n", "de", "neo",
        "XKB_DEFAULT_LAYOUT=de\nA=<1\nXKB_DEFAULT_VARIANT=neo\n");
    row("between the keys, variant first", "XKB_DEFAULT_VARIANT=x\n<\nXKB_DEFAULT_LAYOUT=us\nB=2\n", "de",
        "neo", "XKB_DEFAULT_VARIANT=neo\n<\nXKB_DEFAULT_LAYOUT=de\n");
    row("at the start of a line", "XKB_DEFAULT_LAYOUT=us\nA=1\n<B=2\nC=3\n", "de", "",
        "XKB_DEFAULT_LAYOUT=de\n<B=2\nC=3\nXKB_DEFAULT_VARIANT=\n");
    row("in the key's own value", "XKB_DEFAULT_LAYOUT=u<s\nA=1\n", "de", "",
        "XKB_DEFAULT_LAYOUT=u<s\nA=1\nXKB_DEFAULT_VARIANT=\n");
    row("directly after =", "XKB_DEFAULT_LAYOUT=<us\nA=1\n", "de", "",
        "XKB_DEFAULT_LAYOUT=<us\nA=1\nXKB_DEFAULT_VARIANT=\n");
    row("directly after the line end", "XKB_DEFAULT_LAYOUT=us\n<", "de", "",
        "XKB_DEFAULT_LAYOUT=de\n<XKB_DEFAULT_VARIANT=\n");
    row("every match is replaced", "XKB_DEFAULT_LAYOUT=us\nA=1\n<B=2\nXKB_DEFAULT_LAYOUT=gb\nC=3\n", "fr",
        "bepo", "XKB_DEFAULT_LAYOUT=fr\n<B=2\nXKB_DEFAULT_LAYOUT=fr\nXKB_DEFAULT_VARIANT=bepo\n");
    row("three matches", "XKB_DEFAULT_LAYOUT=1\n<XKB_DEFAULT_LAYOUT=2\n<XKB_DEFAULT_LAYOUT=3\n", "de", "",
        "XKB_DEFAULT_LAYOUT=de\n<XKB_DEFAULT_LAYOUT=de\n<XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("unmatched, then matched", "XKB_DEFAULT_LAYOUT=1<2\nXKB_DEFAULT_LAYOUT=3\nA=1\n", "de", "",
        "XKB_DEFAULT_LAYOUT=1<2\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    row("greater-than sign does not", "XKB_DEFAULT_LAYOUT=us\nA=>1\nB=2\n", "de", "",
        "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    // The layout that step one writes is what the variant's expression meets.
    row("in the new layout", "XKB_DEFAULT_VARIANT=x\nXKB_DEFAULT_LAYOUT=us\n", "<de", "neo",
        "XKB_DEFAULT_VARIANT=neo\nXKB_DEFAULT_LAYOUT=<de\n");
}

void TestWaylandEnvironment::lessThanSignHoldsTheExpression()
{
    compare();
}

void TestWaylandEnvironment::keyThatIsNotMatchedStays_data()
{
    addColumns();
    row("layout without a line end", "A=1\nXKB_DEFAULT_LAYOUT=us", "de", "neo",
        "A=1\nXKB_DEFAULT_LAYOUT=usXKB_DEFAULT_VARIANT=neo\n");
    row("key without =", "XKB_DEFAULT_LAYOUT\nA=1\n", "de", "neo",
        "XKB_DEFAULT_LAYOUT\nA=1\nXKB_DEFAULT_VARIANT=neo\n");
    row("both keys without =", "XKB_DEFAULT_LAYOUT\nXKB_DEFAULT_VARIANT\n", "de", "neo",
        "XKB_DEFAULT_LAYOUT\nXKB_DEFAULT_VARIANT\n");
    row("blank before =", "XKB_DEFAULT_LAYOUT =us\nXKB_DEFAULT_VARIANT =x\n", "de", "neo",
        "XKB_DEFAULT_LAYOUT =us\nXKB_DEFAULT_VARIANT =x\n");
    row("key in a comment without =", "# XKB_DEFAULT_LAYOUT and XKB_DEFAULT_VARIANT are set elsewhere\n",
        "de", "neo", "# XKB_DEFAULT_LAYOUT and XKB_DEFAULT_VARIANT are set elsewhere\n");
    row("longer key", "XKB_DEFAULT_LAYOUTS=us,de\nXKB_DEFAULT_VARIANTS=,neo\n", "fr", "bepo",
        "XKB_DEFAULT_LAYOUTS=us,de\nXKB_DEFAULT_VARIANTS=,neo\n");
    row("carriage returns alone", "XKB_DEFAULT_LAYOUT=us\rXKB_DEFAULT_VARIANT=x\r", "de", "neo",
        "XKB_DEFAULT_LAYOUT=us\rXKB_DEFAULT_VARIANT=x\r");
}

void TestWaylandEnvironment::keyThatIsNotMatchedStays()
{
    compare();
}

void TestWaylandEnvironment::namesAreTakenAsTheyStand_data()
{
    addColumns();
    const char *const both = "A=1\nXKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=x\n";
    row("backslash and digit", both, "\\1", "\\0", "A=1\nXKB_DEFAULT_LAYOUT=\\1\nXKB_DEFAULT_VARIANT=\\0\n");
    row("backslash and digit in a variant", "A=1\nXKB_DEFAULT_VARIANT=x\n", "de", "\\1",
        "A=1\nXKB_DEFAULT_VARIANT=\\1\n");
    row("two digits", both, "\\10a", "\\\\1", "A=1\nXKB_DEFAULT_LAYOUT=\\10a\nXKB_DEFAULT_VARIANT=\\\\1\n");
    row("backslash alone", both, "\\", "a\\b", "A=1\nXKB_DEFAULT_LAYOUT=\\\nXKB_DEFAULT_VARIANT=a\\b\n");
    row("dollar", both, "$1", "${0}", "A=1\nXKB_DEFAULT_LAYOUT=$1\nXKB_DEFAULT_VARIANT=${0}\n");
    row("place marker", both, "%1", "%2", "A=1\nXKB_DEFAULT_LAYOUT=%1\nXKB_DEFAULT_VARIANT=%2\n");
    row("pattern", both, "(.*)[^<]+?", "a|b",
        "A=1\nXKB_DEFAULT_LAYOUT=(.*)[^<]+?\nXKB_DEFAULT_VARIANT=a|b\n");
    row("several layouts", both, "us,de", ",neo",
        "A=1\nXKB_DEFAULT_LAYOUT=us,de\nXKB_DEFAULT_VARIANT=,neo\n");
    row("blanks", both, " d e ", "\t", "A=1\nXKB_DEFAULT_LAYOUT= d e \nXKB_DEFAULT_VARIANT=\t\n");
    row("non-Latin", both, "日", "Ж😀", "A=1\nXKB_DEFAULT_LAYOUT=日\nXKB_DEFAULT_VARIANT=Ж😀\n");
    row("appended as they stand", "", "\\1", "%1\\2", "XKB_DEFAULT_LAYOUT=\\1\nXKB_DEFAULT_VARIANT=%1\\2\n");
    // A name is not looked at again in its own step, but the variant's step sees what the layout's wrote.
    row("own key in the layout", both, "XKB_DEFAULT_LAYOUT=a", "neo",
        "A=1\nXKB_DEFAULT_LAYOUT=XKB_DEFAULT_LAYOUT=a\nXKB_DEFAULT_VARIANT=neo\n");
    row("variant's key in the layout", both, "XKB_DEFAULT_VARIANT=a", "neo",
        "A=1\nXKB_DEFAULT_LAYOUT=XKB_DEFAULT_VARIANT=neo\n");
}

void TestWaylandEnvironment::namesAreTakenAsTheyStand()
{
    compare();
}

void TestWaylandEnvironment::secondCallReplacesTheFirst()
{
    const QString once =
        withKeyboardLayout(QStringLiteral("A=1\n"), QStringLiteral("de"), QStringLiteral("neo"));
    QCOMPARE(once, QStringLiteral("A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=neo\n"));
    const QString twice = withKeyboardLayout(once, QStringLiteral("fr"), QString());
    QCOMPARE(twice, QStringLiteral("A=1\nXKB_DEFAULT_LAYOUT=fr\nXKB_DEFAULT_VARIANT=\n"));
    QCOMPARE(withKeyboardLayout(twice, QStringLiteral("fr"), QString()), twice);
}

void TestWaylandEnvironment::longTextIsReplacedToo_data()
{
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("kept");
    const QString letters(5 * 1024 * 1024, QLatin1Char('a'));
    QTest::newRow("one long line after") << letters + QLatin1Char('\n') << QString();
    QTest::newRow("one long line without its end") << letters << letters;
    QTest::newRow("many lines") << QStringLiteral("A=1\n").repeated(1024 * 1024) << QString();
}

void TestWaylandEnvironment::longTextIsReplacedToo()
{
    QFETCH(QString, after);
    QFETCH(QString, kept);
    const QString result = withKeyboardLayout(QStringLiteral("B=2\nXKB_DEFAULT_LAYOUT=us\n") + after,
                                              QStringLiteral("de"), QStringLiteral("neo"));
    const QString expected =
        QStringLiteral("B=2\nXKB_DEFAULT_LAYOUT=de\n") + kept + QStringLiteral("XKB_DEFAULT_VARIANT=neo\n");
    // Not compared by QCOMPARE, which would print both.
    QVERIFY2(result == expected, qPrintable(QStringLiteral("%1 characters").arg(result.size())));
}

QTEST_APPLESS_MAIN(TestWaylandEnvironment)
#include "tst_waylandenvironment.moc"
