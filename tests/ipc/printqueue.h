// A print queue daemon of the test's own, which answers rightly or as the test has it.
#pragma once

#include "printjobmetadata.h"

#include <QtCore/QMap>
#include <QtCore/QMutex>
#include <QtCore/QStringList>
#include <QtCore/QThread>
#include <QtCore/QVariantList>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>

#include <functional>
#include <memory>

/// A job with 23 different values, which \a change changes.
PrintJobMetaData sampleJob(const QString &guid, int change = 0);
bool isSame(const PrintJobMetaData &a, const PrintJobMetaData &b);

/// What a print queue daemon keeps, in the plainest way. To be used from one thread at a time.
class PrintQueueStore
{
public:
    void set(const PrintJobMetaData &job);
    void remove(const QString &guid);
    /// Loses the store, jobs and all.
    void lose(const QString &nextEpoch);

    QVariantList changesSince(const QString &epoch, quint64 revision) const;
    const QMap<QString, PrintJobMetaData> &jobs() const { return m_jobs; }

    QString epoch = QStringLiteral("first");
    quint64 revision = 0;
    int mostInAnAnswer = 4000;

private:
    QMap<QString, PrintJobMetaData> m_jobs;
    QMap<QString, quint64> m_revisions; ///< those of removed jobs too
};

/**
 * Owns the daemon's name on the test's system bus, on a connection and a thread of its own, from start() to
 * end(). The store outlives that, as it does on a disk.
 */
class PrintQueue
{
public:
    /// Makes the reply to a call of the daemon's interface; an invalid message is no reply at all. Runs on
    /// the daemon's thread, one call at a time.
    using Answer = std::function<QDBusMessage(const QDBusMessage &call)>;

    PrintQueue();
    ~PrintQueue();

    bool start();
    void end();

    /// Changes the store, or looks at it, between two calls.
    void withStore(const std::function<void(PrintQueueStore &)> &work);
    /// From now on \a answer answers; with none the store does.
    void setAnswer(const Answer &answer = {});
    /// What the store answers to a call.
    QDBusMessage rightAnswer(const QDBusMessage &call);
    /// For an answer: loses the connection, as a process that dies in the call.
    void die();
    /// For an answer: gives the name away and takes it again, as if another process had answered.
    void takeNameAgain();

    /// The methods that were called since the last look, in order.
    QStringList takeCalls();
    /// How many there were since then.
    int callCount();
    /// Sends jobInfoChanged. When it returns, the bus has it.
    void sendJobInfoChanged(const QVariantList &arguments);

private:
    Q_DISABLE_COPY(PrintQueue)
    class Object;
    QMutex m_mutex;
    PrintQueueStore m_store;
    Answer m_answer;
    QStringList m_calls;
    QThread m_thread;
    std::unique_ptr<Object> m_object;
    std::unique_ptr<QDBusConnection> m_connection;
};
