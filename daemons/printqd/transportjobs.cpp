// From the transport's states to the daemon's words and codes.
#include "transportjobs.h"

namespace {

// What a record carries at most; a scheduler allows less (1,023 octets, RFC 8011).
constexpr int longestName = 1023;

QString statusOf(TransportJob::State state)
{
    switch (state) {
    case TransportJob::State::Waiting:
        return QStringLiteral("Waiting");
    case TransportJob::State::Held:
        return QStringLiteral("Held");
    case TransportJob::State::Printing:
        return QStringLiteral("Printing");
    case TransportJob::State::Stopped:
        return QStringLiteral("Stopped");
    case TransportJob::State::Printed:
        return QStringLiteral("Printed");
    case TransportJob::State::Cancelled:
        return QStringLiteral("Cancelled");
    case TransportJob::State::Failed:
        break;
    }
    return QStringLiteral("Failed");
}

JobError errorOf(TransportJob::State state)
{
    if (state == TransportJob::State::Cancelled)
        return JobError::Cancelled;
    return state == TransportJob::State::Failed ? JobError::Failed : JobError::None;
}

} // namespace

StoredJob newJob(const TransportJob &seen, const QString &guid)
{
    StoredJob job;
    job.record.timeStamp = QString::number(seen.createdMilliseconds);
    job.record.GUID = guid;
    job.record.appName = int(JobSource::SchedulerClient);
    job.wantsDocument = true;
    updateJob(seen, &job);
    job.record.eventType = int(JobEvent::Seen);
    return job;
}

void updateJob(const TransportJob &seen, StoredJob *job)
{
    job->uuid = seen.uuid;
    job->number = seen.number;
    job->orderToken.clear();
    PrintJobMetaData &record = job->record;
    record.jobName = seen.name.left(longestName);
    record.copyCount = qMax(1, seen.copies);
    record.seriesCount = seen.documents;
    record.tension1 = seen.tension1;
    record.tension2 = seen.tension2;
    record.errorValue = int(errorOf(seen.state));
    const QString status = statusOf(seen.state);
    if (record.jobStatus != status)
        record.eventType = int(JobEvent::StateChanged);
    record.jobStatus = status;
}

void failJob(JobError error, StoredJob *job)
{
    job->orderToken.clear();
    job->wantsDocument = false;
    job->record.jobStatus = statusOf(TransportJob::State::Failed);
    job->record.errorValue = int(error);
    job->record.eventType = int(JobEvent::StateChanged);
}

void finishOrder(StoredJob *job)
{
    job->orderToken.clear();
    job->record.jobStatus = statusOf(TransportJob::State::Printed);
    job->record.eventType = int(JobEvent::StateChanged);
}

StoredJob reprintOf(const StoredJob &job, const QString &guid, const QString &token, qint64 now)
{
    StoredJob reprint;
    reprint.record = job.record;
    reprint.record.timeStamp = QString::number(now);
    reprint.record.GUID = guid;
    reprint.record.jobStatus = statusOf(TransportJob::State::Waiting);
    reprint.record.appName = int(JobSource::Reprint);
    reprint.record.errorValue = int(JobError::None);
    reprint.record.eventType = int(JobEvent::Reprint);
    reprint.record.imagePath.clear();
    reprint.document = job.document;
    reprint.originalUuid = job.uuid;
    reprint.orderToken = token;
    return reprint;
}
