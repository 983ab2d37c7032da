// overlayfs. The folders go to the kernel as open descriptors, since its option text knows commas and colons
// of its own.
#include "overlay.h"

#include "failure.h"
#include "files.h"
#include "mounting.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

// "/usr/share" becomes "usr-share".
std::string nameFor(const std::string &target)
{
    std::string name = target.substr(1);
    std::replace(name.begin(), name.end(), '/', '-');
    return name;
}

std::string asOption(const FileDescriptor &folder)
{
    return "/proc/self/fd/" + std::to_string(folder.get());
}

} // namespace

Overlay::Overlay(const std::string &target, const DeviceDirectory &directory)
    : m_target(target)
    , m_folder(directory.layers() + "/" + nameFor(target))
{
    struct stat status = {};
    if (stat(target.c_str(), &status) != 0)
        throw systemFailure("cannot look at '" + target + "'");
    makePrivateFolder(m_folder);
    makePrivateFolder(m_folder + "/work");
    makePrivateFolder(changes());
    // The rights of the changed folder are those that the device sees.
    chmod(changes().c_str(), status.st_mode & 07777);
}

void Overlay::show() const
{
    const FileDescriptor upper(open(changes().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const FileDescriptor work(open((m_folder + "/work").c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const std::string options =
        "lowerdir=" + m_target + ",upperdir=" + asOption(upper) + ",workdir=" + asOption(work);
    const MountRequest request = {"zbvirtualdevice", m_target, "overlay", 0, options};
    MountRequest forUsers = request;
    // The only way for who may not write trusted extended attributes; also where the folder lies on an
    // overlay of somebody else, as in a container.
    forUsers.options += ",userxattr";
    if (!tryToMount(forUsers))
        mountOrGiveUp(request, "an overlay on " + m_target);
}
