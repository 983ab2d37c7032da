// What makes a device whole, beside its programs: the machine's folders made its own, a network, a boot
// environment.
#pragma once

#include "childprocess.h"
#include "commandline.h"
#include "devicedirectory.h"
#include "environment.h"

/// Sets the device up in the namespaces that this process has entered. SURROUNDINGS are the device's, CALLERS
/// is the environment of who started it. Throws Failure, with forbiddenStatus if the machine does not allow
/// it.
void setUpWholeDevice(const CommandLine &commandLine, const DeviceDirectory &directory,
                      const ChildProgram &surroundings, const Environment &callers);
