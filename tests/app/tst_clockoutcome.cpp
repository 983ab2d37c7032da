// Whether a look at the clock shows that it was set.
#include "clockoutcome.h"

#include <QtTest/QtTest>

Q_DECLARE_METATYPE(ClockOutcome)

class TestClockOutcome : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void outcomeIsSeenOnTheClock_data();
    void outcomeIsSeenOnTheClock();
    void invalidTimesAreNotSet();
};

namespace {

QDateTime at(const char *text)
{
    return QDateTime::fromString(QLatin1String(text), Qt::ISODateWithMs);
}

} // namespace

void TestClockOutcome::outcomeIsSeenOnTheClock_data()
{
    QTest::addColumn<QDateTime>("target");
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<int>("elapsed");
    QTest::addColumn<ClockOutcome>("outcome");
    const QDateTime target = at("2028-02-29T21:07:00");
    QTest::newRow("at once") << target << at("2028-02-29T21:07:00.020") << 30 << ClockOutcome::Set;
    QTest::newRow("has run on") << target << at("2028-02-29T21:07:02.500") << 2600 << ClockOutcome::Set;
    QTest::newRow("old clock in the same minute, not changed")
        << target << at("2028-02-29T21:07:40") << 200 << ClockOutcome::NotSet;
    QTest::newRow("runs ahead") << target << at("2028-02-29T21:07:05") << 200 << ClockOutcome::NotSet;
    QTest::newRow("before") << target << at("2028-02-29T21:06:50") << 200 << ClockOutcome::NotSet;
    QTest::newRow("another day") << target << at("2028-03-01T21:07:00") << 200 << ClockOutcome::NotSet;
    QTest::newRow("date without the time")
        << target << at("2028-02-29T00:00:00.300") << 400 << ClockOutcome::OnlyDateSet;
    QTest::newRow("shortly after midnight, but long ago")
        << target << at("2028-02-29T00:05:00") << 400 << ClockOutcome::NotSet;
    QTest::newRow("midnight was wanted")
        << at("2028-02-29T00:00:00") << at("2028-02-29T00:00:00.100") << 150 << ClockOutcome::Set;
}

void TestClockOutcome::outcomeIsSeenOnTheClock()
{
    QFETCH(QDateTime, target);
    QFETCH(QDateTime, now);
    QFETCH(int, elapsed);
    QFETCH(ClockOutcome, outcome);
    QCOMPARE(clockOutcome(target, now, elapsed), outcome);
}

void TestClockOutcome::invalidTimesAreNotSet()
{
    QCOMPARE(clockOutcome(QDateTime(), at("2028-02-29T21:07:00"), 10), ClockOutcome::NotSet);
    QCOMPARE(clockOutcome(at("2028-02-29T21:07:00"), QDateTime(), 10), ClockOutcome::NotSet);
}

QTEST_APPLESS_MAIN(TestClockOutcome)
#include "tst_clockoutcome.moc"
