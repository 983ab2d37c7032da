// A tmpfs on /run. What is kept is opened before and bound again after.
#include "runtimefolder.h"

#include "failure.h"
#include "filedescriptor.h"
#include "files.h"
#include "mounting.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/mount.h>
#include <sys/stat.h>

const char *const wellKnownBusAddress = "unix:path=/run/dbus/system_bus_socket";
const char *const serviceFolder = "/run/dbus/services";
const char *const deviceRuntimeFolder = "/run/zbvirtualdevice";
const char *const printingFolder = "/run/zbvirtualdevice/printing";

namespace {

struct KeptFolder
{
    std::string path;
    FileDescriptor descriptor;
};

bool isBelowRun(const std::filesystem::path &path)
{
    const std::string text = path.lexically_normal();
    return text.compare(0, 5, "/run/") == 0 && text.size() > 5;
}

std::vector<KeptFolder> openFolders(const std::vector<std::string> &paths)
{
    std::vector<KeptFolder> result;
    for (const std::string &path : paths) {
        FileDescriptor descriptor(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (descriptor.isOpen())
            result.push_back({path, std::move(descriptor)});
    }
    return result;
}

void showAgain(const KeptFolder &kept)
{
    makePublicFolders(kept.path);
    const std::string source = "/proc/self/fd/" + std::to_string(kept.descriptor.get());
    mountOrGiveUp({source, kept.path, "", MS_BIND | MS_REC, ""}, "to bind " + kept.path);
}

} // namespace

std::vector<std::string> displayFolders(const Environment &callers)
{
    const std::string runtime = callers.value("XDG_RUNTIME_DIR").value_or("");
    const std::string wayland = callers.value("WAYLAND_DISPLAY").value_or("");
    std::vector<std::string> result;
    const auto add = [&result](const std::filesystem::path &folder) {
        std::string text = folder.lexically_normal();
        while (text.size() > 1 && text.back() == '/')
            text.pop_back();
        if (isBelowRun(text) && std::find(result.begin(), result.end(), text) == result.end())
            result.push_back(text);
    };
    if (!wayland.empty() && !runtime.empty())
        add(runtime);
    add(std::filesystem::path(wayland).parent_path());
    add(std::filesystem::path(callers.value("XAUTHORITY").value_or("")).parent_path());
    // The outer ones first, so that an inner one is bound into its place and not hidden by it.
    std::sort(result.begin(), result.end());
    return result;
}

void makeRuntimeFolder(const std::vector<std::string> &kept)
{
    const std::vector<KeptFolder> folders = openFolders(kept);
    mountOrGiveUp({"zbvirtualdevice", "/run", "tmpfs", MS_NOSUID | MS_NODEV, "mode=0755"}, "a tmpfs on /run");
    // Without /run/lock programs go on without their locks; without /run/systemd/system, timedatectl(1) takes
    // the machine for one without a service manager.
    for (const char *const folder : {"/run/lock", serviceFolder, "/run/systemd/system", deviceRuntimeFolder})
        makePublicFolders(folder);
    if (chmod("/run/lock", S_ISVTX | S_IRWXU | S_IRWXG | S_IRWXO) != 0)
        throw systemFailure("cannot set the rights of /run/lock");
    for (const KeptFolder &folder : folders)
        showAgain(folder);
}
