// Which values and texts stand for the military ship mode.
#include "shipmode.h"

#include <QtTest/QtTest>

#include <limits>

class TestShipModeText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTwoIsMilitary_data();
    void onlyTwoIsMilitary();
};

void TestShipModeText::onlyTwoIsMilitary_data()
{
    QTest::addColumn<QVariant>("mode");
    QTest::addColumn<bool>("isMilitary");

    const auto text = [](const char *name, const char *value, bool isMilitary) {
        QTest::newRow(name) << QVariant(QString::fromUtf8(value)) << isMilitary;
    };
    text("digit", "2", true);
    text("digit and line end", "2\n", true);
    text("white space around", " \t\r\n2\v\f \n", true);
    text("no-break space around", "\u00a02\u00a0", true);
    text("sign", "+2", true);
    text("leading zeros", "002", true);
    text("one", "1\n", false);
    text("zero", "0\n", false);
    text("three", "3\n", false);
    text("negative", "-2\n", false);
    text("twenty-two", "22\n", false);
    text("nothing", "", false);
    text("line end alone", "\n", false);
    text("word", "military\n", false);
    text("digit and word", "2 military\n", false);
    text("two lines", "2\n2\n", false);
    text("two digits apart", "2 2", false);
    text("name and value", "zbShip=2\n", false);
    text("fraction", "2.0\n", false);
    text("exponent", "2e0", false);
    text("hexadecimal", "0x2", false);
    text("group separator", "2,", false);
    text("space after the sign", "+ 2", false);
    text("Arabic-Indic two", "\u0662", false);
    text("wide two", "\uff12", false);
    text("two beyond 32 bits", "4294967298", false);
    text("two beyond 64 bits", "18446744073709551618", false);

    const auto value = [](const char *name, const QVariant &mode, bool isMilitary) {
        QTest::newRow(name) << mode << isMilitary;
    };
    value("int 2", 2, true);
    value("int 0", 0, false);
    value("int 1", 1, false);
    value("int 3", 3, false);
    value("int -2", -2, false);
    value("int, largest", std::numeric_limits<int>::max(), false);
    value("int, smallest", std::numeric_limits<int>::min(), false);
    value("uint 2", 2u, true);
    value("long 2", Q_INT64_C(2), true);
    value("long, two beyond 32 bits", Q_INT64_C(0x100000002), false);
    value("unsigned long 2", Q_UINT64_C(2), true);
    value("unsigned long, largest", std::numeric_limits<quint64>::max(), false);
    value("short 2", QVariant::fromValue<short>(2), true);
    value("unsigned short 2", QVariant::fromValue<ushort>(2), true);
    value("byte 2", QVariant::fromValue<uchar>(2), true);
    value("double 2", 2.0, true);
    value("double 3", 3.0, false);
    value("double that rounds up to 2", 1.5, true);
    value("double that rounds down to 2", 2.4, true);
    value("double that rounds up to 3", 2.5, false);
    value("double that rounds down to 1", 1.4, false);
    value("double, two beyond 32 bits", 4294967298.0, false);
    value("bool", true, false);
    value("bytes", QByteArray("2"), true);
    value("list", QStringList(QStringLiteral("2")), false);
    value("map", QVariantMap({{QStringLiteral("mode"), 2}}), false);
    value("invalid", QVariant(), false);
}

void TestShipModeText::onlyTwoIsMilitary()
{
    QFETCH(QVariant, mode);
    QFETCH(bool, isMilitary);
    QCOMPARE(isMilitaryShipMode(mode), isMilitary);
}

QTEST_APPLESS_MAIN(TestShipModeText)
#include "tst_shipmodetext.moc"
