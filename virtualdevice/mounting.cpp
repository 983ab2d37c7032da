// Mounts one file system.
#include "mounting.h"

#include "failure.h"

#include <sys/mount.h>

bool tryToMount(const MountRequest &request)
{
    return mount(request.source.c_str(), request.target.c_str(), request.type.c_str(), request.flags,
                 request.options.c_str())
        == 0;
}

void mountOrGiveUp(const MountRequest &request, const std::string &what)
{
    if (!tryToMount(request))
        throw forbiddenByMachine(what);
}
