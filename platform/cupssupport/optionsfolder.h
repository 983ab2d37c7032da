// The folder of an lpoptions file: locked, and a file in it replaced in one step.
#pragma once

#include "filedescriptor.h"

#include <QtCore/QByteArray>

/// Holds the folder's lock (FolderLock) while it lives. Errors are errno values, and 0 is none.
class OptionsFolder
{
public:
    /// Waits at most \a patience milliseconds for the lock of \a path, and makes the folder, with mode 0700,
    /// where only it is missing.
    OptionsFolder(const QByteArray &path, int patience);
    ~OptionsFolder();

    /// Why the folder is not there or not locked; EWOULDBLOCK when another process has the lock.
    int error() const { return m_error; }

    /**
     * Makes \a content the content of the file \a name, with the mode and, where that is allowed, the owner
     * that it had. When this returns the file is on the disk; until then the old one is there as a whole.
     */
    int replace(const QByteArray &name, const QByteArray &content) const;

private:
    Q_DISABLE_COPY(OptionsFolder)

    FileDescriptor m_folder;
    int m_error;
};
