// The texts under which keyboard layouts are stored.
#include "layoutcode.h"

#include <zblocalelanguages.h>

#include <QtTest/QtTest>

class TestLayoutCode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void codeIsTheXkbName_data();
    void codeIsTheXkbName();
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
