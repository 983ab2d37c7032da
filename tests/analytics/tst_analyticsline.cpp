// The text of one event: its format to the letter, and that nothing an application puts in breaks the line.
#include "analyticsline.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QTimeZone>
#include <QtTest/QTest>

class TestAnalyticsLine : public QObject
{
    Q_OBJECT

private slots:
    void aSettingChangeIsThisLine();
    void theTimeIsUtcWithMilliseconds_data();
    void theTimeIsUtcWithMilliseconds();
    void membersOfAnyKindAreKept();
    void lineEndsInTextStayOneLine_data();
    void lineEndsInTextStayOneLine();
    void everyCharacterOfUnicodeComesBack();
};

namespace {

const QDateTime morning(QDate(2024, 5, 17), QTime(8, 30, 0, 250), Qt::UTC);

QJsonObject parsed(const QByteArray &line)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(line, &error);
    return error.error == QJsonParseError::NoError ? document.object() : QJsonObject();
}

} // namespace

void TestAnalyticsLine::aSettingChangeIsThisLine()
{
    const QJsonObject hit{
        {QStringLiteral("settingName"), QStringLiteral("zoomLevel")},
        {QStringLiteral("newValue"), QStringLiteral("3")},
        {QStringLiteral("eventType"), QStringLiteral("Setting_Change")},
        {QStringLiteral("sessionId"), QString()},
    };
    QCOMPARE(analyticsLine(morning, 6, hit),
             QByteArrayLiteral("{\"time\":\"2024-05-17T08:30:00.250Z\",\"hitType\":6,\"hit\":{"
                               "\"eventType\":\"Setting_Change\",\"newValue\":\"3\",\"sessionId\":\"\","
                               "\"settingName\":\"zoomLevel\"}}\n"));
}

void TestAnalyticsLine::theTimeIsUtcWithMilliseconds_data()
{
    QTest::addColumn<QDateTime>("time");
    QTest::addColumn<QByteArray>("line");

    QTest::newRow("UTC") << morning
                         << QByteArray("{\"time\":\"2024-05-17T08:30:00.250Z\",\"hitType\":6,\"hit\":{}}\n");
    QTest::newRow("another zone") << morning.toOffsetFromUtc(
        5 * 3600 + 1800) << QByteArray("{\"time\":\"2024-05-17T08:30:00.250Z\",\"hitType\":6,\"hit\":{}}\n");
    QTest::newRow("whole second") << QDateTime(
        QDate(1999, 12, 31), QTime(23, 59, 59),
        Qt::UTC) << QByteArray("{\"time\":\"1999-12-31T23:59:59.000Z\",\"hitType\":6,\"hit\":{}}\n");
}

void TestAnalyticsLine::theTimeIsUtcWithMilliseconds()
{
    QFETCH(QDateTime, time);
    QFETCH(QByteArray, line);
    QCOMPARE(analyticsLine(time, 6, {}), line);
}

void TestAnalyticsLine::membersOfAnyKindAreKept()
{
    const QJsonObject hit{
        {QStringLiteral("a"), QJsonArray{1, 2.5, true, QJsonValue()}},
        {QStringLiteral("b"), QJsonObject{{QStringLiteral("c"), QStringLiteral("\"\\/")}}},
    };
    QCOMPARE(analyticsLine(morning, -1, hit),
             QByteArrayLiteral("{\"time\":\"2024-05-17T08:30:00.250Z\",\"hitType\":-1,\"hit\":{"
                               "\"a\":[1,2.5,true,null],\"b\":{\"c\":\"\\\"\\\\/\"}}}\n"));
}

void TestAnalyticsLine::lineEndsInTextStayOneLine_data()
{
    QTest::addColumn<ushort>("character");
    QTest::addColumn<QByteArray>("written");

    QTest::newRow("NUL") << ushort(0x0000) << QByteArray("\\u0000");
    QTest::newRow("line feed") << ushort(0x000a) << QByteArray("\\n");
    QTest::newRow("vertical tab") << ushort(0x000b) << QByteArray("\\u000b");
    QTest::newRow("form feed") << ushort(0x000c) << QByteArray("\\f");
    QTest::newRow("carriage return") << ushort(0x000d) << QByteArray("\\r");
    QTest::newRow("file separator") << ushort(0x001c) << QByteArray("\\u001c");
    QTest::newRow("group separator") << ushort(0x001d) << QByteArray("\\u001d");
    QTest::newRow("record separator") << ushort(0x001e) << QByteArray("\\u001e");
    QTest::newRow("next line") << ushort(0x0085) << QByteArray("\\u0085");
    QTest::newRow("line separator") << ushort(0x2028) << QByteArray("\\u2028");
    QTest::newRow("paragraph separator") << ushort(0x2029) << QByteArray("\\u2029");
}

void TestAnalyticsLine::lineEndsInTextStayOneLine()
{
    QFETCH(ushort, character);
    QFETCH(QByteArray, written);

    const QString text = QLatin1Char('<') + QChar(character) + QLatin1Char('>');
    const QJsonObject hit{{text, text}};
    const QByteArray line = analyticsLine(morning, 6, hit);
    QCOMPARE(line,
             QByteArray("{\"time\":\"2024-05-17T08:30:00.250Z\",\"hitType\":6,\"hit\":{\"<" + written
                        + ">\":\"<" + written + ">\"}}\n"));
    QCOMPARE(parsed(line).value(QLatin1String("hit")).toObject(), hit);
}

void TestAnalyticsLine::everyCharacterOfUnicodeComesBack()
{
    QString text;
    for (uint character = 0; character <= 0x10ffff; ++character)
        text += QString::fromUcs4(&character, 1);
    const QJsonObject hit{{QStringLiteral("text"), text}};

    const QByteArray line = analyticsLine(morning, 6, hit);
    QCOMPARE(line.count('\n'), 1);
    QVERIFY(line.endsWith("}\n"));
    // Surrogates without their other half are in it too: no text in UTF-8, but text that an application can
    // hold.
    QVERIFY(parsed(line).value(QLatin1String("hit")).toObject() == hit);
}

QTEST_APPLESS_MAIN(TestAnalyticsLine)
#include "tst_analyticsline.moc"
