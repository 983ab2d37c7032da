// Works out what a change means for revisions, limits and documents; writes it; then keeps it.
#include "jobstore.h"

#include <algorithm>
#include <iterator>

namespace {

/// Texts that many jobs have, such as a status or a colour, are kept once. So many are looked for.
constexpr int mostSharedTexts = 1000;

int textLength(const PrintJobMetaData &record)
{
    int length = 0;
    for (const QString *const text :
         {&record.timeStamp, &record.GUID, &record.jobName, &record.jobStatus, &record.supplySKU,
          &record.supplyColor, &record.ribbon1SKU, &record.ribbon1Color, &record.ribbon2SKU,
          &record.ribbon2Color, &record.imagePath})
        length += text->size();
    return length;
}

} // namespace

JobStore::JobStore(const QString &path, const StoreLimits &limits)
    : m_database(path)
    , m_limits(limits)
{
}

QString JobStore::open()
{
    DatabaseContent content;
    const QString failure = m_database.open(&content);
    if (!failure.isEmpty())
        return failure;
    m_epoch = content.epoch;
    m_revision = content.revision;
    m_floor = content.floor;
    for (const KeptDocument &document : content.documents) {
        m_documents.insert(document.name, {document, 0});
        m_lastUse = std::max(m_lastUse, document.used);
    }
    for (StoredJob &job : content.jobs) {
        share(job.record);
        keep(job);
    }
    for (const Tombstone &tombstone : content.tombstones) {
        m_tombstones.insert(tombstone.guid, tombstone.revision);
        m_removals.emplace(tombstone.revision, tombstone.guid);
    }
    for (const ForgottenJob &job : content.forgotten)
        m_forgotten.insert(job.uuid, job.number);
    return {};
}

const StoredJob *JobStore::find(const QString &guid) const
{
    const auto place = m_jobs.find(guid);
    return place == m_jobs.end() ? nullptr : &place->second;
}

const StoredJob *JobStore::findUuid(const QString &uuid) const
{
    return find(m_guidOfUuid.value(uuid));
}

const StoredJob *JobStore::findOrder(const QString &token) const
{
    return find(m_guidOfToken.value(token));
}

const KeptDocument *JobStore::documentOf(const StoredJob &job) const
{
    const auto place = m_documents.constFind(job.document);
    return place == m_documents.constEnd() ? nullptr : &place->document;
}

bool JobStore::isForgotten(const QString &uuid) const
{
    return m_forgotten.contains(uuid);
}

QVector<ForgottenJob> JobStore::forgotten() const
{
    QVector<ForgottenJob> jobs;
    for (auto job = m_forgotten.cbegin(); job != m_forgotten.cend(); ++job)
        jobs.append({job.key(), job.value()});
    return jobs;
}

int JobStore::size() const
{
    return int(m_jobs.size());
}

int JobStore::orderCount() const
{
    return m_guidOfToken.size();
}

QStringList JobStore::firstFinished(quint64 arrival, int count) const
{
    QStringList guids;
    for (auto job = m_finished.cbegin();
         job != m_finished.cend() && job->first <= arrival && guids.size() < count; ++job)
        guids.append(job->second);
    return guids;
}

quint64 JobStore::lastArrival() const
{
    return m_lastArrival;
}

QStringList JobStore::guids() const
{
    QStringList guids;
    guids.reserve(size());
    for (const auto &job : m_jobs)
        guids.append(job.first);
    return guids;
}

QStringList JobStore::documentNames() const
{
    return m_documents.keys();
}

void JobStore::forEach(const std::function<void(const StoredJob &)> &look) const
{
    for (const auto &job : m_jobs)
        look(job.second);
}

QString JobStore::epoch() const
{
    return m_epoch;
}

quint64 JobStore::revision() const
{
    return m_revision;
}

JobDifference JobStore::difference(const QString &knownEpoch, quint64 knownRevision, quint64 begun) const
{
    JobDifference result;
    result.epoch = m_epoch;
    result.revision = m_revision;
    result.isComplete =
        knownEpoch != m_epoch || knownRevision > m_revision || std::max(knownRevision, begun) < m_floor;

    const quint64 from = result.isComplete ? 0 : knownRevision;
    auto job = m_byRevision.upper_bound(from);
    for (int length = 0;
         job != m_byRevision.end() && result.jobs.size() < largestDifference && length < longestDifference;
         ++job) {
        result.jobs.append(job->second->record);
        length += textLength(job->second->record);
    }
    result.hasMore = job != m_byRevision.end();
    if (result.hasMore)
        result.revision = std::prev(job)->first;

    if (!result.isComplete) {
        for (auto removal = m_removals.lower_bound({from + 1, QString()});
             removal != m_removals.end() && removal->first <= result.revision; ++removal)
            result.removed.append(removal->second);
    }
    return result;
}

