// Which values the daemon accepts, value by value.
#include "values.h"

#include <QtTest/QtTest>

class DaemonValuesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyValueHasItsInitialOne_data();
    void everyValueHasItsInitialOne();
    void numbersAreAcceptedWithinTheirRange_data();
    void numbersAreAcceptedWithinTheirRange();
    void aComplaintNamesTheRange();
    void dateFormatsAreCheckedLetterByLetter_data();
    void dateFormatsAreCheckedLetterByLetter();
};

Q_DECLARE_METATYPE(Value)

void DaemonValuesTest::everyValueHasItsInitialOne_data()
{
    QTest::addColumn<Value>("value");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("initial");
    QTest::newRow("dim time") << Value::DisplayDimTime << QStringLiteral("displayDimTime") << QVariant(2);
    QTest::newRow("power off time") << Value::DisplayPowerOffTime << QStringLiteral("displayPowerOffTime")
                                    << QVariant(11);
    QTest::newRow("brightness") << Value::DisplayBrightness << QStringLiteral("displayBrightness")
                                << QVariant(7U);
    QTest::newRow("update check") << Value::AutomaticUpdateCheck << QStringLiteral("automaticUpdateCheck")
                                  << QVariant(true);
    QTest::newRow("24 hours") << Value::TwentyFourHourMode << QStringLiteral("twentyFourHourMode")
                              << QVariant(false);
    QTest::newRow("date format") << Value::DateFormat << QStringLiteral("dateFormat")
                                 << QVariant(QStringLiteral("MM/dd/yy"));
    QTest::newRow("ship mode") << Value::ShipMode << QStringLiteral("shipMode") << QVariant(0);
}

void DaemonValuesTest::everyValueHasItsInitialOne()
{
    QFETCH(Value, value);
    QTEST(ruleOf(value).name, "name");
    QTEST(ruleOf(value).initial, "initial");
    QCOMPARE(ruleOf(value).complaint(ruleOf(value).initial), QString());
    QCOMPARE(valueRules().size(), size_t(7));
}

void DaemonValuesTest::numbersAreAcceptedWithinTheirRange_data()
{
    QTest::addColumn<Value>("value");
    QTest::addColumn<QVariant>("number");
    QTest::addColumn<bool>("isAccepted");
    for (const Value value : {Value::DisplayDimTime, Value::DisplayPowerOffTime}) {
        const char *const name = value == Value::DisplayDimTime ? "dim time" : "power off time";
        QTest::addRow("%s: the first", name) << value << QVariant(0) << true;
        QTest::addRow("%s: in between", name) << value << QVariant(5) << true;
        QTest::addRow("%s: the last, never", name) << value << QVariant(11) << true;
        QTest::addRow("%s: below", name) << value << QVariant(-1) << false;
        QTest::addRow("%s: above", name) << value << QVariant(12) << false;
        QTest::addRow("%s: smallest integer", name) << value << QVariant(INT_MIN) << false;
        QTest::addRow("%s: largest integer", name) << value << QVariant(INT_MAX) << false;
    }
    QTest::newRow("brightness: lowest") << Value::DisplayBrightness << QVariant(1U) << true;
    QTest::newRow("brightness: in between") << Value::DisplayBrightness << QVariant(5U) << true;
    QTest::newRow("brightness: highest") << Value::DisplayBrightness << QVariant(9U) << true;
    QTest::newRow("brightness: below") << Value::DisplayBrightness << QVariant(0U) << false;
    QTest::newRow("brightness: above") << Value::DisplayBrightness << QVariant(10U) << false;
    QTest::newRow("brightness: largest integer") << Value::DisplayBrightness << QVariant(UINT_MAX) << false;
    QTest::newRow("ship mode: negative") << Value::ShipMode << QVariant(-1) << true;
    QTest::newRow("ship mode: largest integer") << Value::ShipMode << QVariant(INT_MAX) << true;
}

void DaemonValuesTest::numbersAreAcceptedWithinTheirRange()
{
    QFETCH(Value, value);
    QFETCH(QVariant, number);
    QTEST(ruleOf(value).complaint(number).isEmpty(), "isAccepted");
}

