// Removal of a folder through descriptors only: no path is looked up twice, so a symbolic link cannot lead
// out. Nested folders are first moved up into the outermost one, so that neither the stack nor the number of
// open descriptors grows with the depth of the tree.
#include "treeremoval.h"

#include "filedescriptor.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace {

struct CloseFolder
{
    void operator()(DIR *folder) const { closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

class TreeRemoval
{
public:
    explicit TreeRemoval(const std::string &path)
        : m_path(path)
    {
    }

    std::vector<std::string> run();

private:
    Folder openFolder(int parent, const std::string &name);
    bool emptyOuterFolder();
    void emptyInnerFolder(DIR *folder);
    bool moveUp(int parent, const std::string &name);
    void report(const std::string &name);

    const std::string m_path;
    FileDescriptor m_outer;
    unsigned long m_moved = 0;
    std::vector<std::string> m_complaints;
};

std::string numbered(unsigned long number)
{
    return ".removing-" + std::to_string(number);
}

bool isMountPoint(int descriptor)
{
    struct statx status = {};
    return statx(descriptor, "", AT_EMPTY_PATH, 0, &status) == 0
        && (status.stx_attributes_mask & status.stx_attributes & STATX_ATTR_MOUNT_ROOT);
}

// Gives the owner all rights on the folder behind a descriptor that was opened with O_PATH, for which
// fchmod() is refused; the link in /proc leads to exactly that folder.
void makeWritable(int descriptor)
{
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    if (chmod(link.c_str(), S_IRWXU) != 0) {
        // Whoever may not change the rights finds out at the next step, which is the one that is reported.
    }
}

std::vector<std::string> namesIn(DIR *folder)
{
    std::vector<std::string> result;
    while (const dirent *const entry = readdir(folder)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            result.push_back(name);
    }
    return result;
}

Folder TreeRemoval::openFolder(int parent, const std::string &name)
{
    const FileDescriptor place(openat(parent, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!place.isOpen())
        return nullptr;
    if (parent != AT_FDCWD && isMountPoint(place.get())) {
        errno = EBUSY;
        return nullptr;
    }
    makeWritable(place.get());
    FileDescriptor readable(openat(place.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!readable.isOpen())
        return nullptr;
    Folder folder(fdopendir(readable.get()));
    if (folder)
        readable.release();
    return folder;
}

void TreeRemoval::report(const std::string &name)
{
    // Somebody else may be clearing up the same folder.
    if (errno != ENOENT)
        m_complaints.push_back("cannot remove '" + name + "' in '" + m_path + "': " + std::strerror(errno));
}

bool TreeRemoval::moveUp(int parent, const std::string &name)
{
    const FileDescriptor place(openat(parent, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!place.isOpen())
        return false;
    if (isMountPoint(place.get())) {
        errno = EBUSY;
        return false;
    }
    // Moving a folder rewrites its "..", for which it has to be writable itself.
    makeWritable(place.get());
    // A name that the tree itself has already is free, or another is tried, at the next look.
    return renameat(parent, name.c_str(), m_outer.get(), numbered(++m_moved).c_str()) == 0;
}

void TreeRemoval::emptyInnerFolder(DIR *folder)
{
    const int descriptor = dirfd(folder);
    for (const std::string &name : namesIn(folder)) {
        if (unlinkat(descriptor, name.c_str(), 0) == 0 || errno == ENOENT)
            continue;
        if (errno != EISDIR || !moveUp(descriptor, name))
            report(name);
    }
}

// Returns whether something went away or came up, that is whether another look is worth while.
bool TreeRemoval::emptyOuterFolder()
{
    const Folder outer = openFolder(m_outer.get(), ".");
    if (!outer)
        return false;
    bool progress = false;
    for (const std::string &name : namesIn(outer.get())) {
        if (unlinkat(m_outer.get(), name.c_str(), 0) == 0 || errno == ENOENT) {
            progress = true;
            continue;
        }
        const Folder inner = errno == EISDIR ? openFolder(m_outer.get(), name) : nullptr;
        if (!inner) {
            report(name);
            continue;
        }
        emptyInnerFolder(inner.get());
        if (unlinkat(m_outer.get(), name.c_str(), AT_REMOVEDIR) == 0)
            progress = true;
        else
            report(name);
    }
    return progress;
}

std::vector<std::string> TreeRemoval::run()
{
    const Folder outer = openFolder(AT_FDCWD, m_path);
    if (!outer) {
        report(".");
        return m_complaints;
    }
    m_outer = FileDescriptor(fcntl(dirfd(outer.get()), F_DUPFD_CLOEXEC, 0));
    do {
        m_complaints.clear();
    } while (emptyOuterFolder());
    if (rmdir(m_path.c_str()) != 0 && errno != ENOENT && m_complaints.empty())
        report(".");
    return m_complaints;
}

} // namespace

std::vector<std::string> removeTree(const std::string &path)
{
    return TreeRemoval(path).run();
}
