// What becomes of a job's record: tidied, admitted, its time as text, its map of 23 keys, and its place in
// the list.
#include "joblist.h"
#include "jobrow.h"
#include "jobtidying.h"
#include "jobtime.h"
#include "plainjoblist.h"
#include "texts.h"

#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <algorithm>
#include <clocale>
#include <ctime>
#include <limits>
#include <malloc.h>
#include <memory>
#include <random>
#include <sys/stat.h>

namespace {

constexpr qint64 minute = 60 * 1000;
constexpr qint64 march5 = 1614953220000; // 2021-03-05 14:07 UTC

/// Sets the time zone while it lives.
class ZoneOf
{
public:
    explicit ZoneOf(const QByteArray &zone)
    {
        if (zone.isNull())
            qunsetenv("TZ");
        else
            qputenv("TZ", zone);
        tzset();
    }
    ~ZoneOf()
    {
        qputenv("TZ", m_before);
        tzset();
    }

private:
    Q_DISABLE_COPY(ZoneOf)
    const QByteArray m_before = qgetenv("TZ");
};

PrintJobMetaData job(const QString &guid, const QString &timeStamp)
{
    PrintJobMetaData result;
    result.GUID = guid;
    result.timeStamp = timeStamp;
    result.copyCount = 1;
    return result;
}

/// A record of which no two members are alike.
PrintJobMetaData fullJob()
{
    PrintJobMetaData result;
    result.timeStamp = QString::number(march5);
    result.GUID = QStringLiteral("guid of the record");
    result.jobName = QStringLiteral("name");
    result.jobStatus = QStringLiteral("status");
    result.appName = -1;
    result.errorValue = 2;
    result.copyCount = 3;
    result.seriesCount = 4;
    result.heat1 = 5;
    result.heat2 = 6;
    result.tension1 = 7;
    result.tension2 = 8;
    result.eventType = std::numeric_limits<int>::min();
    result.supplySKU = QStringLiteral("supply");
    result.supplyColor = QStringLiteral("white");
    result.supplyMileage = 1.5;
    result.ribbon1SKU = QStringLiteral("ribbon1");
    result.ribbon1Color = QStringLiteral("black");
    result.ribbon1Mileage = 2.25;
    result.ribbon2SKU = QStringLiteral("ribbon2");
    result.ribbon2Color = QStringLiteral("red");
    result.ribbon2Mileage = -3;
    result.imagePath = QStringLiteral("file:///picture");
    return result;
}

QStringList column(const QVariantList &list, const char *key)
{
    QStringList result;
    for (const QVariant &row : list)
        result.append(row.toMap().value(QLatin1String(key)).toString());
    return result;
}

} // namespace

class TestJobParts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneExtensionIsRemovedWhereverItStands_data();
    void oneExtensionIsRemovedWhereverItStands();
    void everyPicturePathIsPutBehindTheScheme_data();
    void everyPicturePathIsPutBehindTheScheme();
    void tidyingLeavesTheOtherMembersAlone();
    void onlyJobsWithCopiesAreListed_data();
    void onlyJobsWithCopiesAreListed();

    void timeStampsAreDecimalAndElseTheEpoch_data();
    void timeStampsAreDecimalAndElseTheEpoch();
    void timesAreLocal_data();
    void timesAreLocal();
    void theZoneOfTheMachineCountsWhereNoneIsSet();
    void everyTimeIsWrittenAsTheDateTimeLibraryWritesIt();
    void timesAreWrittenAsInEachLanguage_data();
    void timesAreWrittenAsInEachLanguage();

    void aRowHasThe23KeysWithTheirTypes();
    void aChangeOfAnyMemberIsShown();
    void aMileageOfMinusZeroIsNotZero();

    void noJobsMakeAnEmptyList();
    void theNewestJobComesFirst();
    void unreadableTimesComeLast();
    void jobsOfTheSameTimeStandTogether();
    void theListIsThatOfThePlainWay_data();
    void theListIsThatOfThePlainWay();
    void aChangedZoneMakesNewTexts();
    void theZoneOfTheMachineIsAmongWhatTheTextsHangOn();
    void anOldListStaysAsItWas();
    void aJobCostsHardlyMoreMemoryThanItsMap();
};

