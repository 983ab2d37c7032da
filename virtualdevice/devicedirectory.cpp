// Makes the device's folder. The path is kept short, since a Unix socket's path may have 107 bytes and both
// the bus and what runs in the device put sockets below it.
#include "devicedirectory.h"

#include "failure.h"
#include "files.h"
#include "quoting.h"
#include "treeremoval.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>

namespace {

// Leaves 50 bytes for the name of a socket in runtime/ or tmp/.
constexpr std::size_t longestPath = 48;
const std::string namePrefix = "zbvd-";
const std::string lockName = "/lock";

std::string makeUniqueFolder(const std::string &parent)
{
    std::string path = parent + "/" + namePrefix + "XXXXXX";
    return mkdtemp(path.data()) ? path : std::string();
}

std::string withoutTrailingSlashes(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

std::string makeDevicePath()
{
    const char *const variable = std::getenv("TMPDIR");
    const std::string wanted = withoutTrailingSlashes(variable ? variable : "");
    const std::string example = wanted + "/" + namePrefix + "XXXXXX";
    if (!wanted.empty() && wanted.front() == '/' && example.size() <= longestPath
        && !isHiddenInDevices(wanted)) {
        std::string path = makeUniqueFolder(wanted);
        if (!path.empty())
            return path;
    }
    std::string path = makeUniqueFolder("/tmp");
    if (path.empty())
        throw systemFailure("cannot make a folder in /tmp");
    return path;
}

// The lock file gets its name once it is locked, so that a new device is never taken for an abandoned one.
FileDescriptor lockNewDevice(const std::string &device)
{
    const std::string unlocked = device + lockName + ".new";
    FileDescriptor lock(open(unlocked.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!lock.isOpen() || flock(lock.get(), LOCK_EX) != 0
        || std::rename(unlocked.c_str(), (device + lockName).c_str()) != 0)
        throw systemFailure("cannot lock '" + device + "'");
    return lock;
}

bool isFolderOfThisUser(const std::string &path)
{
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid();
}

void removeIfAbandoned(const std::string &device)
{
    if (!isFolderOfThisUser(device))
        return;
    const FileDescriptor lock(open((device + lockName).c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    if (lock.isOpen() && flock(lock.get(), LOCK_EX | LOCK_NB) == 0)
        removeTree(device);
}

void removeAbandonedDevices(const std::filesystem::path &parent)
{
    std::error_code error;
    for (std::filesystem::directory_iterator entry(parent, error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().filename().string().compare(0, namePrefix.size(), namePrefix) == 0)
            removeIfAbandoned(entry->path());
    }
}

} // namespace

bool isHiddenInDevices(const std::string &path)
{
    std::error_code error;
    const std::filesystem::path canonical = std::filesystem::weakly_canonical(path, error);
    const std::string place = (error ? path : canonical.string()) + "/";
    for (const std::string hidden : {"/run/", "/etc/", "/var/lib/", "/usr/share/", "/sys/"}) {
        if (place.compare(0, hidden.size(), hidden) == 0)
            return true;
    }
    return false;
}

DeviceDirectory DeviceDirectory::create()
{
    const std::string path = makeDevicePath();
    try {
        DeviceDirectory directory(path);
        removeAbandonedDevices(std::filesystem::path(path).parent_path());
        return directory;
    } catch (const std::exception &) {
        removeTree(path);
        throw;
    }
}

DeviceDirectory::DeviceDirectory(const std::string &path)
    : m_path(path)
    , m_lock(lockNewDevice(path))
{
    for (const std::string &folder : {home(), config(), data(), cache(), state(), runtime(), temporary(),
                                      bus(), utilityDaemonState(), printQueueState(), layers(), clock(),
                                      printing(), printingConfiguration(), printed(), m_path + "/log"})
        makePrivateFolder(folder);
}

std::string DeviceDirectory::busAddress() const
{
    return "unix:path=" + busAddressEscaped(bus() + "/socket");
}

std::string DeviceDirectory::logFile(const std::string &name) const
{
    return m_path + "/log/" + name + ".log";
}
