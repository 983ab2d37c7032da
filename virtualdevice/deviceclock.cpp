// Real systemd-timedated. It takes the clock for its own, but a library that is loaded into it keeps it from
// the machine's, which it has no right to set either.
#include "deviceclock.h"

#include "failure.h"
#include "files.h"
#include "ownfiles.h"
#include "runtimefolder.h"

#include <cstdint>
#include <unistd.h>

namespace {

const char *const timeService = "/lib/systemd/systemd-timedated";

std::string clockLog(const DeviceDirectory &directory)
{
    return directory.clock() + "/log";
}

std::string clockOffset(const DeviceDirectory &directory)
{
    return directory.clock() + "/offset";
}

// LD_PRELOAD knows no quoting, and this program's own folder may have blanks in its name.
std::string preloadedLibrary()
{
    return std::string(deviceRuntimeFolder) + "/deviceclock.so";
}

// The reader of the services' descriptions does not understand every quoting of a shell.
std::string linkedProgram(const std::string &path)
{
    return deviceRuntimeFolder + path.substr(path.rfind('/'));
}

// The services end with this process, however that ends: without a bus, systemd-timedated would go on for
// half a minute, and the device's namespaces with it.
void describeService(const std::string &name, const std::string &command)
{
    writePublicFile(std::string(serviceFolder) + "/" + name + ".service",
                    "[D-BUS Service]\nName=" + name + "\nExec=" + linkedProgram(serviceStartPath()) + " "
                        + std::to_string(getpid()) + " " + command + "\nUser=root\n");
}

} // namespace

void makeDeviceClock(const DeviceDirectory &directory)
{
    writeFile(clockLog(directory), "");
    writeFile(clockOffset(directory), std::string(sizeof(std::int64_t), '\0'));
    if (access(timeService, X_OK) != 0)
        throw Failure(std::string("there is no ") + timeService + "; on Debian it is in the package systemd");
    makeLink(clockLibraryPath(), preloadedLibrary());
    for (const std::string &program : {serviceManagerPath(), serviceStartPath()})
        makeLink(program, linkedProgram(program));
    // Which services may keep the time is a matter of the machine's packages; the device has this one.
    describeService("org.freedesktop.timedate1",
                    "/usr/bin/env LD_PRELOAD=" + preloadedLibrary()
                        + " SYSTEMD_TIMEDATED_NTP_SERVICES=systemd-timesyncd.service " + timeService);
    describeService("org.freedesktop.systemd1", linkedProgram(serviceManagerPath()));
}

EnvironmentChanges clockFiles(const DeviceDirectory &directory)
{
    return {{{"ZBVIRTUALDEVICE_CLOCK_LOG", clockLog(directory)},
             {"ZBVIRTUALDEVICE_CLOCK_OFFSET", clockOffset(directory)}},
            {}};
}

EnvironmentChanges deviceClockInSight(const Environment &before)
{
    const std::string others = before.value("LD_PRELOAD").value_or("");
    return {{{"LD_PRELOAD", preloadedLibrary() + (others.empty() ? "" : ":" + others)}}, {}};
}

std::string deviceClockInSightAsShellText()
{
    return "env LD_PRELOAD=" + preloadedLibrary() + "\"${LD_PRELOAD:+:$LD_PRELOAD}\"";
}