void TestJobParts::oneExtensionIsRemovedWhereverItStands_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("tidied");
    const auto row = [](const char *name, const char *tidied) {
        QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(tidied);
    };
    row("label.tavo", "label");
    row("label.zbzl", "label");
    row("a.tavo.b.tavo", "a.b");
    row("a.zbzl.b.zbzl", "a.b");
    row("label.TAVO", "label.TAVO");
    row("label.Zbzl", "label.Zbzl");
    row("x.tavo.zbzl", "x.tavo");
    row("x.zbzl.tavo", "x.zbzl");
    row("a.tavo.b", "a.tavo.b");
    row("label.tavo ", "label.tavo ");
    row("label", "label");
    row("tavo", "tavo");
    row(".tavo", "");
    row(".tavo.tavo", "");
    row(".ta.tavovo", ".ta.tavovo");
    row("x.ta.tavovo.tavo", "x.tavo");
    row("x.zb.tavozl.tavo", "x.zbzl");
    row("", "");
}

void TestJobParts::oneExtensionIsRemovedWhereverItStands()
{
    QFETCH(QString, name);
    QFETCH(QString, tidied);
    PrintJobMetaData record;
    record.jobName = name;
    tidyJob(record);
    QCOMPARE(record.jobName, tidied);
}

void TestJobParts::everyPicturePathIsPutBehindTheScheme_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("url");
    const auto row = [](const char *name, const QString &path, const QString &url) {
        QTest::newRow(name) << path << url;
    };
    row("empty", QString(), QStringLiteral("file:///"));
    row("relative", QStringLiteral("img/1.png"), QStringLiteral("file:///img/1.png"));
    row("absolute", QStringLiteral("/var/1.png"), QStringLiteral("file:////var/1.png"));
    row("a URL already", QStringLiteral("file:///a.png"), QStringLiteral("file:///file:///a.png"));
    row("blanks and percent signs", QStringLiteral("/a b%20#.png"), QStringLiteral("file:////a b%20#.png"));
}

void TestJobParts::everyPicturePathIsPutBehindTheScheme()
{
    QFETCH(QString, path);
    QFETCH(QString, url);
    PrintJobMetaData record;
    record.imagePath = path;
    tidyJob(record);
    QCOMPARE(record.imagePath, url);
}

void TestJobParts::tidyingLeavesTheOtherMembersAlone()
{
    PrintJobMetaData record = fullJob();
    tidyJob(record);
    QVariantMap expected = jobRow(fullJob(), QStringLiteral("time"));
    expected[QStringLiteral("imagePath")] = QStringLiteral("file:///file:///picture");
    QCOMPARE(jobRow(record, QStringLiteral("time")), expected);
    QCOMPARE(record.timeStamp, QString::number(march5));
}

void TestJobParts::onlyJobsWithCopiesAreListed_data()
{
    QTest::addColumn<int>("copies");
    QTest::addColumn<bool>("isListedThen");
    QTest::newRow("-3") << -3 << false;
    QTest::newRow("0") << 0 << false;
    QTest::newRow("1") << 1 << true;
    QTest::newRow("many") << std::numeric_limits<int>::max() << true;
    QTest::newRow("least") << std::numeric_limits<int>::min() << false;
}

void TestJobParts::onlyJobsWithCopiesAreListed()
{
    QFETCH(int, copies);
    PrintJobMetaData record;
    record.copyCount = copies;
    QTEST(isListed(record), "isListedThen");
}

void TestJobParts::timeStampsAreDecimalAndElseTheEpoch_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("milliseconds");
    const auto row = [](const char *text, qint64 milliseconds) {
        QTest::newRow(text) << QString::fromUtf8(text) << milliseconds;
    };
    row("1000", 1000);
    row("-1", -1);
    row("999999999999999999", 999999999999999999);
    row("1000000000000000000", 1000000000000000000);
    row(" 5", 5);
    row("5 ", 5);
    row("٣", 0);
    row("+5", 5);
    row("0010", 10);
    row("9223372036854775807", std::numeric_limits<qint64>::max());
    row("-9223372036854775808", std::numeric_limits<qint64>::min());
    row("9223372036854775808", 0);
    row("abc", 0);
    row("", 0);
    row("0x10", 0);
    row("12a", 0);
    row("1.5", 0);
    row("1e3", 0);
}

