// System calls on one folder and its files: a lock, and files that are there as a whole or not at all.
#pragma once

#include "filedescriptor.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

/**
 * An open folder. Everything that changes it is done under its lock (FolderLock), which is held until the
 * object ends.
 *
 * Functions that return an int return 0, or the errno value (errno(3)) with which they failed.
 */
class FolderFiles
{
public:
    enum class Opening {
        Existing, ///< for reading; error() is ENOENT when there is no such folder
        Locked, ///< as it is, for changes
        MadeAndLocked ///< made if need be, with what is missing above it, for the user alone; for changes
    };

    /// Larger files are not read (EFBIG) and not written.
    static constexpr int largestFile = 4 * 1024 * 1024;

    /// Waits at most \a patience milliseconds for the lock, if it is to be locked.
    FolderFiles(const QString &path, Opening opening, int patience);
    ~FolderFiles();

    /// Why the folder is not open or not locked; EWOULDBLOCK when another process has the lock.
    int error() const { return m_error; }
    /// Whether the folder may be changed.
    bool isLocked() const { return m_isLocked; }

    /// Names of all files but folders, sorted by code units; those that are not UTF-8 are left out.
    int list(QStringList *names) const;
    /// Content of a regular file. EINVAL for anything else.
    int read(const QString &name, QByteArray *content) const;
    /// Puts \a content on the disk under \a name, in place of what was there. Durable after sync().
    int replace(const QString &name, const QByteArray &content);
    /// Puts \a content on the disk under the name unfinishedFileName(), from which it is renamed.
    int prepare(const QByteArray &content);
    /// EEXIST when there is something of the name \a to.
    int rename(const QString &from, const QString &to);
    /// Done also when there is no such file.
    int remove(const QString &name);
    /// Until then a power cut may undo what was replaced, renamed and removed.
    int sync() const;
    /// Whether anything was replaced, renamed or removed.
    bool hasChanged() const { return m_hasChanged; }

private:
    Q_DISABLE_COPY(FolderFiles)

    FileDescriptor m_folder;
    int m_error;
    bool m_isLocked = false;
    bool m_hasChanged = false;
};