void DaemonValuesTest::aComplaintNamesTheRange()
{
    QCOMPARE(ruleOf(Value::DisplayBrightness).complaint(10U),
             QStringLiteral("the brightness is 1 to 9, not 10"));
    QCOMPARE(ruleOf(Value::DisplayDimTime).complaint(-3),
             QStringLiteral("the time is the index of a choice, 0 to 11, not -3"));
    QCOMPARE(ruleOf(Value::DisplayPowerOffTime).complaint(12),
             QStringLiteral("the time is the index of a choice, 0 to 11, not 12"));
}

void DaemonValuesTest::dateFormatsAreCheckedLetterByLetter_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("complaint");
    const auto accepted = [](const char *name, const QString &format) {
        QTest::newRow(name) << format << QString();
    };
    accepted("month first", QStringLiteral("MM/dd/yy"));
    accepted("day first", QStringLiteral("dd.MM.yyyy"));
    accepted("year first", QStringLiteral("yyyy-MM-dd"));
    accepted("single digits", QStringLiteral("d/M/yy"));
    accepted("names", QStringLiteral("dddd, d MMMM yyyy"));
    accepted("short names", QStringLiteral("ddd MMM d, yyyy"));
    accepted("without separators", QStringLiteral("ddMMyy"));
    accepted("32 characters", QStringLiteral("dd/MM/yy").leftJustified(32, QLatin1Char('-')));

    const auto refused = [](const char *name, const QString &format, const QString &complaint) {
        QTest::newRow(name) << format << complaint;
    };
    const QString part = QStringLiteral("the date format lacks the day of the month, the month or the year");
    const QString may = QStringLiteral("the date format may not contain \"%1\"");
    refused("empty", QString(), QStringLiteral("the date format is empty"));
    refused("33 characters", QStringLiteral("dd/MM/yy").leftJustified(33, QLatin1Char('-')),
            QStringLiteral("the date format is longer than 32 characters"));
    refused("a megabyte", QString(1024 * 1024, QLatin1Char('d')),
            QStringLiteral("the date format is longer than 32 characters"));
    refused("no year", QStringLiteral("MM/dd"), part);
    refused("no month", QStringLiteral("dd/yy"), part);
    refused("no day", QStringLiteral("MM/yy"), part);
    refused("day of the week instead of the month's", QStringLiteral("ddd MM yy"), part);
    refused("separators alone", QStringLiteral("//"), part);
    refused("five d", QStringLiteral("ddddd/MM/yy"), may.arg(QStringLiteral("ddddd")));
    refused("five M", QStringLiteral("dd/MMMMM/yy"), may.arg(QStringLiteral("MMMMM")));
    refused("one y", QStringLiteral("dd/MM/y"), may.arg(QStringLiteral("y")));
    refused("three y", QStringLiteral("dd/MM/yyy"), may.arg(QStringLiteral("yyy")));
    refused("five y", QStringLiteral("dd/MM/yyyyy"), may.arg(QStringLiteral("yyyyy")));
    refused("upper case", QStringLiteral("DD/MM/YY"), may.arg(QStringLiteral("DD")));
    refused("a time", QStringLiteral("dd/MM/yy hh"), may.arg(QStringLiteral("hh")));
    refused("a quotation", QStringLiteral("d 'de' M yy"), may.arg(QStringLiteral("'")));
    refused("a line end", QStringLiteral("dd/MM/yy\n"), may.arg(QStringLiteral("\n")));
    refused("a NUL", QStringLiteral("dd/MM/yy") + QChar(0), may.arg(QChar(0)));
    refused("a full-width letter", QStringLiteral("dd/MM/yy") + QChar(0xff59), may.arg(QChar(0xff59)));
    refused("a format of printf", QStringLiteral("%d/MM/yy"), may.arg(QStringLiteral("%")));
}

void DaemonValuesTest::dateFormatsAreCheckedLetterByLetter()
{
    QFETCH(QString, format);
    QTEST(dateFormatComplaint(format), "complaint");
}

QTEST_GUILESS_MAIN(DaemonValuesTest)
#include "tst_daemonvalues.moc"
