// unshare(2) and what has to follow it at once.
#include "namespaces.h"

#include "capabilities.h"
#include "failure.h"
#include "mounting.h"

#include <fcntl.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <unistd.h>

namespace {

bool write(const char *path, const std::string &text)
{
    const FileDescriptor file(open(path, O_WRONLY | O_CLOEXEC));
    return file.isOpen()
        && ::write(file.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

// One user and one group, which are the same inside and outside: that much the kernel allows without rights,
// if nobody inside can drop the groups that were to keep somebody out.
void keepUserAndGroup(uid_t user, gid_t group)
{
    const std::string theUser = std::to_string(user);
    const std::string theGroup = std::to_string(group);
    if (!write("/proc/self/setgroups", "deny") || !write("/proc/self/uid_map", theUser + " " + theUser + " 1")
        || !write("/proc/self/gid_map", theGroup + " " + theGroup + " 1"))
        throw forbiddenByMachine("to fill in a user namespace");
}

} // namespace

FileDescriptor enterNamespaces()
{
    FileDescriptor mounts(open("/proc/self/ns/mnt", O_RDONLY | O_CLOEXEC));
    const uid_t user = geteuid();
    const gid_t group = getegid();
    const bool isRoot = user == 0;
    if (!isRoot) {
        // Alone, so that the sentence can tell which of them is forbidden.
        if (unshare(CLONE_NEWUSER) != 0)
            throw forbiddenByMachine("a user namespace");
        keepUserAndGroup(user, group);
    }
    if (unshare(CLONE_NEWNS | CLONE_NEWNET | CLONE_NEWIPC | CLONE_NEWUTS) != 0)
        throw forbiddenByMachine("namespaces for mounts and network");
    mountOrGiveUp({"none", "/", "", MS_REC | MS_PRIVATE, ""}, "private mounts");
    giveUpTheClock();
    return mounts;
}

std::string commandToEnter(pid_t process)
{
    const std::string enter =
        "nsenter --target " + std::to_string(process) + " --mount --net --ipc --uts --wdns=\"$PWD\" ";
    // As in the device itself, root may not set the machine's clock.
    if (geteuid() == 0)
        return enter + "setpriv --bounding-set -sys_time --inh-caps -sys_time";
    return enter + "--user --preserve-credentials";
}

void returnToMounts(const FileDescriptor &mounts)
{
    if (mounts.isOpen() && setns(mounts.get(), CLONE_NEWNS) != 0) {
        // An ordinary user stays inside.
    }
}
