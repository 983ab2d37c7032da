// What carries documents to the printer and tells what becomes of them.
#pragma once

#include <QtCore/QMetaType>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

/// One job as the transport knows it.
struct TransportJob
{
    enum class State { Waiting, Held, Printing, Stopped, Printed, Cancelled, Failed };

    QString uuid; ///< lasting name, never given out again (IPP job-uuid, RFC 8011 and PWG 5100.13)
    int number =
        0; ///< IPP job-id: for requests only, since a scheduler that lost its state gives it out again
    QString guid; ///< token of the order that made the job; empty for a job of somebody else
    QString name;
    int copies = 1;
    int documents = 1;
    int tension1 = 0; ///< printer option R1TensionAdjust of the job
    int tension2 = 0; ///< printer option R2TensionAdjust of the job
    State state = State::Waiting;
    qint64 createdMilliseconds = 0; ///< since the Unix epoch; grows with the order of submission
};

/// A job to be submitted.
struct TransportOrder
{
    /// Token of the order, a UUID: travels with the job, so that an order is not carried out twice after a
    /// crash. Nobody else may know it before there is the job, or could claim the order for a job of his own.
    QString guid;
    QString documentPath;
    QString format; ///< MIME type of the document; empty lets the scheduler find out
    QString name;
    int copies = 1;
    QString originalUuid; ///< job whose printer options are taken, where it is still known; may be empty
};

Q_DECLARE_METATYPE(TransportJob)
Q_DECLARE_METATYPE(TransportOrder)

/**
 * Lives on a thread of its own and is only reached through queued calls, so that a printer or a scheduler
 * that does not answer holds nobody. Each request ends within a stated time. Where a scheduler cannot be
 * reached the transport tries again by itself, and orders wait.
 */
class PrintTransport : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

public Q_SLOTS:
    /// Begins to follow the jobs, those that exist already included.
    virtual void start() = 0;
    /// Submits a document, once, however often the same order is given: a job that carries its token fulfils
    /// it.
    virtual void submit(const TransportOrder &order) = 0;
    /// Copies the document of a job to \a path, a new file that only this daemon's user can read. Waits while
    /// the disk does not take it.
    virtual void keepDocument(const QString &uuid, int number, const QString &path) = 0;
    /// Lets the scheduler forget a job that is over, and its document.
    virtual void forget(const QString &uuid, int number) = 0;
    /// Gives up what is under way, soon: the thread is about to end.
    virtual void stop() = 0;

Q_SIGNALS:
    /// Jobs that are new or have changed since they were last told, in the order of their submission.
    void jobsSeen(const QVector<TransportJob> &jobs);
    /// All jobs were looked at, and told where they changed: these are the ones that exist. What had not
    /// finished and is not among them will never be heard of again.
    void listCompleted(const QStringList &uuids);
    /// A job carries the order now; jobsSeen() tells of it too. Without \a uuid the scheduler took it and has
    /// forgotten the job already, as one does that keeps no history.
    void submitted(const QString &guid, const QString &uuid);
    /// The order was refused for good and is not tried again. Neither is one that the scheduler may have
    /// taken before it lost what it knew: it may have been printed.
    void submissionFailed(const QString &guid, const QString &reason);
    void documentKept(const QString &uuid, const QString &path, const QString &format);
    void documentNotKept(const QString &uuid, const QString &reason);
    void forgotten(const QString &uuid);
    void reachableChanged(bool isReachable);
};
