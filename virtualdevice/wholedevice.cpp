// The steps of the set-up, in the order in which they need one another.
#include "wholedevice.h"

#include "bootenvironment.h"
#include "capabilities.h"
#include "datapartition.h"
#include "deviceclock.h"
#include "devicefiles.h"
#include "failure.h"
#include "networkinterface.h"
#include "overlay.h"
#include "printing.h"
#include "runtimefolder.h"

namespace {

// All that lies in the folders from the beginning is put there before they are shown: so it cannot get into
// the machine's.
void makeFolders(const DeviceDirectory &directory, bool withDataPartition)
{
    const Overlay etc("/etc", directory);
    const Overlay usrShare("/usr/share", directory);
    const Overlay varLib("/var/lib", directory);
    placeEtcFiles(etc);
    placeSharedFiles(usrShare);
    placeBootEnvironment(etc, varLib);
    if (withDataPartition)
        placeDataPartition(varLib);
    for (const Overlay *const overlay : {&etc, &usrShare, &varLib})
        overlay->show();
}

} // namespace

void setUpWholeDevice(const CommandLine &commandLine, const DeviceDirectory &directory,
                      const ChildProgram &surroundings, const Environment &callers)
{
    const bool withDataPartition = commandLine.withDataPartition || isDataPartitionMissing();
    makeFolders(directory, withDataPartition);
    makeRuntimeFolder(displayFolders(callers));
    makeDeviceClock(directory);
    showPrinting(directory);
    if (commandLine.printing)
        preparePlacesToListen();

    const InheritedCapabilities forTheTools;
    makeNetworkInterface(surroundings, directory);
    fillBootEnvironment(surroundings, directory);
    if (!withDataPartition)
        return;
    const std::optional<std::string> reason = mountDataPartition(surroundings, directory);
    // Without having been asked for, it may also be missing.
    if (reason && commandLine.withDataPartition)
        throw Failure("this machine does not allow an ext4 file system in a file (" + *reason
                          + "); go without --with-data-partition",
                      forbiddenStatus);
}
