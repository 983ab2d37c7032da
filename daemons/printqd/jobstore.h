// The jobs that the daemon keeps: in memory for whoever reads, in the database before a change is true.
#pragma once

#include "jobdatabase.h"
#include "storedjob.h"

#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <functional>
#include <map>
#include <optional>
#include <set>

/// What changed since a revision.
struct JobDifference
{
    QString epoch;
    quint64 revision = 0;
    bool isComplete = false;
    QList<PrintJobMetaData> jobs;
    QStringList removed;
    bool hasMore = false;
};

/// What becomes of the jobs in one transaction; every GUID occurs once at most.
struct JobChange
{
    QVector<StoredJob> put; ///< new, or in place of the job with that GUID
    QStringList removed;
    QStringList forgettingDone; ///< UUIDs that the transport knows no more
    std::optional<KeptDocument> document; ///< a new one, or one that is used again
};

struct ChangeResult
{
    QString failure; ///< why nothing has changed; empty where all has
    QStringList changed; ///< jobs whose record is new, other or gone
    QVector<ForgottenJob> toForget; ///< what the transport has to forget now
    QStringList removedJobs;
    QStringList removedDocuments; ///< names of files that nobody needs any more
};

/// What is kept at most. What came, or was used, first goes first, whatever the clock said then; jobs that
/// are not finished, and documents of orders, stay.
struct StoreLimits
{
    int jobs = 10000;
    int tombstones = 10000;
    qint64 documentBytes = 256 * 1024 * 1024;
};

/**
 * Reads never touch the disk. A change is on the disk when commit() returns, or nothing of it is there.
 *
 * A revision counts the changes of records. What is gone leaves a tombstone, so that who knew it can be told;
 * those who know less than the oldest tombstones are told everything anew.
 */
class JobStore
{
public:
    JobStore(const QString &path, const StoreLimits &limits);

    /// Reads the database; see JobDatabase::open(), also for what becomes of the folders beside it.
    QString open();

    const StoredJob *find(const QString &guid) const;
    const StoredJob *findUuid(const QString &uuid) const;
    /// The order that waits for a job with \a token.
    const StoredJob *findOrder(const QString &token) const;
    /// The kept document of a job; null where there is none any more.
    const KeptDocument *documentOf(const StoredJob &job) const;
    bool isForgotten(const QString &uuid) const;
    QVector<ForgottenJob> forgotten() const;

    int size() const;
    int orderCount() const;
    /// The first \a count of the finished jobs that came up to \a arrival, in the order in which they came.
    QStringList firstFinished(quint64 arrival, int count) const;
    /// The last one's place in the order in which the jobs came.
    quint64 lastArrival() const;
    /// In their order, which makes them cheap to put into a map.
    QStringList guids() const;
    QStringList documentNames() const;
    void forEach(const std::function<void(const StoredJob &)> &look) const;

    QString epoch() const;
    quint64 revision() const;

    /// One answer has so many jobs at most, and ends at so many characters, which keeps it far below what a
    /// bus carries in one message (32 MiB).
    static constexpr int largestDifference = 4000;
    static constexpr int longestDifference = 4 * 1024 * 1024;
    /**
     * What who knows \a knownRevision of \a knownEpoch does not know. Where that is too long ago the
     * difference is complete, unless the caller is in the middle of a complete one that was begun at the
     * revision \a begun.
     */
    JobDifference difference(const QString &knownEpoch, quint64 knownRevision, quint64 begun = 0) const;

    ChangeResult commit(const JobChange &change);

private:
    struct Shelved
    {
        KeptDocument document;
        int references = 0;
    };
    using Removal = std::set<std::pair<quint64, QString>>;

    void keep(const StoredJob &job);
    void drop(const QString &guid);
    void share(PrintJobMetaData &record);
    QVector<StoredJob> arriving(QVector<StoredJob> jobs) const;
    QStringList evicted(const QVector<StoredJob> &coming, const QStringList &removed) const;
    quint64 floorAfter(int newTombstones, quint64 revision) const;
    void countDocuments(const JobChange &change, DatabaseChange &rows) const;
    QStringList oldestDocuments(const JobChange &change, const DatabaseChange &rows) const;
    void apply(const DatabaseChange &rows);

    JobDatabase m_database;
    const StoreLimits m_limits;
    QString m_epoch;
    quint64 m_revision = 0;
    quint64 m_floor = 0;
    std::map<QString, StoredJob> m_jobs;
    std::map<quint64, const StoredJob *> m_byRevision;
    std::map<quint64, QString> m_finished; ///< by arrival
    quint64 m_lastArrival = 0;
    quint64 m_lastUse = 0;
    QHash<QString, QString> m_guidOfUuid;
    QHash<QString, QString> m_guidOfToken;
    QHash<QString, quint64> m_tombstones;
    Removal m_removals;
    QHash<QString, int> m_forgotten;
    QHash<QString, Shelved> m_documents;
    QSet<QString> m_texts;
};
