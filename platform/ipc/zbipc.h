// ZBIPC: what the print queue daemon knows of its jobs, one job at a time.
#pragma once

#include "printjobmetadata.h"
#include "zbipc_export.h"

#include <QtCore/QObject>
#include <QtCore/QString>

/**
 * Reads jobs from the daemon `com.corvanta.printqd` on the system bus. README.md beside this header says what
 * travels.
 *
 * Jobs are read in fetches. A fetch asks the daemon once, for what changed since the one before; the jobs
 * that are then read come from memory. It ends when one of its jobs is asked for again, when the program
 * returns to an event loop, and when the daemon has said that jobs changed or has restarted. So a record is
 * never older than its fetch.
 *
 * To be used from the thread that the object lives in. Nothing is logged and nothing throws.
 */
class ZBIPC_EXPORT ZBIPC : public QObject
{
    Q_OBJECT

public:
    /// Waits for no daemon, also for one that hangs.
    explicit ZBIPC(QObject *parent);
    ~ZBIPC() override;

    /**
     * The record of the job \a guid; an empty one, with no copies, where the daemon knows no such job or
     * cannot be asked. Raises no signal.
     *
     * The first question of a fetch waits for the daemon: 2 seconds an answer, of which there is one for
     * 4,000 changed jobs. When that was in vain, or the answer made no sense, all records are empty until the
     * fetch ends.
     */
    PrintJobMetaData getJobInfo(QString guid) const;

Q_SIGNALS:
    /**
     * A job has changed, appeared or gone: once for every job that the daemon names, and after the daemon was
     * away, or a fetch has failed, for every job that is not as it was read last. Jobs of the latter kind
     * that are read before their turn comes are left out. What else turns out to have changed when jobs are
     * read raises nothing.
     *
     * Raised from the event loop, one job a turn, after the other events of that turn. A job whose turn has
     * not come yet is not queued again.
     *
     * One exception: when somebody has read every job that the daemon has, in one fetch, only the oldest 50
     * of the jobs that then wait are told, and no others. Where the daemon has no job left there is none to
     * read, and all are told.
     *
     * An object whose signal is connected to nothing forgets, from the event loop, what it has read and what
     * it would have told as soon as there is something to tell. It can be read as before.
     */
    void PrintJobInfoChanged(QString guid);

private:
    Q_DISABLE_COPY(ZBIPC)
    struct Private;
    Private *d;
};
