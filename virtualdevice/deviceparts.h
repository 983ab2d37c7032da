// The list of what a device consists of, and the environment in which it is seen.
#pragma once

#include "commandline.h"
#include "devicepart.h"
#include "environment.h"
#include "schedulerplace.h"

#include <memory>
#include <vector>

/// The parts of a device, in the order in which they are started. Throws Failure if one is missing on this
/// PC.
std::vector<std::unique_ptr<DevicePart>> makeDeviceParts(const CommandLine &commandLine,
                                                         const DeviceDirectory &directory,
                                                         const SchedulerPlace &schedulerPlace);

/// How the device looks to programs in it, which were started from an environment like CALLERS.
EnvironmentChanges deviceEnvironment(const CommandLine &commandLine, const DeviceDirectory &directory,
                                     const SchedulerPlace &schedulerPlace, const Environment &callers);

/// The same for programs that were started beside the device, outside its namespaces: they reach its bus and
/// its folders.
EnvironmentChanges environmentOutside(const CommandLine &commandLine, const DeviceDirectory &directory,
                                      const SchedulerPlace &schedulerPlace, const Environment &callers);

/// Name of the variable that holds the device's folder.
extern const char *const directoryVariable;
