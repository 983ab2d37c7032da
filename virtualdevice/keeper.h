// The process that keeps a device: parent of all its programs, and the one who clears up after them.
#pragma once

#include "commandline.h"
#include "keeperlink.h"

#include <csignal>

/// Runs the device until COMMAND has ended or the launcher at the other end of LINK is gone or says so. MASK
/// is the signal mask that COMMAND gets. Returns the exit status for the launcher.
int runKeeper(const CommandLine &commandLine, KeeperLink link, const sigset_t &mask);
