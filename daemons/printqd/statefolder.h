// The folder in which the daemon keeps everything.
#pragma once

#include "filedescriptor.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

/**
 * "jobs.db", "documents" (for this user alone), "pictures" (for everybody, who are shown them),
 * "supplies.json".
 *
 * One process at a time may have it; that is a lock on the folder, which ends with the process.
 */
class StateFolder
{
public:
    explicit StateFolder(const QString &path);

    /// Makes what is missing and locks the folder. Returns an empty text, or why that is not possible.
    QString open();
    /// Puts the names in the folder on the disk.
    void sync() const;

    QString databasePath() const;
    QString suppliesPath() const;
    /// Where the scheduler's notifier reaches the daemon.
    QString notificationSocketPath() const;
    QString documentPath(const QString &name) const;
    /// Where the picture of a job lies, if it has one that the daemon made.
    QString picturePath(const QString &guid) const;

    /// Removes the files of documents and pictures but those of these names and jobs.
    void keepOnly(const QStringList &documents, const QStringList &picturePaths) const;

private:
    QString makeFolder(const QString &path, unsigned int mode) const;

    const QString m_path;
    std::optional<FileDescriptor> m_lock;
};
