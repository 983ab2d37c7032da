// Answers from the store, and hands over orders.
#include "printservice.h"

#include "printqueue.h"

#include <algorithm>

namespace {

/// So many may be in the middle of a complete answer at the same time. Who is one too many begins anew.
constexpr size_t mostReaders = 64;

} // namespace

PrintService::PrintService(PrintQueue &queue, QObject *parent)
    : CallTarget(parent)
    , m_queue(queue)
{
}

QStringList PrintService::getJobList() const
{
    return m_queue.store().guids();
}

PrintJobMetaData PrintService::getJobInfo(const QString &guid)
{
    if (const StoredJob *const job = m_queue.store().find(guid))
        return job->record;
    refuse(QDBusError::InvalidArgs, QStringLiteral("there is no job %1").arg(guid));
    return {};
}

QString PrintService::getChangedJobs(const QString &knownEpoch, qulonglong knownRevision,
                                     qulonglong &revision, bool &complete, PrintJobMetaDataList &jobs,
                                     QStringList &removed, bool &more)
{
    const quint64 begun = takeReader(caller(), knownRevision);
    JobDifference difference = m_queue.store().difference(knownEpoch, knownRevision, begun);
    revision = difference.revision;
    complete = difference.isComplete;
    jobs = std::move(difference.jobs);
    removed = std::move(difference.removed);
    more = difference.hasMore;
    if (more && (complete || begun != 0)) {
        m_readers.push_back({caller(), revision, complete ? m_queue.store().revision() : begun});
        if (m_readers.size() > mostReaders)
            m_readers.pop_front();
    }
    return difference.epoch;
}

/// The revision at which \a caller began a complete answer, of which it knows \a revision now; 0 if it did
/// not.
quint64 PrintService::takeReader(const QString &caller, quint64 revision)
{
    const auto reader =
        std::find_if(m_readers.cbegin(), m_readers.cend(), [&caller, revision](const Reader &candidate) {
            return candidate.caller == caller && candidate.revision == revision;
        });
    if (reader == m_readers.cend())
        return 0;
    const quint64 begun = reader->begun;
    m_readers.erase(reader);
    return begun;
}

void PrintService::reprintPrintJob(const QString &guid)
{
    QString reason;
    const PrintQueue::Refused refused = m_queue.reprint(guid, &reason);
    if (refused == PrintQueue::Refused::UnknownJob)
        refuse(QDBusError::InvalidArgs, reason);
    else if (refused == PrintQueue::Refused::TooManyOrders)
        refuse(QDBusError::LimitsExceeded, reason);
    else if (refused != PrintQueue::Refused::No)
        refuse(QDBusError::Failed, reason);
}

void PrintService::clearPrintJob()
{
    m_queue.clear([answer = answerLater()](const QString &failure) { answer(refusalOf(failure)); });
}
