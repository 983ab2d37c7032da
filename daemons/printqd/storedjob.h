// One print job as the daemon keeps it: the record that it tells, and what it has to remember besides.
#pragma once

#include "jobwire.h"

#include <QtCore/QString>

struct StoredJob
{
    PrintJobMetaData record;
    quint64 revision = 0; ///< of the last change of the record; given by the store
    quint64 arrival = 0; ///< grows with the order in which the jobs came here; given by the store
    QString uuid; ///< the transport's lasting name of the job; empty as long as it has none
    int number = 0; ///< the transport's number of the job, which it may give to another one later
    QString document; ///< name of the kept document; empty where there never was one
    QString originalUuid; ///< of an order: the job that it repeats
    /// Of an order that is still to be submitted: what travels with its job, by which that is known again.
    /// Random, and told to nobody else, since whoever knows it can have the order taken for carried out.
    QString orderToken;
    bool wantsDocument = false; ///< its document is still to be copied
    bool wantsPicture = false; ///< its picture is still to be made

    bool isOrder() const { return !orderToken.isEmpty(); }
};

/// A document that can be printed again.
struct KeptDocument
{
    QString name; ///< of the file
    QString format; ///< MIME type; empty where it is not known
    qint64 bytes = 0;
    quint64 used = 0; ///< grows with the order in which they were kept or printed again; given by the store
};

/// A job that is gone here and that the transport has not forgotten yet.
struct ForgottenJob
{
    QString uuid;
    int number = 0;
};

/// The value of eventType.
enum class JobEvent { Seen = 1, StateChanged = 2, Reprint = 3 };
/// The value of appName.
enum class JobSource { Unknown = 0, SchedulerClient = 1, Reprint = 2 };
/// The value of errorValue.
enum class JobError { None = 0, Failed = 1, Cancelled = 2, Lost = 3 };

/// Whether a job with this status is over.
bool isFinished(const QString &status);
/// Time of a job in milliseconds since the epoch, which may be any number; 0 where its time stamp is none.
qint64 timeOf(const PrintJobMetaData &record);
