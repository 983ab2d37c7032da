// What is asked of the scheduler for single jobs: to print one, to hand out its document, to forget it.
#include "cupsdocumentfile.h"
#include "cupstransport.h"

#include <QtCore/QFile>
#include <QtCore/QUuid>

#include <algorithm>

namespace {

/// So long the other work is put off for orders, documents or jobs to be forgotten, each.
constexpr int turnMilliseconds = 200;

// Another time may do: the scheduler is busy, ends, or takes no jobs at the moment.
bool isForNowOnly(const CupsAnswer &answer)
{
    const ipp_status_t status = answer.status();
    return status >= IPP_STATUS_ERROR_INTERNAL && status != IPP_STATUS_ERROR_OPERATION_NOT_SUPPORTED
        && status != IPP_STATUS_ERROR_VERSION_NOT_SUPPORTED;
}

QString formatIn(ipp_t *answer)
{
    ipp_attribute_t *const format = ippFindAttribute(answer, "document-format", IPP_TAG_MIMETYPE);
    return format ? QString::fromUtf8(ippGetString(format, 0, nullptr)) : QString();
}

} // namespace

void CupsTransport::submit(const TransportOrder &order)
{
    const bool isKnown = std::any_of(m_orders.cbegin(), m_orders.cend(),
                                     [&](const TransportOrder &other) { return other.guid == order.guid; });
    if (isKnown)
        return;
    if (QUuid(order.guid).isNull()) {
        Q_EMIT submissionFailed(order.guid, QStringLiteral("the order has no guid"));
        return;
    }
    m_orders.push_back(order);
    beginSoon();
}

void CupsTransport::keepDocument(const QString &uuid, int number, const QString &path)
{
    m_keepings.push_back({uuid, number, path});
    beginSoon();
}

void CupsTransport::forget(const QString &uuid, int number)
{
    m_forgettings.push_back({uuid, number});
    beginSoon();
}

bool CupsTransport::carryOutOrders()
{
    QElapsedTimer sinceBegin;
    sinceBegin.start();
    while (!m_orders.empty() && isConnected() && sinceBegin.elapsed() < turnMilliseconds) {
        takeEvents();
        const TransportOrder order = m_orders.front();
        switch (carryOut(order)) {
        case Outcome::Unreached:
            return false;
        case Outcome::Waits:
        case Outcome::NoRoom:
            return true;
        case Outcome::Done:
        case Outcome::Refused:
            m_orders.pop_front();
            m_sent.clear();
        }
    }
    m_isInAHurry = m_isInAHurry || !m_orders.empty();
    return true;
}

CupsTransport::Outcome CupsTransport::carryOut(const TransportOrder &order)
{
    if (m_hasToLookAtAll || m_settling)
        return Outcome::Waits;
    int number = m_numbersByGuid.value(order.guid);
    const CupsJob job = m_jobs.value(number);
    if (number != 0 && job.job.number == number && !job.isEmptyOrder()) {
        Q_EMIT submitted(order.guid, job.job.uuid);
        return Outcome::Done;
    }
    if (number == 0 && m_sent == order.guid)
        return refuse(order, QStringLiteral("the scheduler may have taken it, and lost it"));
    // Nobody sent the document in time, and the scheduler gave up, or somebody cancelled the job.
    if (number != 0 && job.state >= IPP_JSTATE_CANCELED) {
        const Outcome purged = purge(number);
        // Beside it another job with the same token would not count as ours.
        if (purged == Outcome::Refused)
            return refuse(order, QStringLiteral("its empty job cannot be taken away"));
        if (purged != Outcome::Done)
            return purged;
        forgetNumber(number);
        m_sent.clear();
        if (job.state == IPP_JSTATE_CANCELED)
            return refuse(order, QStringLiteral("somebody cancelled it"));
        number = 0;
    }
    if (number == 0) {
        const Outcome outcome = create(order, &number);
        if (number == 0)
            return outcome;
    }
    const Outcome outcome = sendDocument(order, number);
    return outcome == Outcome::Done ? confirm(order, number) : outcome;
}

