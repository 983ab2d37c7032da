// From signals and orders to changes of the store, and from these to the transport, the pictures and the
// files.
#include "printqueue.h"

#include "believablejobs.h"
#include "picturemaker.h"
#include "supplies.h"
#include "transportjobs.h"
#include "transportthread.h"

#include <QtCore/QDateTime>
#include <QtCore/QDebug>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QMap>
#include <QtCore/QSet>
#include <QtCore/QUuid>

#include <unistd.h>

namespace {

constexpr int againMilliseconds = 1000;
/// So many files are removed before the bus is looked at again.
constexpr int filesAtOnce = 100;

QString newName()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

} // namespace

PrintQueue::PrintQueue(JobStore &store, const StateFolder &folder, TransportThread &transport,
                       PictureMaker &pictures, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_folder(folder)
    , m_transport(transport)
    , m_pictures(pictures)
{
    m_again.setSingleShot(true);
    m_again.setInterval(againMilliseconds);
    connect(&m_again, &QTimer::timeout, this, &PrintQueue::takeWaiting);
    m_removal.setInterval(0);
    connect(&m_removal, &QTimer::timeout, this, &PrintQueue::removeSomeFiles);

    const PrintTransport *const source = &transport.transport();
    connect(source, &PrintTransport::jobsSeen, this,
            [this](const QVector<TransportJob> &jobs) { take([this, jobs] { return noteJobs(jobs); }); });
    connect(source, &PrintTransport::listCompleted, this,
            [this](const QStringList &uuids) { take([this, uuids] { return noteList(uuids); }); });
    connect(source, &PrintTransport::submitted, this, [this](const QString &guid, const QString &uuid) {
        take([this, guid, uuid] { return noteSubmission(guid, uuid); });
    });
    connect(source, &PrintTransport::submissionFailed, this,
            [this](const QString &guid, const QString &reason) {
                take([this, guid, reason] { return noteFailedSubmission(guid, reason); });
            });
    connect(source, &PrintTransport::documentKept, this,
            [this](const QString &uuid, const QString &path, const QString &format) {
                take([this, uuid, path, format] { return noteDocument(uuid, path, format); });
            });
    connect(source, &PrintTransport::documentNotKept, this,
            [this](const QString &uuid, const QString &reason) {
                take([this, uuid, reason] { return noteMissingDocument(uuid, reason); });
            });
    connect(source, &PrintTransport::forgotten, this,
            [this](const QString &uuid) { take([this, uuid] { return noteForgotten({uuid}); }); });
    connect(&pictures, &PictureMaker::made, this, [this](const QString &guid, const QString &path) {
        take([this, guid, path] { return notePicture(guid, path); });
        m_isMakingPicture = false;
        makeNextPicture();
    });
    connect(&pictures, &PictureMaker::notMade, this, [this](const QString &guid, const QString &reason) {
        Q_UNUSED(reason)
        take([this, guid] { return notePicture(guid, {}); });
        m_isMakingPicture = false;
        makeNextPicture();
    });
}

void PrintQueue::start()
{
    QStringList picturePaths;
    m_store.forEach([&](const StoredJob &job) {
        picturePaths.append(m_folder.picturePath(job.record.GUID));
        if (job.wantsPicture)
            wantPicture(job.record.GUID);
    });
    m_folder.keepOnly(m_store.documentNames(), picturePaths);
    m_transport.start();
    forgetAll(m_store.forgotten());
    orderAgain();
}

/// What was ordered before the daemon ended, in the order in which it was.
void PrintQueue::orderAgain()
{
    QMap<quint64, StoredJob> orders;
    m_store.forEach([&orders](const StoredJob &job) {
        if (job.isOrder)
            orders.insert(job.revision, job);
    });
    for (const StoredJob &job : orders)
        submit(job);
}

void PrintQueue::submit(const StoredJob &job)
{
    const KeptDocument *const document = m_store.documentOf(job);
    if (!document) {
        const QString guid = job.record.GUID;
        take([this, guid] {
            return noteFailedSubmission(guid, QStringLiteral("its document is not there any more"));
        });
        return;
    }
    TransportOrder order;
    order.guid = job.record.GUID;
    order.documentPath = m_folder.documentPath(document->name);
    order.format = document->format;
    order.name = job.record.jobName;
    order.copies = job.record.copyCount;
    order.originalUuid = job.originalUuid;
    m_transport.submit(order);
}

void PrintQueue::forgetAll(const QVector<ForgottenJob> &jobs)
{
    for (const ForgottenJob &job : jobs)
        m_transport.forget(job.uuid, job.number);
}

/// Does what \a notice says, after those that wait already: the order is that in which they came.
void PrintQueue::take(const Notice &notice)
{
    m_waiting.push_back(notice);
    if (!m_again.isActive())
        takeWaiting();
}

void PrintQueue::takeWaiting()
{
    while (!m_waiting.empty()) {
        // A notice may lead to another one, which must find this one gone.
        const Notice notice = m_waiting.front();
        m_waiting.pop_front();
        const QString failure = notice();
        if (failure.isEmpty()) {
            m_isDelayed = false;
            continue;
        }
        if (!m_isDelayed)
            qWarning().noquote() << "cannot be written, and is tried again until it can:" << failure;
        m_isDelayed = true;
        m_waiting.push_front(notice);
        m_again.start();
        return;
    }
}

QString PrintQueue::commit(const JobChange &change)
{
    const ChangeResult result = m_store.commit(change);
    if (!result.failure.isEmpty())
        return result.failure;
    if (!result.changed.isEmpty())
        emit changed(result.changed);
    forgetAll(result.toForget);
    removeFiles(result);
    return {};
}

PrintQueue::Refused PrintQueue::reprint(const QString &guid, QString *reason)
{
    const StoredJob *const job = m_store.find(guid);
    if (!job) {
        *reason = QStringLiteral("there is no job %1").arg(guid);
        return Refused::UnknownJob;
    }
    const KeptDocument *const document = m_store.documentOf(*job);
    if (!document) {
        *reason = QStringLiteral("the document of the job %1 is not kept").arg(guid);
        return Refused::NoDocument;
    }
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    StoredJob order = reprintOf(*job, newName(), now);
    putSupplies(readSupplies(m_folder.suppliesPath()), &order.record);
    order.record.imagePath = linkPicture(*job, order.record.GUID);
    order.wantsPicture = order.record.imagePath.isEmpty();

    JobChange change;
    change.put.append(order);
    change.document = *document;
    change.document->used = now;
    *reason = commit(change);
    if (!reason->isEmpty()) {
        QFile::remove(m_folder.picturePath(order.record.GUID));
        return Refused::NotWritten;
    }
    if (order.wantsPicture)
        wantPicture(order.record.GUID);
    submit(order);
    return Refused::No;
}

/// The same picture for another job: its path, or an empty text where there is none.
QString PrintQueue::linkPicture(const StoredJob &original, const QString &guid) const
{
    const QString from = m_folder.picturePath(original.record.GUID);
    const QString to = m_folder.picturePath(guid);
    const bool isLinked = original.record.imagePath == from
        && ::link(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
    return isLinked ? to : QString();
}

QString PrintQueue::clear()
{
    JobChange change;
    m_store.forEach([&change](const StoredJob &job) {
        if (isFinished(job.record.jobStatus))
            change.removed.append(job.record.GUID);
    });
    return commit(change);
}

QString PrintQueue::addJobs(int count)
{
    qint64 oldest = QDateTime::currentMSecsSinceEpoch();
    m_store.forEach([&oldest](const StoredJob &job) { oldest = qMin(oldest, timeOf(job.record)); });

    JobChange change;
    KeptDocument document;
    document.name = newName();
    document.format = QStringLiteral("application/pdf");
    document.used = QDateTime::currentMSecsSinceEpoch();
    const QString failure = writeBelievableDocument(m_folder.documentPath(document.name), &document.bytes);
    if (!failure.isEmpty())
        return failure;
    change.document = document;
    change.put = believableJobs(count, m_store.size(), oldest);
    for (StoredJob &job : change.put) {
        job.record.GUID = newName();
        job.document = document.name;
    }
    const QString reason = commit(change);
    if (!reason.isEmpty())
        QFile::remove(m_folder.documentPath(document.name));
    return reason;
}

QString PrintQueue::setJob(const PrintJobMetaData &record)
{
    StoredJob job;
    if (const StoredJob *const known = m_store.find(record.GUID))
        job = *known;
    job.record = record;
    JobChange change;
    change.put.append(job);
    return commit(change);
}

QString PrintQueue::removeJobs(const QStringList &guids)
{
    JobChange change;
    for (const QString &guid : QSet<QString>(guids.cbegin(), guids.cend())) {
        if (m_store.find(guid))
            change.removed.append(guid);
    }
    return commit(change);
}

QString PrintQueue::noteJobs(const QVector<TransportJob> &jobs)
{
    const QByteArray supplies = readSupplies(m_folder.suppliesPath());
    JobChange change;
    QHash<QString, int> places;
    for (const TransportJob &seen : jobs) {
        if (seen.uuid.isEmpty() || m_store.isForgotten(seen.uuid))
            continue;
        const StoredJob *known = m_store.findUuid(seen.uuid);
        const StoredJob *const ordered = known ? nullptr : m_store.find(seen.guid);
        // Anybody can write a GUID into a job: it says something only where somebody waits for such a job.
        if (ordered && ordered->isOrder)
            known = ordered;
        const auto place = places.constFind(seen.uuid);
        if (place != places.constEnd()) {
            updateJob(seen, &change.put[*place]);
            continue;
        }
        StoredJob job;
        if (known) {
            job = *known;
            updateJob(seen, &job);
        } else {
            job = newJob(seen, newName());
            putSupplies(supplies, &job.record);
        }
        places.insert(seen.uuid, change.put.size());
        change.put.append(job);
    }
    const QString failure = commit(change);
    if (!failure.isEmpty())
        return failure;
    for (const StoredJob &job : change.put) {
        if (job.wantsDocument)
            keepDocumentOf(job);
    }
    return {};
}

/// What had not finished and is not there any more will never finish.
QString PrintQueue::noteList(const QStringList &uuids)
{
    const QSet<QString> existing(uuids.cbegin(), uuids.cend());
    JobChange change;
    m_store.forEach([&](const StoredJob &job) {
        if (job.uuid.isEmpty() || isFinished(job.record.jobStatus) || existing.contains(job.uuid))
            return;
        StoredJob lost = job;
        failJob(JobError::Lost, &lost);
        change.put.append(lost);
    });
    for (const ForgottenJob &job : m_store.forgotten()) {
        if (!existing.contains(job.uuid))
            change.forgettingDone.append(job.uuid);
    }
    return commit(change);
}

QString PrintQueue::noteSubmission(const QString &guid, const QString &uuid)
{
    const StoredJob *const known = m_store.find(guid);
    // It can be known under the UUID already, by jobsSeen().
    if (!known || !known->isOrder || m_store.findUuid(uuid))
        return {};
    JobChange change;
    change.put.append(*known);
    change.put.first().uuid = uuid;
    change.put.first().isOrder = false;
    return commit(change);
}

QString PrintQueue::noteFailedSubmission(const QString &guid, const QString &reason)
{
    const StoredJob *const known = m_store.find(guid);
    if (!known || !known->isOrder)
        return {};
    qWarning().noquote() << "job" << guid << "cannot be submitted:" << reason;
    JobChange change;
    change.put.append(*known);
    failJob(JobError::Failed, &change.put.first());
    return commit(change);
}

void PrintQueue::keepDocumentOf(const StoredJob &job)
{
    if (m_keeping.contains(job.uuid))
        return;
    const QString name = newName();
    m_keeping.insert(job.uuid, name);
    m_transport.keepDocument(job.uuid, job.number, m_folder.documentPath(name));
}

QString PrintQueue::noteDocument(const QString &uuid, const QString &path, const QString &format)
{
    const StoredJob *const known = m_store.findUuid(uuid);
    const QString name = m_keeping.value(uuid);
    if (!known || !known->wantsDocument || name.isEmpty()) {
        m_keeping.remove(uuid);
        QFile::remove(path);
        return {};
    }
    JobChange change;
    change.document = KeptDocument{name, format, QFileInfo(path).size(), QDateTime::currentMSecsSinceEpoch()};
    StoredJob job = *known;
    job.document = name;
    job.wantsDocument = false;
    job.wantsPicture = true;
    change.put.append(job);
    const QString failure = commit(change);
    if (!failure.isEmpty())
        return failure;
    m_keeping.remove(uuid);
    wantPicture(job.record.GUID);
    return {};
}

QString PrintQueue::noteMissingDocument(const QString &uuid, const QString &reason)
{
    m_keeping.remove(uuid);
    const StoredJob *const known = m_store.findUuid(uuid);
    if (!known || !known->wantsDocument)
        return {};
    qWarning().noquote() << "the document of the job" << known->record.GUID << "is not kept:" << reason;
    JobChange change;
    change.put.append(*known);
    change.put.first().wantsDocument = false;
    return commit(change);
}

QString PrintQueue::noteForgotten(const QStringList &uuids)
{
    JobChange change;
    change.forgettingDone = uuids;
    return commit(change);
}

void PrintQueue::wantPicture(const QString &guid)
{
    m_pictureless.push_back(guid);
    makeNextPicture();
}

/// One at a time, so that the maker never has more to do than it takes.
void PrintQueue::makeNextPicture()
{
    while (!m_isMakingPicture && !m_pictureless.empty()) {
        const QString guid = m_pictureless.front();
        m_pictureless.pop_front();
        const StoredJob *const job = m_store.find(guid);
        const KeptDocument *const document = job ? m_store.documentOf(*job) : nullptr;
        if (!document || !job->wantsPicture)
            continue;
        m_isMakingPicture = true;
        m_pictures.make(guid, m_folder.documentPath(document->name), m_folder.picturePath(guid));
    }
}

/// A job has a picture now, or will have none where \a path is empty.
QString PrintQueue::notePicture(const QString &guid, const QString &path)
{
    const StoredJob *const known = m_store.find(guid);
    if (!known) {
        if (!path.isEmpty())
            QFile::remove(path);
        return {};
    }
    JobChange change;
    change.put.append(*known);
    change.put.first().wantsPicture = false;
    if (!path.isEmpty())
        change.put.first().record.imagePath = path;
    return commit(change);
}

/// A few at a time, since a clear leaves many, and the bus does not wait for them. What is left over when the
/// daemon ends is found at the next start.
void PrintQueue::removeFiles(const ChangeResult &result)
{
    for (const QString &guid : result.removedJobs)
        m_filesToRemove.append(m_folder.picturePath(guid));
    for (const QString &name : result.removedDocuments)
        m_filesToRemove.append(m_folder.documentPath(name));
    if (!m_filesToRemove.isEmpty())
        m_removal.start();
}

void PrintQueue::removeSomeFiles()
{
    for (int count = 0; count < filesAtOnce && !m_filesToRemove.isEmpty(); ++count)
        QFile::remove(m_filesToRemove.takeLast());
    if (m_filesToRemove.isEmpty())
        m_removal.stop();
}
