// A tool of the machine that does one step of a device's set-up.
#pragma once

#include "childprocess.h"
#include "devicedirectory.h"

#include <string>
#include <vector>

struct SetUpTool
{
    /// Name of the program; looked up in PATH and in the folders of the administrator's programs.
    std::string name;
    std::vector<std::string> arguments;
    /// The Debian package that it is in.
    std::string package;
};

/// Runs TOOL to its end; its output goes to the log "set-up" of DIRECTORY. Returns whether it ended with exit
/// status 0. Throws Failure if there is no such program.
bool runSetUpTool(const SetUpTool &tool, const ChildProgram &surroundings, const DeviceDirectory &directory);

/// The last line that a tool has written, for a message.
std::string lastWordOfSetUp(const DeviceDirectory &directory);
