// The texts under which keyboard layouts are stored, and what of the compositor's environment file they are.
#include "layoutcode.h"

#include <zblocalelanguages.h>

#include <QtTest/QtTest>

class TestLayoutCode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void codeIsTheXkbName_data();
    void codeIsTheXkbName();
    void environmentTellsTheLayout_data();
    void environmentTellsTheLayout();
    void everyLayoutHasACodeOfItsOwn();
    void codesStandAtThePositionsOfTheNames_data();
    void codesStandAtThePositionsOfTheNames();
};

void TestLayoutCode::codeIsTheXkbName_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QString>("variant");
    QTest::newRow("de") << QStringLiteral("de") << QString();
    QTest::newRow("de(nodeadkeys)") << QStringLiteral("de") << QStringLiteral("nodeadkeys");
    QTest::newRow("") << QString() << QString();
}

void TestLayoutCode::codeIsTheXkbName()
{
    QFETCH(QString, layout);
    QFETCH(QString, variant);
    QCOMPARE(layoutCode(layout, variant), QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(layoutCode(QString(), QStringLiteral("nodeadkeys")), QString());
}

void TestLayoutCode::environmentTellsTheLayout_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("code");
    const auto row = [](const char *name, const char *text, const char *code) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(code);
    };
    row("nothing", "", "");
    row("layout alone", "XKB_DEFAULT_LAYOUT=de\n", "de");
    row("empty variant", "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n", "de");
    row("variant", "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n", "de(nodeadkeys)");
    row("variant first", "XKB_DEFAULT_VARIANT=dvorak\nA=1\nXKB_DEFAULT_LAYOUT=us\n", "us(dvorak)");
    row("variant without layout", "XKB_DEFAULT_VARIANT=dvorak\n", "");
    row("empty layout", "XKB_DEFAULT_LAYOUT=\nXKB_DEFAULT_VARIANT=dvorak\n", "");
    row("repeated, the last counts", "XKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_LAYOUT=de\n", "de");
    row("no last line end", "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys", "de(nodeadkeys)");
    row("two lines that have become one", "XKB_DEFAULT_LAYOUT=usXKB_DEFAULT_VARIANT=\n",
        "usXKB_DEFAULT_VARIANT=");
    row("CRLF", "XKB_DEFAULT_LAYOUT=de\r\nXKB_DEFAULT_VARIANT=nodeadkeys\r\n", "de(nodeadkeys)");
    row("comments", "#XKB_DEFAULT_LAYOUT=us\n; XKB_DEFAULT_LAYOUT=fr\n", "");
    row("other keys", "MY_XKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_LAYOUTS=fr\nXKB_DEFAULT_LAYOUT\n", "");
    row("several at once", "XKB_DEFAULT_LAYOUT=us,de\nXKB_DEFAULT_VARIANT=,nodeadkeys\n",
        "us,de(,nodeadkeys)");
    row("not Latin", "A=ö\nXKB_DEFAULT_LAYOUT=ж\n", "ж");
}

void TestLayoutCode::environmentTellsTheLayout()
{
    QFETCH(QString, text);
    QFETCH(QString, code);
    QCOMPARE(layoutInEnvironment(text), code);
}

void TestLayoutCode::everyLayoutHasACodeOfItsOwn()
{
    QStringList codes = layoutCodes();
    QVERIFY(!codes.contains(QString()));
    const int count = codes.size();
    QCOMPARE(count, ZBLocaleLanguages(nullptr).getTranslatedKeyboardLayoutList().size());
    QCOMPARE(codes.removeDuplicates(), 0);
}

void TestLayoutCode::codesStandAtThePositionsOfTheNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("de") << QStringLiteral("German");
    QTest::newRow("de(nodeadkeys)") << QStringLiteral("German (no dead keys)");
    QTest::newRow("us") << QStringLiteral("English (US)");
    QTest::newRow("ru") << QStringLiteral("Russian");
}

void TestLayoutCode::codesStandAtThePositionsOfTheNames()
{
    QFETCH(QString, name);
    const int position = layoutCodes().indexOf(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(ZBLocaleLanguages(nullptr).getTranslatedKeyboardLayoutList().value(position), name);
}

QTEST_GUILESS_MAIN(TestLayoutCode)
#include "tst_layoutcode.moc"
