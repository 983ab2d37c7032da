// The whole history from a real print queue daemon, first and after one job changed, against one call a job
// and against the first fetch.
#include "benchmarks.h"
#include "joblist.h"
#include "jobtidying.h"
#include "pairedmeasurement.h"
#include "plainjoblist.h"
#include "printqueuedaemon.h"
#include "zbipc.h"
#include "zbprinterhistory.h"

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusInterface>
#include <QtDBus/QDBusReply>

#include <memory>
#include <utility>

namespace {

constexpr Target firstTarget = 1.0 / 20;
constexpr Target refreshTarget = 1.0 / 10;
constexpr int gatedCount = 10000;
/// One call a job takes half a minute for the next larger number.
constexpr int mostOneByOne = 10000;

std::unique_ptr<PrintQueueDaemon> daemonWith(int count)
{
    auto daemon = std::make_unique<PrintQueueDaemon>();
    if (!daemon->start({QStringLiteral("--jobs"), QString::number(count), QStringLiteral("--history-limit"),
                        QString::number(2 * count)}))
        qFatal("%s", qPrintable(daemon->standardError()));
    return daemon;
}

/// One call a job, as a reader does that knows no other.
QVariantList fetchedOneByOne(QDBusInterface &daemon)
{
    const QDBusReply<QStringList> guids = daemon.call(QStringLiteral("getJobList"));
    QMap<QString, PrintJobMetaData> jobs;
    for (const QString &guid : guids.value()) {
        const QDBusReply<PrintJobMetaData> reply = daemon.call(QStringLiteral("getJobInfo"), guid);
        PrintJobMetaData job = reply.value();
        tidyJob(job);
        jobs.insert(guid, job);
    }
    return plainJobList(jobs, true);
}

/// What a ZBPrinterHistory does when it is made. That one leaves its ZBIPC to the process, which would hear
/// and keep everything from then on, so hundreds of them are not made here.
QVariantList firstFetch()
{
    QDBusInterface daemon(QStringLiteral("com.corvanta.printqd"), QStringLiteral("/"),
                          QStringLiteral("local.IZBIPCPRINTQD"), QDBusConnection::systemBus());
    const ZBIPC ipc(nullptr);
    const QDBusReply<QStringList> guids = daemon.call(QStringLiteral("getJobList"));
    JobMap jobs;
    for (const QString &guid : guids.value()) {
        PrintJobMetaData job = ipc.getJobInfo(guid);
        tidyJob(job);
        *jobs.insert(jobs.cend(), guid, PrintJobMetaData()) = std::move(job);
    }
    return JobList(true).rebuilt(jobs);
}

void measureFirst(benchmark::State &state, int count)
{
    const auto running = daemonWith(count);
    QVariantList ourList;
    const Way ours{{},
                   [&] { ourList = ZBPrinterHistory(nullptr, true).getPrintJobsHistory(); },
                   [&] { return ourList; }};
    QDBusInterface daemon(QStringLiteral("com.corvanta.printqd"), QStringLiteral("/"),
                          QStringLiteral("local.IZBIPCPRINTQD"), QDBusConnection::systemBus());
    QVariantList plainList;
    const Way plain{{}, [&] { plainList = fetchedOneByOne(daemon); }, [&] { return plainList; }};
    measurePair(state, ours, plain, count == gatedCount ? firstTarget : noTarget);
}

void measureRefresh(benchmark::State &state, int count)
{
    const auto running = daemonWith(count);
    ZBPrinterHistory history(nullptr, true);
    PrintJobMetaData job = PrintQueueDaemon::allJobs().constFirst();
    int changes = 0;
    const auto change = [&] {
        job.jobStatus = QString::number(++changes);
        PrintQueueDaemon::control("SetJob", {QVariant::fromValue(job)});
    };
    // In a round of ours, plain, plain, ours there is a change for each two, and both come to the same.
    int ourRuns = 0;
    const Way ours{
        [&] {
            if (ourRuns++ % 2 == 0)
                change();
        },
        [&] { QMetaObject::invokeMethod(&history, "updatePrintJobHistory", Q_ARG(QString, job.GUID)); },
        [&] { return history.getPrintJobsHistory(); }};
    int plainRuns = 0;
    QVariantList plainList;
    const Way plain{[&] {
                        if (plainRuns++ % 2 == 1)
                            change();
                    },
                    [&] { plainList = firstFetch(); }, [&] { return plainList; }};
    measurePair(state, ours, plain, count == gatedCount ? refreshTarget : noTarget);
}

} // namespace

void registerHistoryFetchBenchmarks(bool isSmoke)
{
    for (const int count : {100, 1000, gatedCount, 100000}) {
        if (isSmoke && count > 1000)
            break;
        const std::string jobs = std::to_string(count) + " jobs";
        if (count <= mostOneByOne)
            registerPair(jobs + ", first fetch",
                         [count](benchmark::State &state) { measureFirst(state, count); });
        registerPair(jobs + ", refresh", [count](benchmark::State &state) { measureRefresh(state, count); });
    }
}
