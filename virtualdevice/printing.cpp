// A folder with a path without odd characters, a socket and a port that every print program knows.
#include "printing.h"

#include "failure.h"
#include "files.h"
#include "mounting.h"
#include "runtimefolder.h"

#include <fstream>
#include <sys/mount.h>
#include <unistd.h>

namespace {

// The scheduler runs without the right to take a port below 1024, unless the caller is root.
void openPortsToEverybody()
{
    std::ofstream first("/proc/sys/net/ipv4/ip_unprivileged_port_start");
    first << "0";
    first.close();
    if (!first)
        throw Failure(
            "this machine does not allow the print scheduler its port; --without-printing goes without",
            forbiddenStatus);
}

} // namespace

void showPrinting(const DeviceDirectory &directory)
{
    makePublicFolders(printingFolder);
    mountOrGiveUp({directory.printing(), printingFolder, "", MS_BIND, ""},
                  std::string("to bind ") + printingFolder);
}

void preparePlacesToListen()
{
    makePublicFolders("/run/cups");
    if (geteuid() != 0)
        openPortsToEverybody();
}
