// The lock that every process takes before it touches the spool file.
#pragma once

#include "filedescriptor.h"

/**
 * Exclusive flock(2) on the file "events.lock" beside the spool. The spool itself cannot carry the lock,
 * since it is replaced and renamed: a process that waited would then own a lock on a file that is the spool
 * no more. The kernel releases the lock when its process ends in any way, so that none is ever left behind.
 */
class SpoolLock
{
public:
    /// Waits at most \a patience milliseconds for the lock of the spool in the open folder \a folder.
    SpoolLock(int folder, int patience);

    /// 0 while the lock is held, EWOULDBLOCK when another process kept it for too long, else why it cannot be
    /// had.
    int error() const { return m_error; }

private:
    FileDescriptor m_file;
    int m_error;
};
