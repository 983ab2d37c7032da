// The process that the person starts: it passes signals on to the keeper and the exit status back.
#pragma once

#include "commandline.h"

/// Runs a device as COMMANDLINE says and returns the exit status.
int runLauncher(const CommandLine &commandLine);
