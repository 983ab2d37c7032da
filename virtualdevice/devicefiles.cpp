// Puts them into the changes of an overlay, so that they never reach the machine.
#include "devicefiles.h"

#include "files.h"
#include "runtimefolder.h"
#include "testpage.h"
#include "textfiles.h"

const std::string productFolder = "/corvanta";

void placeEtcFiles(const Overlay &etc)
{
    const std::string folder = etc.changes() + productFolder;
    makePublicFolders(folder);
    writePublicFile(folder + "/wayland.env", waylandEnvironmentText);
    // Hides the machine's configuration; a mount would do so too, but then no user could lay an overlay over
    // this /etc, as for a device in the device.
    makeLink(std::string(printingFolder) + "/etc", etc.changes() + "/cups");
}

void placeSharedFiles(const Overlay &usrShare)
{
    const std::string folder = usrShare.changes() + "/data/Corvanta/TestPages/BrackenXL";
    makePublicFolders(folder);
    for (const int inches : {4, 6, 9}) {
        const std::string size = std::to_string(inches);
        writePublicFile(folder + "/testpage_" + size + "x" + size + ".tavo", testPage(inches));
    }
}
