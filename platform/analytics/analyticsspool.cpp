// The queue in front of the spool file, and the log texts.
#include "analyticsspool.h"

#include "spoolfiles.h"
#include "spoollock.h"

#include <QtCore/QDebug>
#include <QtCore/QFile>

#include <cerrno>

AnalyticsSpool::AnalyticsSpool(const QString &folder, qint64 limit)
    : m_folder(QFile::encodeName(folder))
    , m_limit(limit)
{
}

AnalyticsSpool::~AnalyticsSpool()
{
    try {
        flush();
    } catch (...) {
        // Out of memory at the very end; nobody is left to tell.
    }
}

AnalyticsSpool::Outcome AnalyticsSpool::append(const QByteArray &line)
{
    if (line.size() > qMin<qint64>(longestLine, m_limit)) {
        if (!m_reportedLength.test_and_set())
            qWarning(
                "AnalyticsLibrary: an event of %d bytes is too long to be kept. It is dropped, further ones "
                "silently.",
                line.size());
        return Outcome::Dropped;
    }
    const bool queued = enqueue(line);
    const Outcome outcome = flush();
    return queued ? outcome : Outcome::Dropped;
}

AnalyticsSpool::Outcome AnalyticsSpool::flush()
{
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        if (m_waiting.isEmpty())
            return Outcome::Written;
    }
    const FileDescriptor folder = openSpoolFolder(m_folder);
    if (folder.error() != 0)
        return dropWaiting(folder.error());
    const SpoolLock lock(folder.get(), patience);
    if (lock.error() == EWOULDBLOCK)
        return Outcome::Waiting;
    if (lock.error() != 0)
        return dropWaiting(lock.error());
    return writeWaiting(folder.get());
}

bool AnalyticsSpool::enqueue(const QByteArray &line)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (m_waitingBytes + line.size() > mostWaiting)
        return false;
    m_waiting.append(line);
    m_waitingBytes += line.size();
    return true;
}

QByteArrayList AnalyticsSpool::takeWaiting()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    QByteArrayList lines;
    lines.swap(m_waiting);
    m_waitingBytes = 0;
    return lines;
}

AnalyticsSpool::Outcome AnalyticsSpool::writeWaiting(int folder)
{
    const QByteArrayList lines = takeWaiting();
    for (const QByteArray &line : lines) {
        if (const int error = addToSpool(folder, line, m_limit))
            return dropWaiting(error);
    }
    return Outcome::Written;
}

AnalyticsSpool::Outcome AnalyticsSpool::dropWaiting(int error)
{
    takeWaiting();
    if (!m_reportedFolder.test_and_set())
        qWarning("AnalyticsLibrary: cannot keep events in %s: %s. Events are dropped, further ones silently.",
                 m_folder.constData(), qPrintable(qt_error_string(error)));
    return Outcome::Dropped;
}
