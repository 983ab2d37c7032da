// A /run of the device's own, as empty as after a start.
#pragma once

#include "environment.h"

#include <string>
#include <vector>

/// Folders below /run that a program started with the environment CALLERS needs for its display: those of
/// the Wayland socket and of the X11 key. Absolute, without duplicates.
std::vector<std::string> displayFolders(const Environment &callers);

/// Puts an empty /run in front of the machine's, with what programs expect in it, and shows the folders KEPT
/// of the machine's in it. Throws Failure, with forbiddenStatus if the machine does not allow it.
void makeRuntimeFolder(const std::vector<std::string> &kept);

/// Folder in /run for the descriptions of the services that the bus starts.
extern const char *const serviceFolder;

/// Address of the system bus that every program knows.
extern const char *const wellKnownBusAddress;

/// Folder in /run for what belongs to the device itself, with a path without odd characters.
extern const char *const deviceRuntimeFolder;

/// Folder in /run where a whole device sees the tree of its print scheduler.
extern const char *const printingFolder;
