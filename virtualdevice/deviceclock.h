// The clock of a whole device: where it is kept, and the services that set it.
#pragma once

#include "devicedirectory.h"
#include "environment.h"

#include <string>

/// Makes the clock's files and describes the services that set it to the bus: systemd-timedated, which the
/// bus starts when somebody calls it, and the service manager behind it. /run has to be the device's. Throws
/// Failure.
void makeDeviceClock(const DeviceDirectory &directory);

/// The variables by which programs find the clock's files.
EnvironmentChanges clockFiles(const DeviceDirectory &directory);

/// The variable by which a program, started with an environment like BEFORE, sees the device's clock in the
/// place of the machine's.
EnvironmentChanges deviceClockInSight(const Environment &before);

/// The same as words of a shell command before which one puts the program, once it is in the device.
std::string deviceClockInSightAsShellText();
