// A pair of virtual Ethernet interfaces, one of which bears the wireless one's name: programs see an
// interface with an address, and wireless hardware cannot be had.
#include "networkinterface.h"

#include "failure.h"
#include "files.h"
#include "mounting.h"
#include "setuptool.h"

#include <sys/mount.h>

namespace {

const std::string hardwareAddress = "02:00:5e:10:00:01";

// Addresses from the range for documentation (RFC 5737). The far end is up first, so that the near end has a
// carrier from its first moment and the route is never one without a link.
const std::string commands = "link set lo up\n"
                             "link add wlan0 address "
    + hardwareAddress
    + " type veth peer name wlan0peer\n"
      "address add 192.0.2.1/24 dev wlan0peer\n"
      "address add 192.0.2.2/24 dev wlan0\n"
      "link set wlan0peer up\n"
      "link set wlan0 up\n"
      "route add default via 192.0.2.1 dev wlan0\n";

// Where a container hides parts of /sys, a user may not mount one that hides nothing.
void showAddressOnly(const DeviceDirectory &directory)
{
    const std::string folder = directory.layers() + "/net";
    makePublicFolders(folder + "/wlan0");
    writePublicFile(folder + "/wlan0/address", hardwareAddress + "\n");
    mountOrGiveUp({folder, "/sys/class/net", "", MS_BIND, ""}, "a file system on /sys");
}

} // namespace

void makeNetworkInterface(const ChildProgram &surroundings, const DeviceDirectory &directory)
{
    const std::string batch = directory.layers() + "/network.batch";
    writeFile(batch, commands);
    if (const auto reason = runSetUpTool({"ip", {"-batch", batch}, "iproute2"}, surroundings, directory))
        throw Failure("this machine does not allow a network interface (" + *reason
                          + "), which a whole device needs; a device with --bus-only does without",
                      forbiddenStatus);
    // A file system that is mounted now shows the network of who mounts it.
    if (!tryToMount({"zbvirtualdevice", "/sys", "sysfs", MS_NOSUID | MS_NODEV | MS_NOEXEC, ""}))
        showAddressOnly(directory);
}
