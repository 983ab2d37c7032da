// Keeps two processes that write the settings file from undoing each other's change.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

/**
 * Held around one write of a QSettings INI file.
 *
 * QSettings decides by size and modification time in milliseconds whether its cached copy of a file is still
 * current. Two writes of equal length within one millisecond look the same to it, and the second writer then
 * puts its old copy over the first one's key. So every writer of ours holds a lock while it writes, and
 * leaves the file with a modification time that is at least one millisecond later than before.
 *
 * It also takes the time stamp of what it has read after reading: a file that is replaced in between leaves
 * it with the old content under the new stamp, which it would write back. So a file that this process did not
 * write last gets a new time stamp before the write, upon which QSettings reads it again, now that nobody
 * else writes.
 *
 * The lock is flock(2) on the file's folder: it needs no file of its own and goes away with its process. It
 * is waited for at most \ref patience; then the write goes on under QSettings' own lock alone, since a
 * program that keeps the folder locked must not stop the user interface.
 *
 * A writer that was killed just after it created QSettings' own lock file leaves that file empty, and the
 * next QSettings waits 32 seconds for it. Such a file is taken away here, if no process holds it.
 */
class SettingsFileLock
{
public:
    static constexpr int patience = 1000; ///< milliseconds

    explicit SettingsFileLock(const QString &fileName);
    ~SettingsFileLock();

private:
    Q_DISABLE_COPY(SettingsFileLock)
    void removeAbandonedLockFile() const;
    void setModificationTime(qint64 milliseconds) const;

    const QByteArray m_fileName;
    qint64 m_timeBefore = -1; ///< modification time in milliseconds; -1 when there was no file
    int m_folder = -1;
};
