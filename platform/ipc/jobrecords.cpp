// Applies and compares.
#include "jobrecords.h"

#include "jobwire.h"

#include <utility>

namespace {

// Eight times the jobs that the reference daemon can be told to keep, 500,000, in answers of 4,000.
constexpr int mostAnswers = 1000;
// Nothing but a daemon that loses its store again and again begins so often within one update.
constexpr int mostBeginnings = 3;

} // namespace

void JobRecords::blank()
{
    for (PrintJobMetaData &job : jobs)
        job = PrintJobMetaData();
    epoch.clear();
    revision = 0;
}

QStringList differingJobs(const JobRecords &before, const JobRecords &after)
{
    QStringList result;
    if (before.jobs.isSharedWith(after.jobs))
        return result;
    for (auto job = before.jobs.cbegin(); job != before.jobs.cend(); ++job) {
        const auto now = after.jobs.constFind(job.key());
        if (now == after.jobs.cend() || !isSameRecord(*now, *job))
            result.append(job.key());
    }
    for (auto job = after.jobs.cbegin(); job != after.jobs.cend(); ++job) {
        if (!before.jobs.contains(job.key()))
            result.append(job.key());
    }
    return result;
}

JobUpdate::JobUpdate(JobRecords &&known)
    : m_records(std::move(known))
{
}

QStringList JobUpdate::changed() const
{
    return m_beginnings > 0 ? m_changed + differingJobs(m_forgotten, m_records) : m_changed;
}

JobRecords JobUpdate::takeRecords()
{
    return std::move(m_records);
}

JobRecords JobUpdate::takeBlank()
{
    JobRecords &result = m_beginnings > 0 ? m_forgotten : m_records;
    result.blank();
    return std::move(result);
}

bool JobUpdate::startAnew()
{
    if (m_beginnings == 0)
        m_forgotten = std::move(m_records);
    m_records = JobRecords();
    return ++m_beginnings <= mostBeginnings;
}

JobUpdate::Step JobUpdate::take(JobChanges &&answer)
{
    // An empty epoch could not be asked about again.
    if (++m_answers > mostAnswers || answer.epoch.isEmpty())
        return Step::Failed;

    const bool isFirst = answer.complete || m_records.epoch.isEmpty();
    if (!isFirst && (answer.epoch != m_records.epoch || answer.revision < m_records.revision))
        return startAnew() ? Step::AskAgain : Step::Failed;
    if (!isFirst && answer.more && answer.revision == m_records.revision)
        return Step::Failed;
    if (isFirst && !startAnew())
        return Step::Failed;

    m_records.epoch = answer.epoch;
    m_records.revision = answer.revision;
    const bool isCompared = m_beginnings == 0;
    for (const QString &guid : qAsConst(answer.removed)) {
        if (m_records.jobs.remove(guid) > 0 && isCompared)
            m_changed.append(guid);
    }
    if (isFirst)
        m_records.jobs.reserve(int(answer.jobs.size()));
    for (PrintJobMetaData &job : answer.jobs) {
        const QString guid = job.GUID;
        PrintJobMetaData &record = m_records.jobs[guid];
        if (isCompared && !isSameRecord(record, job))
            m_changed.append(guid);
        record = std::move(job);
    }
    return answer.more ? Step::AskAgain : Step::Done;
}
