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
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QMap>
#include <QtCore/QSet>
#include <QtCore/QUuid>

#include <algorithm>
#include <unistd.h>

namespace {

constexpr int againMilliseconds = 1000;
/// So long what the transport tells is dealt with, and so many jobs are changed or files removed, before the
/// bus is looked at again.
constexpr int turnMilliseconds = 10;
constexpr int jobsAtOnce = 250;
constexpr int filesAtOnce = 100;

/// Believable jobs lie before all others, but not before this, some 30,000 years ago: a record may have any
/// time.
constexpr qint64 earliestTime = -1000000000000000;

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
    m_soon.setSingleShot(true);
    m_soon.setInterval(0);
    connect(&m_soon, &QTimer::timeout, this, &PrintQueue::takeWaiting);
    m_slices.setInterval(0);
    connect(&m_slices, &QTimer::timeout, this, &PrintQueue::doSlice);
    m_removal.setInterval(0);
    connect(&m_removal, &QTimer::timeout, this, &PrintQueue::removeSomeFiles);

    const PrintTransport *const source = &transport.transport();
    connect(source, &PrintTransport::jobsSeen, this, [this](const QVector<TransportJob> &jobs) {
        for (int first = 0; first < jobs.size(); first += jobsAtOnce)
            take([this, some = jobs.mid(first, jobsAtOnce)] { return noteJobs(some); });
    });
    connect(source, &PrintTransport::listCompleted, this,
            [this](const QStringList &uuids) { take([this, uuids] { return noteList(uuids); }); });
    connect(source, &PrintTransport::submitted, this, [this](const QString &token, const QString &uuid) {
        take([this, token, uuid] { return noteSubmission(token, uuid); });
    });
    connect(source, &PrintTransport::submissionFailed, this,
            [this](const QString &token, const QString &reason) {
                take([this, token, reason] { return noteFailedSubmission(token, reason); });
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
        if (job.isOrder())
            orders.insert(job.arrival, job);
    });
    for (const StoredJob &job : orders)
        submit(job);
}

void PrintQueue::submit(const StoredJob &job)
{
    const KeptDocument *const document = m_store.documentOf(job);
    if (!document) {
        take([this, token = job.orderToken] {
            return noteFailedSubmission(token, QStringLiteral("its document is not there any more"));
        });
        return;
    }
    TransportOrder order;
    order.guid = job.orderToken;
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
        m_soon.start();
}

