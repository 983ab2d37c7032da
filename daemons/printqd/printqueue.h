// What happens to the jobs: what the transport tells of them, orders, clearing, documents and pictures.
#pragma once

#include "jobstore.h"
#include "printtransport.h"
#include "statefolder.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QTimer>
#include <QtCore/QVector>

#include <deque>
#include <functional>

class PictureMaker;
class TransportThread;

/**
 * Lives on the thread of the bus. Of the transport it only takes signals and gives it what is to be done, so
 * that it never waits for a printer.
 *
 * What the transport tells and what cannot be written, because the disk is full for instance, is kept and
 * tried again; what somebody asks for is refused then.
 */
class PrintQueue : public QObject
{
    Q_OBJECT

public:
    /// Each must outlive this object.
    PrintQueue(JobStore &store, const StateFolder &folder, TransportThread &transport, PictureMaker &pictures,
               QObject *parent = nullptr);

    /// Tidies the folder, begins to follow the transport, and gives it what was ordered before.
    void start();

    const JobStore &store() const { return m_store; }

    /// So many orders may wait to be submitted.
    static constexpr int mostOrders = 1000;
    /// How an order fails: the job is not known, its document is not there, too many wait, or the disk does
    /// not take it.
    enum class Refused { No, UnknownJob, NoDocument, TooManyOrders, NotWritten };
    Refused reprint(const QString &guid, QString *reason);

    /// Told at the end of work that may take longer: an empty text, or why the rest of it was not done.
    using Done = std::function<void(const QString &failure)>;
    /**
     * Removes what is finished. Work on many jobs is done in slices, each one transaction, with the event
     * loop in between, so that nobody waits for all of it; what changed is told at its end, before \a done.
     * The first slice is done at once where no other work is under way.
     */
    void clear(const Done &done);

    // What a virtual device can do besides.
    void addJobs(int count, const Done &done);
    QString setJob(const PrintJobMetaData &record);
    void removeJobs(const QStringList &guids, const Done &done);
    /// Does the work that is under way without the event loop, as at a start.
    void finishWork();

Q_SIGNALS:
    /// These jobs are new, other or gone, and that is on the disk.
    void changed(const QStringList &guids);

private:
    /// Something that the transport told; the result is empty or why it could not be written.
    using Notice = std::function<QString()>;

    /// Some of the work on many jobs.
    struct Slice
    {
        JobChange change;
        bool isLast = false;
    };
    struct Work
    {
        std::function<Slice()> next;
        Done done;
        QStringList changed;
    };

    void take(const Notice &notice);
    void takeWaiting();
    void begin(const std::function<Slice()> &next, const Done &done);
    void doSlice();
    QString commit(const JobChange &change);
    QString commit(const JobChange &change, QStringList *changed);
    void orderAgain();
    void submit(const StoredJob &job);
    void forgetAll(const QVector<ForgottenJob> &jobs);

    QString noteJobs(const QVector<TransportJob> &jobs);
    QString noteList(const QStringList &uuids);
    QString noteSubmission(const QString &token, const QString &uuid);
    QString noteFailedSubmission(const QString &token, const QString &reason);
    QString noteDocument(const QString &uuid, const QString &path, const QString &format);
    QString noteMissingDocument(const QString &uuid, const QString &reason);
    QString noteForgotten(const QStringList &uuids);
    QString notePicture(const QString &guid, const QString &path);

    void keepDocumentOf(const StoredJob &job);
    void wantPicture(const QString &guid);
    void makeNextPicture();
    QString linkPicture(const StoredJob &original, const QString &guid) const;
    void removeFiles(const ChangeResult &result);
    void removeSomeFiles();

    JobStore &m_store;
    const StateFolder &m_folder;
    TransportThread &m_transport;
    PictureMaker &m_pictures;
    std::deque<Notice> m_waiting;
    QTimer m_soon;
    QTimer m_again;
    bool m_isDelayed = false;
    std::deque<Work> m_work;
    QTimer m_slices;
    QHash<QString, QString> m_keeping; ///< UUID to name of the document that is being copied
    std::deque<QString> m_pictureless;
    bool m_isMakingPicture = false;
    QStringList m_filesToRemove;
    QTimer m_removal;
};