void TestJobParts::timeStampsAreDecimalAndElseTheEpoch()
{
    QFETCH(QString, text);
    QTEST(jobMilliseconds(text), "milliseconds");
}

void TestJobParts::timesAreLocal_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QString>("text24");
    QTest::addColumn<QString>("text12");
    const auto row = [](const char *name, const char *zone, qint64 milliseconds, const char *text24,
                        const char *text12) {
        QTest::newRow(name) << QByteArray(zone) << milliseconds << QString::fromLatin1(text24)
                            << QString::fromLatin1(text12);
    };
    row("UTC", "UTC", march5, "03/05/2021 14:07", "03/05/2021 14:07pm");
    row("morning", "UTC", march5 - 302 * minute, "03/05/2021 09:05", "03/05/2021 09:05am");
    row("evening", "UTC", march5 + 418 * minute, "03/05/2021 21:05", "03/05/2021 21:05pm");
    row("noon", "UTC", march5 - 127 * minute, "03/05/2021 12:00", "03/05/2021 12:00pm");
    row("midnight", "UTC", march5 + 593 * minute, "03/06/2021 00:00", "03/06/2021 00:00am");
    row("seconds are cut off", "UTC", march5 + 59999, "03/05/2021 14:07", "03/05/2021 14:07pm");
    row("Berlin", "Europe/Berlin", march5, "03/05/2021 15:07", "03/05/2021 15:07pm");
    row("New York", "America/New_York", march5, "03/05/2021 09:07", "03/05/2021 09:07am");
    row("Kathmandu", "Asia/Kathmandu", march5, "03/05/2021 19:52", "03/05/2021 19:52pm");
    row("next day", "Pacific/Apia", march5, "03/06/2021 04:07", "03/06/2021 04:07am");
    row("a rule and no name", "XYZ-3:30", march5, "03/05/2021 17:37", "03/05/2021 17:37pm");
    row("before the clock is put forward", "Europe/Berlin", 1616893199999, "03/28/2021 01:59",
        "03/28/2021 01:59am");
    row("after it", "Europe/Berlin", 1616893200000, "03/28/2021 03:00", "03/28/2021 03:00am");
    row("before the clock is put back", "Europe/Berlin", 1635640200000, "10/31/2021 02:30",
        "10/31/2021 02:30am");
    row("the same hour again", "Europe/Berlin", 1635643800000, "10/31/2021 02:30", "10/31/2021 02:30am");
    row("a clock change of half an hour", "Australia/Lord_Howe", 1617462000000, "04/04/2021 01:30",
        "04/04/2021 01:30am");
    row("epoch", "UTC", 0, "01/01/1970 00:00", "01/01/1970 00:00am");
    row("epoch in Berlin", "Europe/Berlin", 0, "01/01/1970 01:00", "01/01/1970 01:00am");
    row("before the epoch", "UTC", -1, "12/31/1969 23:59", "12/31/1969 23:59pm");
    row("beyond 32 bits", "UTC", 4102444800000, "01/01/2100 00:00", "01/01/2100 00:00am");
}

void TestJobParts::timesAreLocal()
{
    QFETCH(QByteArray, zone);
    QFETCH(qint64, milliseconds);
    const ZoneOf set(zone);
    QTEST(JobTime(true).text(milliseconds), "text24");
    QTEST(JobTime(false).text(milliseconds), "text12");
}

void TestJobParts::theZoneOfTheMachineCountsWhereNoneIsSet()
{
    const ZoneOf none(QByteArray{});
    for (const bool is24HourClock : {false, true})
        QCOMPARE(JobTime(is24HourClock).text(march5), plainJobTime(QString::number(march5), is24HourClock));
}

