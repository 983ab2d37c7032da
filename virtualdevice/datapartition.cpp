// An image in a file, mounted through a loop device, which the kernel frees when the device's mounts go.
#include "datapartition.h"

#include "devicefiles.h"
#include "files.h"
#include "setuptool.h"

#include <linux/magic.h>
#include <sys/statfs.h>
#include <unistd.h>

namespace {

std::string folderInVarLib()
{
    return productFolder + "/data";
}

} // namespace

bool isDataPartitionMissing()
{
    struct statfs root = {};
    return geteuid() == 0 && statfs("/", &root) == 0 && root.f_type != EXT4_SUPER_MAGIC;
}

void placeDataPartition(const Overlay &varLib)
{
    makePublicFolders(varLib.changes() + folderInVarLib());
}

std::optional<std::string> mountDataPartition(const ChildProgram &surroundings,
                                              const DeviceDirectory &directory)
{
    const std::string image = directory.layers() + "/data.img";
    if (auto reason = runSetUpTool({"mkfs.ext4", {"-q", "-F", "-L", "data", image, "64M"}, "e2fsprogs"},
                                   surroundings, directory))
        return reason;
    return runSetUpTool(
        {"mount", {"-t", "ext4", "-o", "loop", image, "/var/lib" + folderInVarLib()}, "mount"}, surroundings,
        directory);
}
