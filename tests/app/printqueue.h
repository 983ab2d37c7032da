// A print queue daemon whose jobs the test decides.
#pragma once

#include "fakeprintqueuedaemon.h"
#include "jobwire.h"

#include <QtCore/QMutex>
#include <QtCore/QWaitCondition>

#include <memory>

class PrintQueue
{
public:
    /// What becomes of a job that is to be printed again.
    enum class Reprint { Printed, Refused };

    /// On the bus with \a count jobs, "job 0" the oldest.
    explicit PrintQueue(int count = 0);
    ~PrintQueue();

    /// A job that was printed at this minute of 5 March 2021, with two copies.
    static PrintJobMetaData job(int minute);

    /// In place of the job with the same GUID, or as a new one; the clients are told.
    void set(const PrintJobMetaData &job);
    void remove(const QString &guid);
    PrintJobMetaData at(const QString &guid);
    void answerReprint(Reprint reprint);
    /// So long it takes to answer what changes something.
    void delayOrders(unsigned long milliseconds);
    /// Whether it answers with an error when it is asked for jobs.
    void failLists(bool fails);
    /// Answers nothing, and then all that it was asked meanwhile.
    void hang();
    void goOn();
    /// Names of the methods that were called to change something, with their arguments.
    QStringList orders();

    /// Is gone from the bus, and there again with the same jobs.
    void vanish() { m_daemon.reset(); }
    void appear();

private:
    QDBusMessage answer(const QDBusMessage &call);
    QDBusMessage reprint(const QDBusMessage &call);
    void announce(const QStringList &guids);

    QMutex m_mutex;
    QWaitCondition m_goesOn;
    bool m_isHanging = false;
    bool m_failsLists = false;
    unsigned long m_delay = 0;
    QMap<QString, PrintJobMetaData> m_jobs;
    qulonglong m_revision = 1;
    Reprint m_reprint = Reprint::Printed;
    QStringList m_orders;
    std::unique_ptr<FakePrintQueueDaemon> m_daemon;
};
