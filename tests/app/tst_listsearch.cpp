// What a person finds by typing.
#include "listsearch.h"

#include <QtTest/QtTest>

class TestListSearch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typingFindsEntries_data();
    void typingFindsEntries();
};

void TestListSearch::typingFindsEntries_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVector<int>>("positions");
    QTest::newRow("nothing typed") << QString() << QVector<int>{0, 1, 2, 3, 4, 5};
    QTest::newRow("blanks typed") << QStringLiteral("  ") << QVector<int>{0, 1, 2, 3, 4, 5};
    QTest::newRow("beginnings first") << QStringLiteral("german") << QVector<int>{2, 3, 5};
    QTest::newRow("capital letters") << QStringLiteral("GERMAN") << QVector<int>{2, 3, 5};
    QTest::newRow("blanks around") << QStringLiteral(" german  ") << QVector<int>{2, 3, 5};
    QTest::newRow("words in any order") << QStringLiteral("keys german") << QVector<int>{3};
    QTest::newRow("without accents") << QStringLiteral("francais") << QVector<int>{1};
    QTest::newRow("with accents") << QStringLiteral("FRANÇAIS") << QVector<int>{1};
    QTest::newRow("Cyrillic") << QStringLiteral("русс") << QVector<int>{4};
    QTest::newRow("brackets are text") << QStringLiteral("(no") << QVector<int>{3};
    QTest::newRow("no pattern") << QStringLiteral(".*") << QVector<int>{};
    QTest::newRow("not there") << QStringLiteral("klingon") << QVector<int>{};
}

void TestListSearch::typingFindsEntries()
{
    QFETCH(QString, text);
    QFETCH(QVector<int>, positions);
    const QStringList names = {QStringLiteral("Akan"),    QStringLiteral("Français (Québec)"),
                               QStringLiteral("German"),  QStringLiteral("German (no dead keys)"),
                               QStringLiteral("Русский"), QStringLiteral("Turkish (Germany)")};
    QCOMPARE(matchingPositions(names, text), positions);
}

QTEST_APPLESS_MAIN(TestListSearch)
#include "tst_listsearch.moc"