void TestJobParts::everyTimeIsWrittenAsTheDateTimeLibraryWritesIt()
{
    std::mt19937_64 random(20211105);
    QVector<qint64> instants = {std::numeric_limits<qint64>::min(),
                                std::numeric_limits<qint64>::max(),
                                std::numeric_limits<qint64>::min() + 1,
                                std::numeric_limits<qint64>::max() - 1,
                                63071999999,
                                63072000000,
                                2145916799999,
                                2145916800000,
                                2147483647999,
                                2147483648000,
                                253402300800000};
    std::uniform_int_distribution<qint64> thisAge(0, Q_INT64_C(4102444800000));
    std::uniform_int_distribution<qint64> everyAge(Q_INT64_C(-99999999999999), Q_INT64_C(999999999999999));
    for (int i = 0; i < 800; ++i)
        instants << thisAge(random) << (i % 4 ? thisAge(random) : everyAge(random));
    for (const char *const name :
         {"UTC", "Europe/Berlin", "America/New_York", "Asia/Kathmandu", "Pacific/Apia", "Australia/Lord_Howe",
          "Africa/Casablanca", "America/Sao_Paulo", "Asia/Tehran"}) {
        const ZoneOf zone(name);
        for (const bool is24HourClock : {false, true}) {
            const JobTime time(is24HourClock);
            for (const qint64 instant : qAsConst(instants)) {
                const QString expected = plainJobTime(QString::number(instant), is24HourClock);
                const QString actual = time.text(instant);
                QVERIFY2(
                    actual == expected,
                    qPrintable(QStringLiteral("%1 in %2: %3 instead of %4")
                                   .arg(QString::number(instant), QLatin1String(name), actual, expected)));
            }
        }
    }
}

void TestJobParts::timesAreWrittenAsInEachLanguage_data()
{
    QTest::addColumn<QString>("morning");
    const auto row = [](const char *language, const char *morning) {
        QTest::newRow(language) << QString::fromUtf8(morning);
    };
    row("C", "03/05/2021 09:05am");
    row("en_US.UTF-8", "03/05/2021 09:05am");
    row("de_DE.UTF-8", "03/05/2021 09:05am");
    row("ja_JP.UTF-8", "03/05/2021 09:05午前");
    row("ko_KR.UTF-8", "03/05/2021 09:05오전");
    row("ar_EG.UTF-8", "٠٣/٠٥/٢٠٢١ ٠٩:٠٥ص");
    row("fa_IR.UTF-8", "۰۳/۰۵/۲۰۲۱ ۰۹:۰۵قبل‌ازظهر");
    row("zh_CN.UTF-8", "03/05/2021 09:05上午");
}

void TestJobParts::timesAreWrittenAsInEachLanguage()
{
    QFETCH(QString, morning);
    // The language of the system is read once a process.
    QProcess other;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QString::fromLatin1(QTest::currentDataTag()));
    environment.insert(QStringLiteral("TZ"), QStringLiteral("UTC"));
    other.setProcessEnvironment(environment);
    other.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--print-times")});
    QVERIFY(other.waitForFinished());
    QCOMPARE(other.exitStatus(), QProcess::NormalExit);
    const QStringList lines = QString::fromUtf8(other.readAllStandardOutput()).split(QLatin1Char('\n'));
    QCOMPARE(lines.value(0), morning);
    QCOMPARE(lines.value(1), QStringLiteral("as the date-time library"));
}

