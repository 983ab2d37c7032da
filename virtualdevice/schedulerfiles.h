// What the device's print scheduler finds when it starts: its program, its configuration, the queue.
#pragma once

#include "devicedirectory.h"
#include "environment.h"
#include "schedulerplace.h"

#include <string>

/// The scheduler of the machine, of which the device runs a copy.
extern const char *const schedulerProgram;

/// Makes all of it in DIRECTORY for a scheduler that sees it at PLACE. Throws Failure.
void makeSchedulerFiles(const DeviceDirectory &directory, const SchedulerPlace &place);

/// The variables by which programs find the scheduler and what it has printed.
EnvironmentChanges schedulerVariables(const DeviceDirectory &directory, const SchedulerPlace &place);

/// The same for programs beside the device, and for those in one with a bus only: the machine's configuration
/// would lead them to the machine's scheduler.
EnvironmentChanges schedulerVariablesOutside(const DeviceDirectory &directory);

/// Removes whatever leads print programs elsewhere.
EnvironmentChanges withoutOtherSchedulers();
