// Reading one value of an INI file past every cache.
#include "storedvalue.h"

#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

class TestStoredValue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valueOfTheRightSectionIsFound_data();
    void valueOfTheRightSectionIsFound();
    void missingFileHoldsNothing();
};

void TestStoredValue::valueOfTheRightSectionIsFound_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("value");
    QTest::newRow("only key") << QByteArray("[display]\nbrightnessLevel=3\n") << QStringLiteral("3");
    QTest::newRow("no last line end") << QByteArray("[display]\nbrightnessLevel=3") << QStringLiteral("3");
    QTest::newRow("among others") << QByteArray("[display]\na=1\nbrightnessLevel=4\nb=2\n")
                                  << QStringLiteral("4");
    QTest::newRow("same key elsewhere")
        << QByteArray("[home]\nbrightnessLevel=9\n[display]\nbrightnessLevel=5\n[zoo]\nbrightnessLevel=8\n")
        << QStringLiteral("5");
    QTest::newRow("only elsewhere") << QByteArray("[home]\nbrightnessLevel=9\n[display]\na=1\n") << QString();
    QTest::newRow("longer key") << QByteArray("[display]\nbrightnessLevels=9\n") << QString();
    QTest::newRow("empty file") << QByteArray() << QString();
}

void TestStoredValue::valueOfTheRightSectionIsFound()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, value);
    const QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("settings.ini")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    QCOMPARE(storedValue(file.fileName(), QStringLiteral("display"), QStringLiteral("brightnessLevel")),
             value);
}

void TestStoredValue::missingFileHoldsNothing()
{
    QCOMPARE(
        storedValue(QStringLiteral("/nonexistent/settings.ini"), QStringLiteral("a"), QStringLiteral("b")),
        QString());
}

QTEST_APPLESS_MAIN(TestStoredValue)
#include "tst_storedvalue.moc"