ChangeResult JobStore::commit(const JobChange &change)
{
    ChangeResult result;
    DatabaseChange rows;
    rows.revision = m_revision;
    const QVector<StoredJob> coming = arriving(change.put);
    const QStringList evictedJobs = evicted(coming, change.removed);
    const QSet<QString> evictedSet(evictedJobs.cbegin(), evictedJobs.cend());

    for (StoredJob job : coming) {
        const QString guid = job.record.GUID;
        const StoredJob *const known = find(guid);
        if (evictedSet.contains(guid)) {
            const bool isNameNew = !known || known->uuid.isEmpty();
            if (isNameNew && !job.uuid.isEmpty())
                rows.forgotten.append({job.uuid, job.number});
            continue;
        }
        share(job.record);
        if (known && isSameRecord(known->record, job.record)) {
            job.revision = known->revision;
        } else {
            job.revision = ++rows.revision;
            result.changed.append(guid);
        }
        if (m_tombstones.contains(guid))
            rows.revived.append(guid);
        rows.put.append(job);
    }
    for (const QString &guid : change.removed + evictedJobs) {
        if (find(guid))
            rows.removed.append(guid);
    }
    if (!rows.removed.isEmpty())
        ++rows.revision;
    rows.floor = floorAfter(rows.removed.size(), rows.revision);
    rows.raisesFloor = rows.floor != m_floor;
    for (const QString &uuid : change.forgettingDone) {
        if (m_forgotten.contains(uuid))
            rows.forgettingDone.append(uuid);
    }
    if (change.document) {
        rows.documentsPut.append(*change.document);
        rows.documentsPut.last().used = m_lastUse + 1;
    }
    countDocuments(change, rows);

    const bool isEmpty = rows.put.isEmpty() && rows.removed.isEmpty() && rows.forgotten.isEmpty()
        && rows.forgettingDone.isEmpty() && rows.documentsPut.isEmpty() && rows.documentsRemoved.isEmpty();
    if (!isEmpty)
        result.failure = m_database.write(rows);
    if (!result.failure.isEmpty()) {
        result.changed.clear();
        return result;
    }

    result.changed += rows.removed;
    result.removedJobs = rows.removed;
    result.removedDocuments = rows.documentsRemoved;
    result.toForget = rows.forgotten;
    for (const QString &guid : rows.removed) {
        const StoredJob *const job = find(guid);
        if (!job->uuid.isEmpty())
            result.toForget.append({job->uuid, job->number});
    }
    apply(rows);
    return result;
}

/// The jobs with their places in the order of arrival.
QVector<StoredJob> JobStore::arriving(QVector<StoredJob> jobs) const
{
    quint64 last = m_lastArrival;
    for (StoredJob &job : jobs) {
        const StoredJob *const known = find(job.record.GUID);
        job.arrival = known ? known->arrival : ++last;
    }
    return jobs;
}

/// The finished jobs that came first, also of those that come now, as many as are too many.
QStringList JobStore::evicted(const QVector<StoredJob> &coming, const QStringList &removed) const
{
    int count = size() - removed.size();
    for (const StoredJob &job : coming)
        count += find(job.record.GUID) ? 0 : 1;
    const int excess = count - m_limits.jobs;
    if (excess <= 0)
        return {};

    QSet<QString> touched(removed.cbegin(), removed.cend());
    std::vector<std::pair<quint64, QString>> candidates;
    for (const StoredJob &job : coming) {
        touched.insert(job.record.GUID);
        if (isFinished(job.record.jobStatus))
            candidates.emplace_back(job.arrival, job.record.GUID);
    }
    int taken = 0;
    for (auto job = m_finished.cbegin(); job != m_finished.cend() && taken < excess; ++job) {
        if (touched.contains(job->second))
            continue;
        candidates.emplace_back(job->first, job->second);
        ++taken;
    }
    std::sort(candidates.begin(), candidates.end());
    QStringList guids;
    for (const auto &candidate : candidates) {
        if (guids.size() == excess)
            break;
        guids.append(candidate.second);
    }
    return guids;
}

/// Up to which revision tombstones are given up when so many come.
quint64 JobStore::floorAfter(int newTombstones, quint64 revision) const
{
    if (newTombstones > m_limits.tombstones)
        return revision;
    const int excess = int(m_removals.size()) + newTombstones - m_limits.tombstones;
    if (newTombstones == 0 || excess <= 0)
        return m_floor;
    // Those of one revision go together.
    return std::next(m_removals.begin(), excess - 1)->first;
}

