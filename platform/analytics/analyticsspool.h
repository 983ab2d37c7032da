// The spool: takes rendered events, from any thread, and gets them into the file that all processes share.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>
#include <QtCore/QString>

#include <atomic>
#include <mutex>

/**
 * One user's spool, as one process sees it.
 *
 * A line that finds the spool locked by another process waits in memory, in its order, and is written before
 * the next line or by the destructor. Writing it without the lock would be quicker but could lose it: the
 * lock's holder may be about to put another file in the place of the one that was just added to.
 */
class AnalyticsSpool
{
public:
    enum class Outcome {
        Written, ///< no line waits any more
        Waiting, ///< another process holds the spool; the lines wait in memory
        Dropped ///< lines were dropped; the first time for each reason it is logged
    };

    /// Largest size of the spool file in bytes.
    static constexpr qint64 defaultLimit = 1024LL * 1024;
    /// Longest event that is kept, in bytes of its line with the line end.
    static constexpr int longestLine = 64 * 1024;
    /// Most bytes that wait in memory; what comes on top is dropped.
    static constexpr int mostWaiting = 256 * 1024;
    /// Longest wait for another process, in milliseconds.
    static constexpr int patience = 3;

    /// Does not touch the disk. \a folder is made with the first line.
    explicit AnalyticsSpool(const QString &folder, qint64 limit = defaultLimit);
    /// One last try for the lines that still wait.
    ~AnalyticsSpool();

    /// Adds \a line, which ends with its line end and holds no other.
    Outcome append(const QByteArray &line);
    /// Writes the lines that wait.
    Outcome flush();

private:
    Q_DISABLE_COPY(AnalyticsSpool)

    bool enqueue(const QByteArray &line);
    QByteArrayList takeWaiting();
    Outcome writeWaiting(int folder);
    Outcome dropWaiting(int error);

    const QByteArray m_folder;
    const qint64 m_limit;
    std::mutex m_mutex; // for the two below, never held during a system call
    QByteArrayList m_waiting;
    int m_waitingBytes = 0;
    std::atomic_flag m_reportedFolder = ATOMIC_FLAG_INIT;
    std::atomic_flag m_reportedLength = ATOMIC_FLAG_INIT;
};