void TestJobParts::aRowHasThe23KeysWithTheirTypes()
{
    const QVariantMap expected = {{QStringLiteral("timeStamp"), QStringLiteral("time as text")},
                                  {QStringLiteral("GUID"), QStringLiteral("guid of the record")},
                                  {QStringLiteral("jobName"), QStringLiteral("name")},
                                  {QStringLiteral("jobStatus"), QStringLiteral("status")},
                                  {QStringLiteral("appName"), -1},
                                  {QStringLiteral("errorValue"), 2},
                                  {QStringLiteral("copyCount"), 3},
                                  {QStringLiteral("seriesCount"), 4},
                                  {QStringLiteral("heat1"), 5},
                                  {QStringLiteral("heat2"), 6},
                                  {QStringLiteral("tension1"), 7},
                                  {QStringLiteral("tension2"), 8},
                                  {QStringLiteral("eventType"), std::numeric_limits<int>::min()},
                                  {QStringLiteral("supplySKU"), QStringLiteral("supply")},
                                  {QStringLiteral("supplyColor"), QStringLiteral("white")},
                                  {QStringLiteral("supplyMileage"), 1.5},
                                  {QStringLiteral("ribbon1SKU"), QStringLiteral("ribbon1")},
                                  {QStringLiteral("ribbon1Color"), QStringLiteral("black")},
                                  {QStringLiteral("ribbon1Mileage"), 2.25},
                                  {QStringLiteral("ribbon2SKU"), QStringLiteral("ribbon2")},
                                  {QStringLiteral("ribbon2Color"), QStringLiteral("red")},
                                  {QStringLiteral("ribbon2Mileage"), -3.0},
                                  {QStringLiteral("imagePath"), QStringLiteral("file:///picture")}};
    const QVariantMap actual = jobRow(fullJob(), QStringLiteral("time as text"));
    QCOMPARE(expected.size(), 23);
    QCOMPARE(actual.keys(), expected.keys());
    for (const QString &key : expected.keys()) {
        QCOMPARE(actual.value(key), expected.value(key));
        QCOMPARE(actual.value(key).userType(), expected.value(key).userType());
    }

    // No text is a text too.
    for (const QVariant &value : jobRow(PrintJobMetaData(), QString()))
        QVERIFY(value.userType() == QMetaType::QString || value.userType() == QMetaType::Int
                || value.userType() == QMetaType::Double);
}

void TestJobParts::aChangeOfAnyMemberIsShown()
{
    const JobMap original = {{QStringLiteral("key"), fullJob()}};
    const auto differs = [&original](const auto &change) {
        JobList list(true);
        const QVariantList before = list.rebuilt(original);
        JobMap changed = original;
        change(changed.first());
        const QVariantList after = list.rebuilt(changed);
        return after != before && after == plainJobList(changed, true);
    };
    QVERIFY(!differs([](PrintJobMetaData &) {}));
    // From another GUID to that of the map as well.
    QVERIFY(differs([](PrintJobMetaData &changed) { changed.GUID = QStringLiteral("key"); }));
    QVERIFY(differs([](PrintJobMetaData &changed) { changed.timeStamp = QStringLiteral("0"); }));
    for (const auto member :
         {&PrintJobMetaData::GUID, &PrintJobMetaData::jobName, &PrintJobMetaData::jobStatus,
          &PrintJobMetaData::supplySKU, &PrintJobMetaData::supplyColor, &PrintJobMetaData::ribbon1SKU,
          &PrintJobMetaData::ribbon1Color, &PrintJobMetaData::ribbon2SKU, &PrintJobMetaData::ribbon2Color,
          &PrintJobMetaData::imagePath})
        QVERIFY(differs([member](PrintJobMetaData &changed) { (changed.*member).append(QLatin1Char('x')); }));
    for (const auto member :
         {&PrintJobMetaData::appName, &PrintJobMetaData::errorValue, &PrintJobMetaData::copyCount,
          &PrintJobMetaData::seriesCount, &PrintJobMetaData::heat1, &PrintJobMetaData::heat2,
          &PrintJobMetaData::tension1, &PrintJobMetaData::tension2, &PrintJobMetaData::eventType})
        QVERIFY(differs([member](PrintJobMetaData &changed) { changed.*member = 77; }));
    for (const auto member : {&PrintJobMetaData::supplyMileage, &PrintJobMetaData::ribbon1Mileage,
                              &PrintJobMetaData::ribbon2Mileage})
        QVERIFY(differs([member](PrintJobMetaData &changed) { changed.*member += 0.125; }));
}

