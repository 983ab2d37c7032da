// Whether a look at the clock shows that it was set.
#include "clockoutcome.h"

#include <QtTest/QtTest>

#include <ctime>

Q_DECLARE_METATYPE(ClockOutcome)

class TestClockOutcome : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void outcomeIsSeenOnTheClock_data();
    void outcomeIsSeenOnTheClock();
    void changesOfSummerTimeDeceiveNobody_data();
    void changesOfSummerTimeDeceiveNobody();
    void invalidTimesAreNotSet();
};

namespace {

QDateTime at(const char *text)
{
    return QDateTime::fromString(QLatin1String(text), Qt::ISODateWithMs);
}

void setZone(const char *zone)
{
    qputenv("TZ", zone);
    tzset();
}

} // namespace

void TestClockOutcome::initTestCase()
{
    setZone("UTC");
}

void TestClockOutcome::cleanup()
{
    setZone("UTC");
}

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
    QCOMPARE(clockOutcome(target.date(), target.time(), now, elapsed), outcome);
}

void TestClockOutcome::changesOfSummerTimeDeceiveNobody_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QDateTime>("target");
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<ClockOutcome>("outcome");
    const QByteArray berlin("Europe/Berlin");
    // 28 March 2027: 2:00 is followed by 3:00, at 1:00 UTC.
    QTest::newRow("before the hour that is left out")
        << berlin << at("2027-03-28T01:30:00") << at("2027-03-28T00:30:00.200Z") << ClockOutcome::Set;
    QTest::newRow("left out, taken as winter time")
        << berlin << at("2027-03-28T02:30:00") << at("2027-03-28T01:30:00.200Z") << ClockOutcome::Set;
    QTest::newRow("left out, taken as summer time")
        << berlin << at("2027-03-28T02:30:00") << at("2027-03-28T00:30:00.200Z") << ClockOutcome::Set;
    QTest::newRow("left out, the clock stands elsewhere")
        << berlin << at("2027-03-28T02:30:00") << at("2027-03-28T02:30:00.200Z") << ClockOutcome::NotSet;
    QTest::newRow("after the hour that is left out")
        << berlin << at("2027-03-28T03:30:00") << at("2027-03-28T01:30:00.200Z") << ClockOutcome::Set;
    QTest::newRow("an hour beside, after the hour that is left out")
        << berlin << at("2027-03-28T03:30:00") << at("2027-03-28T02:30:00.200Z") << ClockOutcome::NotSet;
    QTest::newRow("an hour beside, before the hour that is left out")
        << berlin << at("2027-03-28T01:30:00") << at("2027-03-27T23:30:00.200Z") << ClockOutcome::NotSet;
    QTest::newRow("date alone, winter begins the day")
        << berlin << at("2027-03-28T02:30:00") << at("2027-03-27T23:00:00.200Z") << ClockOutcome::OnlyDateSet;
    // 31 October 2027: 3:00 is followed by 2:00, at 1:00 UTC.
    QTest::newRow("before the repeated hour")
        << berlin << at("2027-10-31T01:30:00") << at("2027-10-30T23:30:00.200Z") << ClockOutcome::Set;
    QTest::newRow("repeated, for the first time")
        << berlin << at("2027-10-31T02:30:00") << at("2027-10-31T00:30:00.200Z") << ClockOutcome::Set;
    QTest::newRow("repeated, for the second time")
        << berlin << at("2027-10-31T02:30:00") << at("2027-10-31T01:30:00.200Z") << ClockOutcome::Set;
    QTest::newRow("repeated, the clock stands elsewhere")
        << berlin << at("2027-10-31T02:30:00") << at("2027-10-31T02:30:00.200Z") << ClockOutcome::NotSet;
    QTest::newRow("after the repeated hour")
        << berlin << at("2027-10-31T03:00:00") << at("2027-10-31T02:00:00.200Z") << ClockOutcome::Set;
    QTest::newRow("an hour beside, after the repeated hour")
        << berlin << at("2027-10-31T03:30:00") << at("2027-10-31T01:30:00.200Z") << ClockOutcome::NotSet;
    QTest::newRow("an hour beside, before the repeated hour")
        << berlin << at("2027-10-31T01:30:00") << at("2027-10-31T00:30:00.200Z") << ClockOutcome::NotSet;
    QTest::newRow("date alone, summer begins the day")
        << berlin << at("2027-10-31T02:30:00") << at("2027-10-30T22:00:00.200Z") << ClockOutcome::OnlyDateSet;
    // 4 April 2027: 2:00 is followed by 1:30, at 15:00 UTC of the day before.
    const QByteArray lordHowe("Australia/Lord_Howe");
    QTest::newRow("half an hour repeated, for the first time")
        << lordHowe << at("2027-04-04T01:40:00") << at("2027-04-03T14:40:00.200Z") << ClockOutcome::Set;
    QTest::newRow("half an hour repeated, for the second time")
        << lordHowe << at("2027-04-04T01:40:00") << at("2027-04-03T15:10:00.200Z") << ClockOutcome::Set;
}

void TestClockOutcome::changesOfSummerTimeDeceiveNobody()
{
    QFETCH(QByteArray, zone);
    QFETCH(QDateTime, target);
    QFETCH(QDateTime, now);
    QFETCH(ClockOutcome, outcome);
    const QDate date = target.date();
    const QTime time = target.time();
    setZone(zone.constData());
    QCOMPARE(clockOutcome(date, time, now, 300), outcome);
}

void TestClockOutcome::invalidTimesAreNotSet()
{
    const QDateTime now = at("2028-02-29T21:07:00");
    QCOMPARE(clockOutcome(QDate(), now.time(), now, 10), ClockOutcome::NotSet);
    QCOMPARE(clockOutcome(now.date(), QTime(), now, 10), ClockOutcome::NotSet);
    QCOMPARE(clockOutcome(QDate(2027, 2, 29), now.time(), now, 10), ClockOutcome::NotSet);
    QCOMPARE(clockOutcome(now.date(), now.time(), QDateTime(), 10), ClockOutcome::NotSet);
}

QTEST_APPLESS_MAIN(TestClockOutcome)
#include "tst_clockoutcome.moc"
