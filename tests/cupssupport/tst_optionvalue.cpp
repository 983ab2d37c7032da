// Values as text: every form by its letters, foreign forms, and numbers that come back exactly.
#include "optionvalue.h"

#include <QtTest/QtTest>

#include <clocale>
#include <limits>
#include <random>

class TestOptionValue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valueIsWrittenAs_data();
    void valueIsWrittenAs();
    void numberIsReadFrom_data();
    void numberIsReadFrom();
    void switchIsReadFrom_data();
    void switchIsReadFrom();
    void everyNumberReadsBackEqual();
    void localeChangesNothing();
};

void TestOptionValue::valueIsWrittenAs_data()
{
    QTest::addColumn<int>("form");
    QTest::addColumn<double>("value");
    QTest::addColumn<QByteArray>("text");
    const auto row = [](ValueForm form, double value, const QByteArray &text) {
        QTest::addRow("%d, %g", int(form), value) << int(form) << value << text;
    };
    row(ValueForm::TrueFalse, 1, "True");
    row(ValueForm::TrueFalse, 0, "False");
    row(ValueForm::EnabledDisabled, 1, "Enabled");
    row(ValueForm::EnabledDisabled, 0, "Disabled");
    row(ValueForm::Choice, 0, "0");
    row(ValueForm::Choice, 65, "65");
    row(ValueForm::Custom, 0, "0");
    row(ValueForm::Custom, -0.0, "0");
    row(ValueForm::Custom, 12, "Custom.12");
    row(ValueForm::Custom, -2000, "Custom.-2000");
    row(ValueForm::Custom, 1.5, "Custom.1.5");
    row(ValueForm::Custom, 0.1, "Custom.0.1");
    row(ValueForm::Custom, -2.9, "Custom.-2.9");
    row(ValueForm::Code, 0, {});
    row(ValueForm::Code, 5, "5");
}

void TestOptionValue::valueIsWrittenAs()
{
    QFETCH(int, form);
    QFETCH(double, value);
    QFETCH(QByteArray, text);
    QCOMPARE(textOf(ValueForm(form), value), text);
    QCOMPARE(textOf(ValueForm(form), value).isNull(), text.isNull());
}

void TestOptionValue::numberIsReadFrom_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("number");
    QTest::addColumn<int>("whole");
    const auto row = [](const char *text, double number, int whole) {
        QTest::newRow(*text ? text : "empty") << QByteArray(text) << number << whole;
    };
    QTest::newRow("null") << QByteArray() << 0.0 << 0;
    row("", 0, 0);
    row("0", 0, 0);
    row("12", 12, 12);
    row("Custom.12", 12, 12);
    row("custom.-12", -12, -12);
    row("CUSTOM.+12", 12, 12);
    row("+-12", 0, 0);
    row("Custom.1.5", 1.5, 1);
    row("-2.9", -2.9, -2);
    row("Custom.1,5", 1, 1);
    row("1.5mm", 1.5, 1);
    row("Custom.", 0, 0);
    row("Customary", 0, 0);
    row("abc", 0, 0);
    row("nan", 0, 0);
    row("inf", 0, 0);
    row("1e999", 0, 0);
    row("1e3", 1000, 1000);
    row("99999", 99999, 99999);
    row("3000000000", 3e9, 2147483647);
    row("-3000000000", -3e9, -2147483647 - 1);
    row(" 5", 0, 0);
}

void TestOptionValue::numberIsReadFrom()
{
    QFETCH(QByteArray, text);
    QFETCH(double, number);
    QFETCH(int, whole);
    QCOMPARE(numberIn(text), number);
    QCOMPARE(wholeNumberIn(text), whole);
}

void TestOptionValue::switchIsReadFrom_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isOn");
    for (const char *const text : {"True", "true", "TRUE", "yes", "On", "Enabled", "enabled", "1"})
        QTest::newRow(text) << QByteArray(text) << true;
    for (const char *const text : {"False", "false", "no", "Disabled", "0", "2", "Truely", " True"})
        QTest::newRow(text) << QByteArray(text) << false;
    QTest::newRow("null") << QByteArray() << false;
}

void TestOptionValue::switchIsReadFrom()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, isOn);
    QCOMPARE(switchIn(text), isOn);
}

void TestOptionValue::everyNumberReadsBackEqual()
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> any(-2000, 2000);
    for (int i = 0; i < 20000; ++i) {
        const double value = any(random);
        QVERIFY(numberIn(textOf(ValueForm::Custom, value)) == value);
    }
    for (const double value :
         {std::numeric_limits<double>::denorm_min(), 1e-300, 0.1 + 0.2, -1999.9999999999998})
        QVERIFY(numberIn(textOf(ValueForm::Custom, value)) == value);
    for (int value = -2000; value <= 2000; ++value)
        QCOMPARE(textOf(ValueForm::Custom, value),
                 value == 0 ? QByteArray("0") : "Custom." + QByteArray::number(value));
}

void TestOptionValue::localeChangesNothing()
{
    const QByteArray before = std::setlocale(LC_ALL, nullptr);
    const bool hasComma = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    const QByteArray text = textOf(ValueForm::Custom, 1.5);
    const double number = numberIn("Custom.1.5");
    std::setlocale(LC_ALL, before.constData());
    QCOMPARE(text, QByteArray("Custom.1.5"));
    QCOMPARE(number, 1.5);
    if (!hasComma)
        QSKIP("no locale with a decimal comma here");
}

QTEST_APPLESS_MAIN(TestOptionValue)
#include "tst_optionvalue.moc"
