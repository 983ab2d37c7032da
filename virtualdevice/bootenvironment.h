// The boot loader's environment of a whole device, for fw_printenv(1) and fw_setenv(1).
#pragma once

#include "childprocess.h"
#include "devicedirectory.h"
#include "overlay.h"

/// Puts the configuration of the tools into the device's /etc, and an image without content into its
/// /var/lib.
void placeBootEnvironment(const Overlay &etc, const Overlay &varLib);

/// Fills the image with a printer's values. The device must have its folders. Throws Failure.
void fillBootEnvironment(const ChildProgram &surroundings, const DeviceDirectory &directory);
