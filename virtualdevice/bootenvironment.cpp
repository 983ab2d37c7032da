// An image in a plain file, which the tools accept in the place of a flash partition, written by the tool
// that the device writes it with.
#include "bootenvironment.h"

#include "devicefiles.h"
#include "failure.h"
#include "files.h"
#include "setuptool.h"
#include "textfiles.h"

namespace {

const std::string imageSize = "0x4000";
const std::string imageName = "/boot-environment.bin";

} // namespace

void placeBootEnvironment(const Overlay &etc, const Overlay &varLib)
{
    writePublicFile(etc.changes() + "/fw_env.config",
                    "# Image, offset, size\n/var/lib" + productFolder + imageName + " 0x0 " + imageSize
                        + "\n");
    makePublicFolders(varLib.changes() + productFolder);
    writePublicFile(varLib.changes() + productFolder + imageName,
                    std::string(std::stoul(imageSize, nullptr, 0), '\0'));
}

void fillBootEnvironment(const ChildProgram &surroundings, const DeviceDirectory &directory)
{
    const std::string values = directory.layers() + "/boot-environment.txt";
    writeFile(values, bootEnvironmentText);
    // The tool writes the values of the file only together with one that it sets itself.
    const SetUpTool tool = {"fw_setenv", {"-f", values, "zbShip", "0"}, "libubootenv-tool"};
    if (const auto reason = runSetUpTool(tool, surroundings, directory))
        throw Failure("fw_setenv cannot write the boot environment (" + *reason + ")");
}