// NUMBER stays 0 when there is no job.
CupsTransport::Outcome CupsTransport::create(const TransportOrder &order, int *number)
{
    if (!QFile(order.documentPath).open(QIODevice::ReadOnly))
        return refuse(order, QStringLiteral("its document cannot be read"));
    const IppMessage request = m_connection.request(IPP_OP_CREATE_JOB);
    ippAddString(request.get(), IPP_TAG_OPERATION, IPP_TAG_NAME, "job-name", nullptr,
                 order.name.toUtf8().constData());
    if (!order.originalUuid.isEmpty() && !addOptionsOf(order.originalUuid, request.get()))
        return Outcome::Unreached;
    ippAddInteger(request.get(), IPP_TAG_JOB, IPP_TAG_INTEGER, "copies", qMax(1, order.copies));
    ippAddString(request.get(), IPP_TAG_JOB, IPP_TAG_NAME, CupsJobs::guidAttribute, nullptr,
                 order.guid.toUtf8().constData());
    const CupsAnswer answer = m_connection.send(request);
    if (!answer)
        return Outcome::Unreached;
    ipp_attribute_t *const created = ippFindAttribute(answer.message.get(), "job-id", IPP_TAG_INTEGER);
    if (answer.isGood() && created) {
        *number = ippGetInteger(created, 0);
        m_numbersByGuid.insert(order.guid, *number);
        return Outcome::Done;
    }
    return isForNowOnly(answer) ? Outcome::Waits : refuse(order, answer.reason());
}

bool CupsTransport::addOptionsOf(const QString &uuid, ipp_t *request)
{
    const auto original = std::find_if(m_jobs.cbegin(), m_jobs.cend(),
                                       [&](const CupsJob &job) { return job.job.uuid == uuid; });
    if (original == m_jobs.cend())
        return true;
    const CupsAnswer answer =
        m_connection.send(m_connection.requestForJob(IPP_OP_GET_JOB_ATTRIBUTES, original->job.number));
    if (!answer)
        return false;
    if (answer.isGood() && CupsJobs::uuidIn(answer.message.get()) == uuid)
        CupsJobs::copyOptions(answer.message.get(), request);
    return true;
}

CupsTransport::Outcome CupsTransport::sendDocument(const TransportOrder &order, int number)
{
    QFile document(order.documentPath);
    bool isReadable = document.open(QIODevice::ReadOnly);
    const IppMessage request = m_connection.requestForJob(IPP_OP_SEND_DOCUMENT, number);
    ippAddString(request.get(), IPP_TAG_OPERATION, IPP_TAG_NAME, "document-name", nullptr,
                 order.name.toUtf8().constData());
    const QByteArray format = order.format.isEmpty() ? "application/octet-stream" : order.format.toUtf8();
    ippAddString(request.get(), IPP_TAG_OPERATION, IPP_TAG_MIMETYPE, "document-format", nullptr,
                 format.constData());
    ippAddBoolean(request.get(), IPP_TAG_OPERATION, "last-document", 1);
    CupsAnswer answer;
    if (isReadable) {
        m_sent = order.guid;
        answer = m_connection.sendDocument(request, [&](char *bytes, qint64 room) {
            const qint64 size = document.read(bytes, room);
            isReadable = size >= 0;
            return size;
        });
    }
    if (isReadable && !answer)
        return Outcome::Unreached;
    if (answer.isGood())
        return Outcome::Done;
    if (answer && isForNowOnly(answer)) {
        m_sent.clear();
        return Outcome::Waits;
    }
    // The job without a document is of no use. Where it cannot be taken away, the scheduler does that by
    // itself.
    if (purge(number) == Outcome::Done)
        forgetNumber(number);
    return refuse(order, isReadable ? answer.reason() : QStringLiteral("its document cannot be read"));
}

CupsTransport::Outcome CupsTransport::refuse(const TransportOrder &order, const QString &reason)
{
    Q_EMIT submissionFailed(order.guid, reason);
    return Outcome::Refused;
}

CupsTransport::Outcome CupsTransport::confirm(const TransportOrder &order, int number)
{
    QVector<CupsJob> jobs;
    const Outcome looked = lookAtOne(number, &jobs);
    if (looked == Outcome::Refused) {
        m_hasToLookAtAll = true;
        return Outcome::Waits;
    }
    if (looked != Outcome::Done)
        return looked;
    // Somebody was quicker to take it away; it was carried out all the same.
    const QString uuid = jobs.isEmpty() ? QString() : jobs.first().job.uuid;
    Q_EMIT submitted(order.guid, uuid);
    // The scheduler has the whole document, whatever it counts.
    for (CupsJob &job : jobs)
        job.hadDocument = true;
    tell(jobs, &m_jobs);
    return Outcome::Done;
}

