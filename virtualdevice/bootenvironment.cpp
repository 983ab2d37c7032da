// An image in a plain file, which the tools accept in the place of a flash partition, written by the tool
// that the device writes it with.
#include "bootenvironment.h"

#include "failure.h"
#include "files.h"
#include "setuptool.h"
#include "textfiles.h"

namespace {

constexpr std::size_t imageSize = 0x4000;
const std::string folderInVarLib = "/corvanta";
const std::string imageName = "/boot-environment.bin";

} // namespace

void placeBootEnvironment(const Overlay &etc, const Overlay &varLib)
{
    writePublicFile(etc.changes() + "/fw_env.config",
                    "# Image, offset, size\n/var/lib" + folderInVarLib + imageName + " 0x0 0x4000\n");
    makePublicFolders(varLib.changes() + folderInVarLib);
    writePublicFile(varLib.changes() + folderInVarLib + imageName, std::string(imageSize, '\0'));
}

void fillBootEnvironment(const ChildProgram &surroundings, const DeviceDirectory &directory)
{
    const std::string values = directory.layers() + "/boot-environment.txt";
    writeFile(values, bootEnvironmentText);
    // The tool writes the values of the file only together with one that it sets itself.
    const SetUpTool tool = {"fw_setenv", {"-f", values, "zbShip", "0"}, "libubootenv-tool"};
    if (!runSetUpTool(tool, surroundings, directory))
        throw Failure("fw_setenv cannot write the boot environment (" + lastWordOfSetUp(directory) + ")");
}
