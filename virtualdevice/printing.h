// What a whole device has for printing beside the scheduler: where programs look for it.
#pragma once

#include "devicedirectory.h"

/// Shows the folder of the print scheduler in /run, which has to be the device's. With no scheduler in it, it
/// still is where the configuration for print programs lies. Throws Failure, with forbiddenStatus if the
/// machine does not allow it.
void showPrinting(const DeviceDirectory &directory);

/// Makes the folder of the scheduler's socket and lets it have its port. Throws Failure, with forbiddenStatus
/// if the machine does not allow it.
void preparePlacesToListen();