void TestJobParts::aMileageOfMinusZeroIsNotZero()
{
    JobList list(true);
    JobMap jobs = {{QStringLiteral("a"), job(QStringLiteral("a"), QStringLiteral("1"))}};
    list.rebuilt(jobs);
    jobs[QStringLiteral("a")].supplyMileage = -0.0;
    const double shown = list.rebuilt(jobs).first().toMap().value(QStringLiteral("supplyMileage")).toDouble();
    QVERIFY(std::signbit(shown));
}

void TestJobParts::noJobsMakeAnEmptyList()
{
    JobList list(true);
    QCOMPARE(list.rebuilt({}), QVariantList());
    list.rebuilt({{QStringLiteral("a"), fullJob()}});
    QCOMPARE(list.rebuilt({}), QVariantList());
}

void TestJobParts::theNewestJobComesFirst()
{
    JobList list(true);
    const JobMap jobs = {
        {QStringLiteral("a"), job(QStringLiteral("older"), QStringLiteral("1000"))},
        {QStringLiteral("b"), job(QStringLiteral("newer"), QStringLiteral("2000"))},
        // As texts the shorter would come last.
        {QStringLiteral("c"), job(QStringLiteral("oldest"), QStringLiteral("999"))},
        {QStringLiteral("d"), job(QStringLiteral("before the epoch"), QStringLiteral("-5"))}};
    QCOMPARE(column(list.rebuilt(jobs), "GUID"), texts({"newer", "older", "oldest", "before the epoch"}));
}

void TestJobParts::unreadableTimesComeLast()
{
    JobList list(false);
    const JobMap jobs = {{QStringLiteral("a"), job(QStringLiteral("unreadable"), QStringLiteral("abc"))},
                         {QStringLiteral("b"), job(QStringLiteral("first"), QStringLiteral("1"))},
                         {QStringLiteral("c"), job(QStringLiteral("later"), QString::number(march5))}};
    const QVariantList result = list.rebuilt(jobs);
    QCOMPARE(column(result, "GUID"), texts({"later", "first", "unreadable"}));
    QCOMPARE(column(result, "timeStamp"),
             texts({"03/05/2021 14:07pm", "01/01/1970 00:00am", "01/01/1970 00:00am"}));
}

void TestJobParts::jobsOfTheSameTimeStandTogether()
{
    JobList list(true);
    const JobMap jobs = {{QStringLiteral("a"), job(QStringLiteral("one"), QStringLiteral("5"))},
                         {QStringLiteral("b"), job(QStringLiteral("newest"), QStringLiteral("9"))},
                         {QStringLiteral("c"), job(QStringLiteral("other"), QStringLiteral("5"))}};
    const QStringList guids = column(list.rebuilt(jobs), "GUID");
    QCOMPARE(guids.size(), 3);
    QCOMPARE(guids.first(), QStringLiteral("newest"));
    QVERIFY(guids.contains(QStringLiteral("one")) && guids.contains(QStringLiteral("other")));
}

void TestJobParts::theListIsThatOfThePlainWay_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("1") << 1;
    QTest::newRow("16, the sort's small case") << 16;
    QTest::newRow("17") << 17;
    QTest::newRow("1500") << 1500;
}

void TestJobParts::theListIsThatOfThePlainWay()
{
    QFETCH(int, count);
    std::mt19937 random(42);
    const auto number = [&random](int below) {
        return std::uniform_int_distribution<int>(0, qMax(1, below) - 1)(random);
    };
    const auto anyJob = [&number, count] {
        PrintJobMetaData result = fullJob();
        // A tenth of the times twice, so that the order of equal ones is compared too.
        result.timeStamp = QString::number(march5 + number(qMax(1, count * 4)) * minute);
        result.GUID = QString::number(number(1000000));
        result.supplyMileage = number(10) / 4.0;
        return result;
    };
    for (const bool is24HourClock : {false, true}) {
        JobList list(is24HourClock);
        JobMap jobs;
        while (jobs.size() < count)
            jobs.insert(QString::number(number(1000000)), anyJob());
        QVERIFY(list.rebuilt(jobs) == plainJobList(jobs, is24HourClock));
        for (int change = 0; change < 8; ++change) {
            const QString key = jobs.keys().value(number(jobs.size()));
            if (change % 3 == 0)
                jobs.remove(key);
            else if (change % 3 == 1)
                jobs[key] = anyJob();
            else
                jobs.insert(QString::number(number(1000000)), anyJob());
            QVERIFY(list.rebuilt(jobs) == plainJobList(jobs, is24HourClock));
        }
    }
}

