// Lock, new file, sync, rename, sync.
#include "optionsfolder.h"

#include "folderlock.h"
#include "folderopening.h"
#include "syncedfile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t usualMode = 0644;
constexpr mode_t permissions = 0777;

/// Whether \a error of fchown(2) says that this process cannot give a file to that user: it may not, the user
/// is none of the process's user namespace, or the file system has no owners.
bool isOutOfReach(int error)
{
    return error == EPERM || error == EINVAL || error == ENOSYS;
}

/// Gives the new file what else belongs to \a old. That it stays another user's is not ours to see to where
/// the system does not let us.
int takeOver(int file, const struct stat &old)
{
    struct stat present = {};
    if (::fstat(file, &present) != 0)
        return errno;
    const bool hasOtherOwner = present.st_uid != old.st_uid || present.st_gid != old.st_gid;
    if (hasOtherOwner && ::fchown(file, old.st_uid, old.st_gid) != 0 && !isOutOfReach(errno))
        return errno;
    const bool hasOtherMode = (present.st_mode & permissions) != (old.st_mode & permissions);
    return hasOtherMode && ::fchmod(file, old.st_mode & permissions) != 0 ? errno : 0;
}

} // namespace

OptionsFolder::OptionsFolder(const QByteArray &path, int patience)
    : m_folder(openFolder(path, MissingFolders::LastIsMade))
    , m_error(m_folder.error() != 0 ? m_folder.error() : FolderLock::take(m_folder.get(), patience))
{
}

OptionsFolder::~OptionsFolder()
{
    if (m_error == 0)
        FolderLock::release(m_folder.get());
}

int OptionsFolder::replace(const QByteArray &name, const QByteArray &content) const
{
    const int folder = m_folder.get();
    struct stat old = {};
    const bool isThere = ::fstatat(folder, name.constData(), &old, AT_SYMLINK_NOFOLLOW) == 0;
    const QByteArray newName = name + ".new";
    int error = writeSyncedFile(folder, newName, content, usualMode,
                                [isThere, &old](int file) { return isThere ? takeOver(file, old) : 0; });
    if (error == 0)
        error = moveIntoPlace(folder, newName, name);
    return error == 0 ? syncFolder(folder) : error;
}
