// The list of jobs made anew, whole and after one job changed, against the plainest way; growth with the
// number of jobs.
#include "benchmarks.h"
#include "joblist.h"
#include "pairedmeasurement.h"
#include "plainjoblist.h"

#include <ctime>
#include <optional>
#include <string>

namespace {

constexpr Target firstTarget = 0.25;
constexpr Target firstTargetWithoutZone = 1.0 / 7;
constexpr Target oneChangedTarget = 1.0 / 40;
constexpr int gatedCount = 10000;

JobMap jobsOfNumber(int count)
{
    JobMap jobs;
    for (int i = 0; i < count; ++i) {
        PrintJobMetaData job;
        // Some 20 minutes apart, and every tenth at the time of its neighbour.
        const qint64 number = i % 10 ? i : i + 1;
        job.timeStamp = QString::number(Q_INT64_C(1614953220000) + number * 1234567);
        // As random as they are, the order of GUIDs is not that of times.
        job.GUID = QStringLiteral("%1-0000-4000-8000-000000000000")
                       .arg(quint32(i) * 2654435761U, 8, 16, QLatin1Char('0'));
        job.jobName = QStringLiteral("Label %1").arg(i);
        job.jobStatus = QStringLiteral("Printed");
        job.copyCount = 1 + i % 5;
        job.heat1 = i % 20;
        job.supplySKU = QStringLiteral("BX-4100");
        job.supplyColor = QStringLiteral("white");
        job.supplyMileage = i / 8.0;
        job.imagePath = QStringLiteral("file:////var/lib/printqd/pictures/%1.png").arg(job.GUID);
        jobs.insert(job.GUID, job);
    }
    return jobs;
}

/// A zone that is not set, while it lives: QDateTime then looks for the machine's each time.
class NoZone
{
public:
    NoZone()
    {
        qunsetenv("TZ");
        tzset();
    }
    ~NoZone()
    {
        qputenv("TZ", "UTC");
        tzset();
    }

private:
    Q_DISABLE_COPY(NoZone)
};

void measureFirst(benchmark::State &state, int count, Target target)
{
    const JobMap jobs = jobsOfNumber(count);
    std::optional<JobList> list;
    QVariantList ourRows;
    const Way ours{[&] { list.emplace(true); }, [&] { ourRows = list->rebuilt(jobs); },
                   [&] { return ourRows; }};
    QVariantList plainRows;
    const Way plain{{}, [&] { plainRows = plainJobList(jobs, true); }, [&] { return plainRows; }};
    measurePair(state, ours, plain, target);
}

void measureOneChanged(benchmark::State &state, int count, Target target)
{
    JobMap jobs = jobsOfNumber(count);
    JobList list(true);
    list.rebuilt(jobs);
    // In a round of ours, plain, plain, ours there is a change for each two: what ours is to render was not
    // there before, and both come to the same.
    int changes = 0;
    const auto change = [&] { jobs.first().jobStatus = QString::number(++changes); };
    int ourRuns = 0;
    QVariantList ourRows;
    const Way ours{[&] {
                       if (ourRuns++ % 2 == 0)
                           change();
                   },
                   [&] { ourRows = list.rebuilt(jobs); }, [&] { return ourRows; }};
    int plainRuns = 0;
    QVariantList plainRows;
    const Way plain{[&] {
                        if (plainRuns++ % 2 == 1)
                            change();
                    },
                    [&] { plainRows = plainJobList(jobs, true); }, [&] { return plainRows; }};
    measurePair(state, ours, plain, target);
}

} // namespace

void registerHistoryBenchmarks(bool isSmoke)
{
    for (const int count : {100, 1000, gatedCount, 100000}) {
        if (isSmoke && count > gatedCount)
            break;
        const Target gate = count == gatedCount ? 1 : noTarget;
        const std::string jobs = std::to_string(count) + " jobs";
        registerPair(jobs + ", list made",
                     [=](benchmark::State &state) { measureFirst(state, count, gate * firstTarget); });
        registerPair(jobs + ", list made, no TZ", [=](benchmark::State &state) {
            const NoZone none;
            measureFirst(state, count, gate * firstTargetWithoutZone);
        });
        registerPair(jobs + ", one changed", [=](benchmark::State &state) {
            measureOneChanged(state, count, gate * oneChangedTarget);
        });
    }
}
