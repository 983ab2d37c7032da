// An image in a file, mounted through a loop device, which the kernel frees when the device's mounts go.
#include "datapartition.h"

#include "files.h"
#include "setuptool.h"

#include <linux/magic.h>
#include <sys/statfs.h>
#include <unistd.h>

namespace {

const std::string folderInVarLib = "/corvanta/data";

} // namespace

bool isDataPartitionMissing()
{
    struct statfs root = {};
    return geteuid() == 0 && statfs("/", &root) == 0 && root.f_type != EXT4_SUPER_MAGIC;
}

void placeDataPartition(const Overlay &varLib)
{
    makePublicFolders(varLib.changes() + folderInVarLib);
}

bool mountDataPartition(const ChildProgram &surroundings, const DeviceDirectory &directory)
{
    const std::string image = directory.layers() + "/data.img";
    return runSetUpTool({"mkfs.ext4", {"-q", "-F", "-L", "data", image, "64M"}, "e2fsprogs"}, surroundings,
                        directory)
        && runSetUpTool({"mount", {"-t", "ext4", "-o", "loop", image, "/var/lib" + folderInVarLib}, "mount"},
                        surroundings, directory);
}
