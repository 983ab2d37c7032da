// Found from where this program lies, so that a build folder and an installed tree both work from any place.
#include "ownfiles.h"

#include <filesystem>

namespace {

std::filesystem::path ownFolder()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

} // namespace

std::string utilityDaemonBesideThis()
{
    return ownFolder() / "zbutilityd";
}

std::string printQueueDaemonBesideThis()
{
    return ownFolder() / "printqd";
}

std::string serviceManagerPath()
{
    return ownFolder() / "zbservicemanager";
}

std::string serviceStartPath()
{
    return ownFolder() / "zbservicestart";
}

std::string notifierPath()
{
    return ownFolder() / "printqnotifier";
}

std::string clockLibraryPath()
{
    const std::string name = "libzbdeviceclock.so";
    const std::filesystem::path built = ownFolder().parent_path() / "lib" / name;
    std::error_code error;
    if (std::filesystem::exists(built, error))
        return built;
    return (ownFolder() / FROM_PROGRAMS_TO_LIBRARIES / name).lexically_normal();
}
