// The lock of a folder whose files several processes change, which they get in the order of their coming.
#pragma once

#include <QtCore/QString>

/**
 * An exclusive flock(2) on the folder itself. A file in it cannot carry the lock, since it is replaced: a
 * process that waited would then own a lock on a file that is no longer there. The kernel gives it back when
 * its process ends in any way.
 *
 * flock(2) knows no order: a process that writes again and again takes the lock anew before another one that
 * waits has looked once. So who finds it taken takes a number, which others can see: a shared lock on one
 * byte of the folder (F_OFD_SETLK in fcntl(2)), which needs no file either. Who comes later takes a higher
 * one, and tries for the lock when no lower one is left, or when nobody has used the lock for 50 ms: whoever
 * has the lowest number is stopped then. Where the file system has no such locks, or another program locks
 * more than one byte of the folder in this way, there is no order.
 */
namespace FolderLock {

/// 0 when the open folder \a folder is locked, EWOULDBLOCK when others kept the lock for \a patience
/// milliseconds, else the errno value of the failure. A process that is stopped while it holds a number costs
/// each of the others 50 ms each time, or half of a shorter patience.
int take(int folder, int patience);
/// Ends the lock of \a folder. Closing the folder does not, while a process that was forked meanwhile has it
/// open, too.
void release(int folder);
/// What take(), or another call, failed with, for the log.
QString reasonOf(int error);

} // namespace FolderLock

/**
 * How long a program waits for a folder's lock, each time that it wants it: long enough for anybody who is
 * writing, and after it waited in vain only briefly, so that a process that hangs costs one wait and not one
 * for each of many changes.
 */
class LockPatience
{
public:
    int milliseconds() const { return m_wasInVain ? brief : usual; }
    void noteOutcome(int error);

private:
    static constexpr int usual = 1500;
    static constexpr int brief = 20;

    bool m_wasInVain = false;
};
