// Puts them into the changes of an overlay, so that they never reach the machine.
#include "devicefiles.h"

#include "files.h"
#include "textfiles.h"

const std::string productFolder = "/corvanta";

void placeEtcFiles(const Overlay &etc)
{
    const std::string folder = etc.changes() + productFolder;
    makePublicFolders(folder);
    writePublicFile(folder + "/wayland.env", waylandEnvironmentText);
}

void placeSharedFiles(const Overlay &usrShare)
{
    makePublicFolders(usrShare.changes() + "/data/Corvanta/TestPages/BrackenXL");
}