void PrintQueue::takeWaiting()
{
    QElapsedTimer sinceBegin;
    sinceBegin.start();
    while (!m_waiting.empty()) {
        if (sinceBegin.hasExpired(turnMilliseconds)) {
            m_soon.start();
            return;
        }
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
    QStringList guids;
    const QString failure = commit(change, &guids);
    if (!guids.isEmpty())
        emit changed(guids);
    return failure;
}

/// The same, except that it tells nobody: \a changed gets the jobs.
QString PrintQueue::commit(const JobChange &change, QStringList *changed)
{
    const ChangeResult result = m_store.commit(change);
    if (!result.failure.isEmpty())
        return result.failure;
    *changed += result.changed;
    forgetAll(result.toForget);
    removeFiles(result);
    return {};
}

void PrintQueue::begin(const std::function<Slice()> &next, const Done &done)
{
    m_work.push_back({next, done, {}});
    if (m_work.size() == 1)
        doSlice();
    if (!m_work.empty())
        m_slices.start();
}

void PrintQueue::doSlice()
{
    Work &work = m_work.front();
    const Slice slice = work.next();
    const QString failure = commit(slice.change, &work.changed);
    if (failure.isEmpty() && !slice.isLast)
        return;
    const Work finished = std::move(work);
    m_work.pop_front();
    if (m_work.empty())
        m_slices.stop();
    if (!finished.changed.isEmpty())
        emit changed(finished.changed);
    finished.done(failure);
}

void PrintQueue::finishWork()
{
    while (!m_work.empty())
        doSlice();
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
    if (m_store.orderCount() >= mostOrders) {
        *reason = QStringLiteral("%1 orders wait to be submitted already").arg(mostOrders);
        return Refused::TooManyOrders;
    }
    StoredJob order = reprintOf(*job, newName(), newName(), QDateTime::currentMSecsSinceEpoch());
    putSupplies(readSupplies(m_folder.suppliesPath()), &order.record);
    order.record.imagePath = linkPicture(*job, order.record.GUID);
    order.wantsPicture = order.record.imagePath.isEmpty();

    JobChange change;
    change.put.append(order);
    change.document = *document;
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

void PrintQueue::clear(const Done &done)
{
    // What comes later is not meant.
    const auto next = [this, last = m_store.lastArrival()] {
        Slice slice;
        slice.change.removed = m_store.firstFinished(last, jobsAtOnce);
        slice.isLast = slice.change.removed.size() < jobsAtOnce;
        return slice;
    };
    begin(next, done);
}

void PrintQueue::addJobs(int count, const Done &done)
{
    qint64 oldest = QDateTime::currentMSecsSinceEpoch();
    m_store.forEach([&oldest](const StoredJob &job) { oldest = qMin(oldest, timeOf(job.record)); });

    KeptDocument document;
    document.name = newName();
    document.format = QStringLiteral("application/pdf");
    const QString failure = writeBelievableDocument(m_folder.documentPath(document.name), &document.bytes);
    if (!failure.isEmpty()) {
        done(failure);
        return;
    }
    QVector<StoredJob> jobs = believableJobs(count, m_store.size(), qMax(oldest, earliestTime));
    // As in a shop, where the oldest came first.
    std::reverse(jobs.begin(), jobs.end());
    for (StoredJob &job : jobs) {
        job.record.GUID = newName();
        job.document = document.name;
    }
    const auto next = [jobs, document, first = 0]() mutable {
        Slice slice;
        slice.change.document = document;
        slice.change.put = jobs.mid(first, jobsAtOnce);
        first += jobsAtOnce;
        slice.isLast = first >= jobs.size();
        return slice;
    };
    begin(next, [this, name = document.name, done](const QString &reason) {
        if (!m_store.documentNames().contains(name))
            QFile::remove(m_folder.documentPath(name));
        done(reason);
    });
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

void PrintQueue::removeJobs(const QStringList &guids, const Done &done)
{
    const QStringList all = QSet<QString>(guids.cbegin(), guids.cend()).values();
    const auto next = [this, all, first = 0]() mutable {
        Slice slice;
        for (const QString &guid : all.mid(first, jobsAtOnce)) {
            if (m_store.find(guid))
                slice.change.removed.append(guid);
        }
        first += jobsAtOnce;
        slice.isLast = first >= all.size();
        return slice;
    };
    begin(next, done);
}

QString PrintQueue::noteJobs(const QVector<TransportJob> &jobs)
{
    const QByteArray supplies = readSupplies(m_folder.suppliesPath());
    JobChange change;
    QHash<QString, int> places;
    QSet<QString> fulfilled;
    for (const TransportJob &seen : jobs) {
        if (seen.uuid.isEmpty() || m_store.isForgotten(seen.uuid))
            continue;
        const auto place = places.constFind(seen.uuid);
        if (place != places.constEnd()) {
            updateJob(seen, &change.put[*place]);
            continue;
        }
        const StoredJob *known = m_store.findUuid(seen.uuid);
        // A token is public once a job carries it: it is good for one new job.
        if (!known && !fulfilled.contains(seen.guid)) {
            known = m_store.findOrder(seen.guid);
            fulfilled.insert(seen.guid);
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
    const auto isFull = [&change] { return change.put.size() + change.forgettingDone.size() >= jobsAtOnce; };
    m_store.forEach([&](const StoredJob &job) {
        if (isFull() || job.uuid.isEmpty() || isFinished(job.record.jobStatus) || existing.contains(job.uuid))
            return;
        StoredJob lost = job;
        failJob(JobError::Lost, &lost);
        change.put.append(lost);
    });
    for (const ForgottenJob &job : m_store.forgotten()) {
        if (!isFull() && !existing.contains(job.uuid))
            change.forgettingDone.append(job.uuid);
    }
    const QString failure = commit(change);
    if (failure.isEmpty() && isFull())
        m_waiting.push_front([this, uuids] { return noteList(uuids); });
    return failure;
}

QString PrintQueue::noteSubmission(const QString &token, const QString &uuid)
{
    // None where jobsSeen() has told it already.
    const StoredJob *const known = m_store.findOrder(token);
    if (!known)
        return {};
    StoredJob job = *known;
    const bool isOfAnother = m_store.findUuid(uuid) || m_store.isForgotten(uuid);
    if (isOfAnother) {
        qWarning().noquote() << "job" << job.record.GUID << "is ordered again: another job carries its order";
        job.orderToken = newName();
    } else if (uuid.isEmpty()) {
        finishOrder(&job);
    } else {
        job.uuid = uuid;
        job.orderToken.clear();
    }
    JobChange change;
    change.put.append(job);
    const QString failure = commit(change);
    if (failure.isEmpty() && isOfAnother)
        submit(job);
    return failure;
}

QString PrintQueue::noteFailedSubmission(const QString &token, const QString &reason)
{
    const StoredJob *const known = m_store.findOrder(token);
    if (!known)
        return {};
    qWarning().noquote() << "job" << known->record.GUID << "cannot be submitted:" << reason;
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
    change.document = KeptDocument{name, format, QFileInfo(path).size(), 0};
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
