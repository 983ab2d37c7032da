// Jobs as IPP attributes (RFC 8011), read and written.
#pragma once

#include "printtransport.h"

#include <cups/ipp.h>

/// A job, and what only this side of the daemon has to know of it.
struct CupsJob
{
    TransportJob job;
    qint64 creationSeconds = 0;
    ipp_jstate_t state = IPP_JSTATE_PENDING;
    QByteArray queueUri; ///< as the scheduler's own host is called, which is not always as we call it
    int documentsThere = 0; ///< documents that the scheduler still has
    bool hadDocument = false; ///< false while the first one has not arrived whole
    /**
     * Held without a reason. So is a job between Create-Job and Send-Document, which most clients use, but
     * then the scheduler says that it is incoming. One that says nothing was killed after it had noted the
     * first of the two, and never goes on with the job. Whether it had been printed by then nobody knows.
     */
    bool isAbandoned = false;

    /// Nothing more will happen to it, unless somebody releases an abandoned one.
    bool isOver() const { return state >= IPP_JSTATE_CANCELED || isAbandoned; }
    bool isIncoming() const { return !isOver() && !hadDocument; }
    /// What is left of an order between its two requests; nothing of it was printed.
    bool isEmptyOrder() const { return !job.guid.isEmpty() && !hadDocument; }
};

bool operator==(const TransportJob &one, const TransportJob &other);
inline bool operator!=(const TransportJob &one, const TransportJob &other)
{
    return !(one == other);
}

namespace CupsJobs {

/// The attribute of a job that carries the token of an order.
extern const char *const guidAttribute;

/// Has the answer carry what jobsIn() reads.
void askForDetails(ipp_t *request);
/// Has it carry number, state and second of creation only, which the scheduler tells of any number of jobs at
/// once.
void askForStates(ipp_t *request);
/// The jobs of an answer, by their numbers. Their creation in milliseconds is not known yet. Jobs without a
/// uuid, which there are only in the answer to askForStates(), have an empty one.
QVector<CupsJob> jobsIn(ipp_t *answer);
/// The first job-uuid of the answer; empty where there is none.
QString uuidIn(ipp_t *answer);

/// Copies the printer options of the job in \a original to the new job \a order: all that does not belong to
/// that one job, such as its name, its times, its copies or that it was held.
void copyOptions(ipp_t *original, ipp_t *order);

/**
 * Milliseconds for a job created at \a creationSeconds. Where the job was created just now (within 2 s of \a
 * now) it is \a now, else the second's beginning; in either case after \a previous, the time of the job
 * before it, as long as that is not of a later time by more than 3 s, as when the clock was set back.
 */
qint64 creationTime(qint64 creationSeconds, qint64 now, qint64 previous);

} // namespace CupsJobs
