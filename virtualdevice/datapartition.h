// An ext4 file system of the device's own, for machines whose root is none: df(1) then has a row to show.
#pragma once

#include "childprocess.h"
#include "devicedirectory.h"
#include "overlay.h"

#include <optional>
#include <string>

/// Whether the device can have one, and is given one without being asked: it runs as root, and the machine's
/// root is not ext4.
bool isDataPartitionMissing();

/// Where it will lie. To be called before VARLIB is shown.
void placeDataPartition(const Overlay &varLib);

/// Makes a small one and mounts it on /var/lib/corvanta/data. Returns nothing, or why that did not work.
/// Throws Failure if a tool for it is missing.
std::optional<std::string> mountDataPartition(const ChildProgram &surroundings,
                                              const DeviceDirectory &directory);