void TestJobParts::aChangedZoneMakesNewTexts()
{
    JobList list(true);
    const JobMap jobs = {{QStringLiteral("a"), job(QStringLiteral("a"), QString::number(march5))}};
    QCOMPARE(column(list.rebuilt(jobs), "timeStamp"), texts({"03/05/2021 14:07"}));
    const ZoneOf berlin("Europe/Berlin");
    QCOMPARE(column(list.rebuilt(jobs), "timeStamp"), texts({"03/05/2021 15:07"}));
    const ZoneOf newYork("America/New_York");
    QCOMPARE(list.rebuilt({}), QVariantList());
    QCOMPARE(column(list.rebuilt(jobs), "timeStamp"), texts({"03/05/2021 09:07"}));
}

void TestJobParts::theZoneOfTheMachineIsAmongWhatTheTextsHangOn()
{
    struct stat zone = {};
    if (::stat("/etc/localtime", &zone) != 0)
        QSKIP("This machine has no zone.");
    const ZoneOf none(QByteArray{});
    QVERIFY(JobTime(true).circumstances().contains(QByteArray::number(qint64(zone.st_ino))));
}

void TestJobParts::anOldListStaysAsItWas()
{
    JobList list(true);
    JobMap jobs = {{QStringLiteral("a"), job(QStringLiteral("a"), QStringLiteral("1"))}};
    const QVariantList before = list.rebuilt(jobs);
    jobs[QStringLiteral("a")].jobName = QStringLiteral("renamed");
    QCOMPARE(column(list.rebuilt(jobs), "jobName"), texts({"renamed"}));
    QCOMPARE(column(before, "jobName"), texts({""}));
}

void TestJobParts::aJobCostsHardlyMoreMemoryThanItsMap()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("The sanitizer has a heap of its own.");
#endif
    constexpr int count = 2000;
    JobMap jobs;
    for (int i = 0; i < count; ++i) {
        PrintJobMetaData record = fullJob();
        record.timeStamp = QString::number(march5 + i * minute);
        jobs.insert(QStringLiteral("job %1").arg(i), record);
    }
    const auto bytesOf = [](const auto &make) {
        const size_t before = mallinfo2().uordblks;
        const auto made = make();
        return double(mallinfo2().uordblks - before) / count;
    };
    const double plain = bytesOf([&jobs] { return plainJobList(jobs, true); });
    const double ours = bytesOf([&jobs] {
        auto list = std::make_unique<JobList>(true);
        QVariantList rows = list->rebuilt(jobs);
        return std::make_pair(std::move(list), std::move(rows));
    });
    const QString figures = QStringLiteral("%1 bytes a job, of which the rows are %2").arg(ours).arg(plain);
    QVERIFY2(plain > 1000, qPrintable(figures));
    QVERIFY2(ours < 1.1 * plain, qPrintable(figures));
    qInfo("%s", qPrintable(figures));
}

/// For a process of another language: its text of a morning, and whether a thousand times are those of
/// QDateTime.
static int printTimes()
{
    const JobTime time(false);
    QString verdict = QStringLiteral("as the date-time library");
    for (qint64 instant = -5; instant < 1000; ++instant) {
        const qint64 milliseconds = instant * Q_INT64_C(2200000123);
        if (time.text(milliseconds) != plainJobTime(QString::number(milliseconds), false))
            verdict = QStringLiteral("otherwise: ") + time.text(milliseconds);
    }
    const QByteArray text =
        (time.text(march5 - 302 * minute) + QLatin1Char('\n') + verdict + QLatin1Char('\n')).toUtf8();
    std::fwrite(text.constData(), 1, size_t(text.size()), stdout);
    return 0;
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (QCoreApplication::arguments().contains(QStringLiteral("--print-times")))
        return printTimes();
    TestJobParts test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_jobparts.moc"
