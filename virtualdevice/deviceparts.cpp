// Puts the device together. This is where a new part is added.
#include "deviceparts.h"

#include "deviceclock.h"
#include "ownfiles.h"
#include "printqueuedaemon.h"
#include "runtimefolder.h"
#include "scheduler.h"
#include "schedulerfiles.h"
#include "systembus.h"
#include "utilitydaemon.h"

#include <filesystem>

const char *const directoryVariable = "ZBVIRTUALDEVICE_DIRECTORY";

namespace {

std::string utilityDaemonPath(const CommandLine &commandLine)
{
    if (!commandLine.utilityDaemon.empty())
        return std::filesystem::absolute(commandLine.utilityDaemon).lexically_normal();
    return utilityDaemonBesideThis();
}

std::string printQueueDaemonPath(const CommandLine &commandLine)
{
    if (!commandLine.printQueueDaemonPath.empty())
        return std::filesystem::absolute(commandLine.printQueueDaemonPath).lexically_normal();
    return printQueueDaemonBesideThis();
}

// A display server is not part of the device: its socket and its key are named by absolute paths, so that
// they are still found from the private home and runtime folders.
void keepDisplay(EnvironmentChanges *changes, const Environment &callers)
{
    const std::string wayland = callers.value("WAYLAND_DISPLAY").value_or("");
    const std::string runtime = callers.value("XDG_RUNTIME_DIR").value_or("");
    if (!wayland.empty() && wayland.front() != '/' && !runtime.empty())
        changes->set.emplace_back("WAYLAND_DISPLAY", runtime + "/" + wayland);
    const std::string key = callers.value("HOME").value_or("") + "/.Xauthority";
    if (callers.value("DISPLAY") && !callers.value("XAUTHORITY") && access(key.c_str(), R_OK) == 0)
        changes->set.emplace_back("XAUTHORITY", key);
}

} // namespace

std::vector<std::unique_ptr<DevicePart>> makeDeviceParts(const CommandLine &commandLine,
                                                         const DeviceDirectory &directory,
                                                         const SchedulerPlace &schedulerPlace)
{
    std::vector<std::unique_ptr<DevicePart>> parts;
    const SystemBusOfAMachine machine =
        commandLine.busOnly ? SystemBusOfAMachine{} : SystemBusOfAMachine{wellKnownBusAddress, serviceFolder};
    parts.push_back(std::make_unique<SystemBus>(directory, machine));
    if (!commandLine.withoutDaemon)
        parts.push_back(std::make_unique<UtilityDaemon>(directory, utilityDaemonPath(commandLine)));
    if (commandLine.printing)
        parts.push_back(std::make_unique<Scheduler>(directory, schedulerPlace));
    if (commandLine.printQueueDaemon)
        parts.push_back(std::make_unique<PrintQueueDaemon>(
            directory, printQueueDaemonPath(commandLine),
            commandLine.printing ? schedulerPlace.queueAddress() : std::string()));
    return parts;
}

EnvironmentChanges deviceEnvironment(const CommandLine &commandLine, const DeviceDirectory &directory,
                                     const SchedulerPlace &schedulerPlace, const Environment &callers)
{
    EnvironmentChanges changes;
    changes.unset = {"DBUS_SESSION_BUS_ADDRESS", "DBUS_STARTER_ADDRESS", "DBUS_STARTER_BUS_TYPE"};
    changes.set = {
        {"DBUS_SYSTEM_BUS_ADDRESS", commandLine.busOnly ? directory.busAddress() : wellKnownBusAddress},
        {"HOME", directory.home()},
        {"XDG_CONFIG_HOME", directory.config()},
        {"XDG_DATA_HOME", directory.data()},
        {"XDG_CACHE_HOME", directory.cache()},
        {"XDG_STATE_HOME", directory.state()},
        {"XDG_RUNTIME_DIR", directory.runtime()},
        {"TMPDIR", directory.temporary()},
        {directoryVariable, directory.path()},
        {"ZBVIRTUALDEVICE_UTILITYD", utilityDaemonPath(commandLine)},
        {"ZBVIRTUALDEVICE_PRINTQD", printQueueDaemonPath(commandLine)},
    };
    changes.add(withoutOtherSchedulers());
    if (commandLine.printing)
        changes.add(schedulerVariables(directory, schedulerPlace));
    keepDisplay(&changes, callers);
    if (!commandLine.busOnly)
        changes.add(clockFiles(directory));
    return changes;
}

EnvironmentChanges environmentOutside(const CommandLine &commandLine, const DeviceDirectory &directory,
                                      const SchedulerPlace &schedulerPlace, const Environment &callers)
{
    CommandLine asSeenFromThere = commandLine;
    asSeenFromThere.busOnly = true;
    asSeenFromThere.printing = commandLine.busOnly && commandLine.printing;
    EnvironmentChanges changes = deviceEnvironment(asSeenFromThere, directory, schedulerPlace, callers);
    if (commandLine.printing && !commandLine.busOnly)
        changes.add(schedulerVariablesOutside(directory));
    // Not a program beside the device, but one that is brought into it from there looks for them.
    if (!commandLine.busOnly)
        changes.add(clockFiles(directory));
    return changes;
}