bool CupsTransport::keepDocuments()
{
    QElapsedTimer sinceBegin;
    sinceBegin.start();
    std::vector<Keeping> waiting;
    size_t next = 0;
    bool isReached = true;
    while (isReached && next < m_keepings.size() && m_rest.hasExpired() && isConnected()
           && sinceBegin.elapsed() < turnMilliseconds) {
        takeEvents();
        Keeping keeping = m_keepings[next];
        const Outcome outcome = keep(&keeping);
        isReached = outcome != Outcome::Unreached;
        // Another one may be small enough, next time.
        if (outcome == Outcome::Waits || outcome == Outcome::NoRoom)
            waiting.push_back(keeping);
        if (isReached)
            ++next;
    }
    m_keepings.erase(m_keepings.begin(), m_keepings.begin() + std::ptrdiff_t(next));
    m_isInAHurry = m_isInAHurry || (isReached && !m_keepings.empty() && m_rest.hasExpired());
    m_keepings.insert(m_keepings.end(), waiting.cbegin(), waiting.cend());
    return isReached;
}

CupsTransport::Outcome CupsTransport::keep(Keeping *keeping)
{
    const auto fail = [&](const QString &reason) {
        Q_EMIT documentNotKept(keeping->uuid, reason);
        return Outcome::Refused;
    };
    if (m_hasToLookAtAll)
        return Outcome::Waits;
    const CupsJob *const job = jobWith(keeping->number, keeping->uuid);
    if (!job)
        return fail(QStringLiteral("the scheduler does not know the job"));
    if (job->job.documents > 1)
        return fail(QStringLiteral("the job has %1 documents").arg(job->job.documents));
    if (job->documentsThere == 0 && !job->isOver())
        return Outcome::Waits;
    CupsDocumentFile file(keeping->path, m_settings.largestDocument);
    const auto failWithFile = [&] {
        if (!file.mayBeKeptLater() || ++keeping->tries >= mostTries)
            return fail(file.reason());
        rest(file.reason());
        return Outcome::NoRoom;
    };
    if (!file.open())
        return failWithFile();
    const IppMessage request = m_connection.requestForJob(IPP_OP_CUPS_GET_DOCUMENT, keeping->number);
    ippAddInteger(request.get(), IPP_TAG_OPERATION, IPP_TAG_INTEGER, "document-number", 1);
    const CupsAnswer answer = m_connection.receiveDocument(
        request, [&](const char *bytes, qint64 size) { return file.write(bytes, size); });
    if (!answer)
        return Outcome::Unreached;
    if (!answer.isGood())
        return isForNowOnly(answer) ? Outcome::Waits : fail(answer.reason());
    if (!file.keep())
        return failWithFile();
    m_restMilliseconds = 0;
    Q_EMIT documentKept(keeping->uuid, keeping->path, formatIn(answer.message.get()));
    return Outcome::Done;
}

// A full disk is full for all documents.
void CupsTransport::rest(const QString &reason)
{
    if (m_restMilliseconds == 0)
        qWarning("The disk takes no documents, which is tried again: %s", qPrintable(reason));
    m_restMilliseconds = qBound(m_settings.restMilliseconds, 2 * m_restMilliseconds, longestRestMilliseconds);
    m_rest.setRemainingTime(m_restMilliseconds);
}

bool CupsTransport::forgetJobs()
{
    QElapsedTimer sinceBegin;
    sinceBegin.start();
    while (!m_forgettings.empty() && !m_hasToLookAtAll && isConnected()
           && sinceBegin.elapsed() < turnMilliseconds) {
        takeEvents();
        const Forgetting forgetting = m_forgettings.front();
        const CupsJob *const job = jobWith(forgetting.number, forgetting.uuid);
        const Outcome outcome = job && job->isOver() ? purge(forgetting.number) : Outcome::Done;
        if (outcome == Outcome::Unreached)
            return false;
        m_forgettings.pop_front();
        if (outcome == Outcome::Done) {
            if (job && job->isOver())
                forgetNumber(forgetting.number);
            Q_EMIT forgotten(forgetting.uuid);
        }
    }
    m_isInAHurry = m_isInAHurry || !m_forgettings.empty();
    return true;
}

CupsTransport::Outcome CupsTransport::purge(int number)
{
    const IppMessage request = m_connection.requestForJob(IPP_OP_CANCEL_JOB, number);
    ippAddBoolean(request.get(), IPP_TAG_OPERATION, "purge-job", 1);
    const CupsAnswer answer = m_connection.send(request);
    if (!answer)
        return Outcome::Unreached;
    if (answer.isGood() || answer.status() == IPP_STATUS_ERROR_NOT_FOUND)
        return Outcome::Done;
    qWarning("The scheduler does not forget job %d: %s", number, qPrintable(answer.reason()));
    return isForNowOnly(answer) ? Outcome::Waits : Outcome::Refused;
}