/// Finds the documents that no job has any more, and those for which there is no room.
void JobStore::countDocuments(const JobChange &change, DatabaseChange &rows) const
{
    QHash<QString, int> difference;
    const auto count = [&difference](const QString &name, int number) {
        if (!name.isEmpty())
            difference[name] += number;
    };
    for (const QString &guid : rows.removed)
        count(find(guid)->document, -1);
    for (const StoredJob &job : rows.put) {
        if (const StoredJob *const known = find(job.record.GUID))
            count(known->document, -1);
        count(job.document, 1);
    }
    for (auto use = difference.cbegin(); use != difference.cend(); ++use) {
        const auto document = m_documents.constFind(use.key());
        const bool isNew = !rows.documentsPut.isEmpty() && rows.documentsPut.constFirst().name == use.key();
        if (document == m_documents.constEnd() && !isNew)
            continue;
        const int before = document == m_documents.constEnd() ? 0 : document->references;
        if (before + use.value() <= 0)
            rows.documentsRemoved.append(use.key());
    }
    rows.documentsRemoved += oldestDocuments(change, rows);
}

QStringList JobStore::oldestDocuments(const JobChange &change, const DatabaseChange &rows) const
{
    if (!change.document)
        return {};
    qint64 bytes = m_documents.contains(change.document->name) ? 0 : change.document->bytes;
    for (const Shelved &shelved : m_documents)
        bytes += shelved.document.bytes;
    if (bytes <= m_limits.documentBytes)
        return {};
    QSet<QString> pinned{change.document->name};
    for (const QString &guid : m_guidOfToken)
        pinned.insert(find(guid)->document);
    for (const StoredJob &job : rows.put) {
        if (job.isOrder())
            pinned.insert(job.document);
    }
    std::vector<std::pair<quint64, QString>> candidates;
    for (const Shelved &shelved : m_documents) {
        if (!pinned.contains(shelved.document.name) && !rows.documentsRemoved.contains(shelved.document.name))
            candidates.emplace_back(shelved.document.used, shelved.document.name);
    }
    std::sort(candidates.begin(), candidates.end());
    QStringList names;
    for (const auto &candidate : candidates) {
        if (bytes <= m_limits.documentBytes)
            break;
        bytes -= m_documents.constFind(candidate.second)->document.bytes;
        names.append(candidate.second);
    }
    return names;
}

void JobStore::apply(const DatabaseChange &rows)
{
    m_revision = rows.revision;
    for (const QString &guid : rows.removed) {
        const StoredJob &job = *find(guid);
        if (!job.uuid.isEmpty())
            m_forgotten.insert(job.uuid, job.number);
        drop(guid);
        m_tombstones.insert(guid, rows.revision);
        m_removals.emplace(rows.revision, guid);
    }
    for (const ForgottenJob &job : rows.forgotten)
        m_forgotten.insert(job.uuid, job.number);
    for (const QString &uuid : rows.forgettingDone)
        m_forgotten.remove(uuid);
    for (const KeptDocument &document : rows.documentsPut) {
        m_documents[document.name].document = document;
        m_lastUse = std::max(m_lastUse, document.used);
    }
    for (const StoredJob &job : rows.put) {
        drop(job.record.GUID);
        keep(job);
    }
    for (const QString &name : rows.documentsRemoved)
        m_documents.remove(name);
    for (const QString &guid : rows.revived)
        m_removals.erase({m_tombstones.take(guid), guid});
    m_floor = rows.floor;
    while (!m_removals.empty() && m_removals.begin()->first <= m_floor) {
        m_tombstones.remove(m_removals.begin()->second);
        m_removals.erase(m_removals.begin());
    }
}

void JobStore::keep(const StoredJob &job)
{
    const QString &guid = job.record.GUID;
    const StoredJob &kept = m_jobs.insert_or_assign(guid, job).first->second;
    m_byRevision[kept.revision] = &kept;
    if (isFinished(kept.record.jobStatus))
        m_finished.emplace(kept.arrival, guid);
    m_lastArrival = std::max(m_lastArrival, kept.arrival);
    if (!kept.uuid.isEmpty())
        m_guidOfUuid.insert(kept.uuid, guid);
    if (kept.isOrder())
        m_guidOfToken.insert(kept.orderToken, guid);
    const auto document = m_documents.find(kept.document);
    if (document != m_documents.end())
        ++document->references;
}

void JobStore::drop(const QString &guid)
{
    const auto place = m_jobs.find(guid);
    if (place == m_jobs.end())
        return;
    const StoredJob &job = place->second;
    m_byRevision.erase(job.revision);
    m_finished.erase(job.arrival);
    m_guidOfUuid.remove(job.uuid);
    m_guidOfToken.remove(job.orderToken);
    const auto document = m_documents.find(job.document);
    if (document != m_documents.end())
        --document->references;
    m_jobs.erase(place);
}

void JobStore::share(PrintJobMetaData &record)
{
    for (QString *const text : {&record.jobStatus, &record.supplySKU, &record.supplyColor, &record.ribbon1SKU,
                                &record.ribbon1Color, &record.ribbon2SKU, &record.ribbon2Color}) {
        const auto known = m_texts.constFind(*text);
        if (known != m_texts.constEnd())
            *text = *known;
        else if (m_texts.size() < mostSharedTexts)
            m_texts.insert(*text);
    }
}
