// The file in which the jobs lie: an SQLite database.
#pragma once

#include "storedjob.h"

#include <QtCore/QStringList>
#include <QtCore/QVariantList>
#include <QtCore/QVector>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>

#include <memory>

/// A job that is gone, by which those who knew it learn that.
struct Tombstone
{
    QString guid;
    quint64 revision = 0;
};

/// Everything that is in the database.
struct DatabaseContent
{
    QString epoch;
    quint64 revision = 0;
    quint64 floor = 0; ///< tombstones up to this revision are no longer kept
    QVector<StoredJob> jobs;
    QVector<Tombstone> tombstones;
    QVector<ForgottenJob> forgotten;
    QVector<KeptDocument> documents;
};

/// One transaction.
struct DatabaseChange
{
    quint64 revision = 0;
    quint64 floor = 0;
    bool raisesFloor = false;
    QVector<StoredJob> put; ///< new, or in place of the job with that GUID
    QStringList revived; ///< of these, GUIDs that have a tombstone
    QStringList removed; ///< get a tombstone of the revision, and are to be forgotten by the transport
    QVector<ForgottenJob> forgotten; ///< to be forgotten without ever having been kept
    QStringList forgettingDone; ///< UUIDs
    QVector<KeptDocument> documentsPut;
    QStringList documentsRemoved; ///< names
};

/**
 * Every write is one transaction that is on the disk when it returns (write-ahead log, synced for each). The
 * database is locked for this process as long as it is open.
 */
class JobDatabase
{
public:
    explicit JobDatabase(const QString &path);
    ~JobDatabase();

    /**
     * Opens the file, which is made where it is missing, and reads all of it. A file that can be read, and is
     * damaged or of something else, is set aside together with the folders beside it (see SetAside), and so
     * are these where the file is missing; that is logged, and the content is that of a new one, with another
     * epoch. Returns an empty text, or why the file cannot be used: it cannot be read, for instance, or is of
     * a later version; nothing has changed then.
     */
    QString open(DatabaseContent *content);

    /// Does the whole change and returns an empty text, or nothing of it and returns why.
    QString write(const DatabaseChange &change);

private:
    Q_DISABLE_COPY(JobDatabase)

    enum class Opened { Yes, Damaged, Impossible };

    Opened tryToOpen(DatabaseContent *content, QString *complaint);
    Opened prepareSchema(QString *complaint);
    static Opened outcomeOf(const QSqlError &error, QString *complaint);
    static Opened outcomeOfTables(const QSqlError &error, QString *complaint);
    Opened createSchema(QString *complaint);
    Opened load(DatabaseContent *content, QString *complaint);
    bool execute(const QString &statement);
    QVariant valueOf(const QString &statement);
    bool writeRows(const DatabaseChange &change);
    bool writeJobs(const QVector<StoredJob> &jobs);
    bool remove(const DatabaseChange &change);
    bool execute(const QString &statement, const QVariantList &values);
    void close();
    QString setAside(const QString &complaint) const;

    const QString m_path;
    const QString m_connection;
    QSqlDatabase m_database;
    std::unique_ptr<QSqlQuery> m_putJob;
    QSqlError m_error;
};
