// The folder of an lpoptions file: locked, and a file in it replaced in one step.
#pragma once

#include "filedescriptor.h"
#include "filestate.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

/**
 * Holds an exclusive flock(2) on the folder while it lives. The file itself cannot carry the lock, since it
 * is replaced: a process that waited would then own a lock on a file that is the options' no more. The kernel
 * gives the lock back when its process ends in any way.
 */
class OptionsFolder
{
public:
    /// Waits at most \a patience milliseconds for the lock of \a path, and makes the folder, with mode 0700,
    /// where only it is missing.
    OptionsFolder(const QByteArray &path, int patience);

    /// Why the folder is not there or not locked; empty when it is.
    QString failure() const { return m_failure; }
    /// Whether it is another process that has the lock.
    bool isHeldByOther() const { return m_isHeldByOther; }

    /**
     * Makes \a content the content of the file \a name, with the mode and, where that is allowed, the owner
     * that it had. When this returns the file is on the disk; until then the old one is there as a whole.
     * Says why it failed, or nothing.
     */
    QString replace(const QByteArray &name, const QByteArray &content) const;

private:
    QString writeNewFile(const QByteArray &name, const QByteArray &newName, const QByteArray &content) const;

    FileDescriptor m_folder;
    QString m_failure;
    bool m_isHeldByOther = false;
};
