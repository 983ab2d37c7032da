// A tool of the machine that does one step of a device's set-up.
#pragma once

#include "childprocess.h"
#include "devicedirectory.h"

#include <optional>
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

/// Runs TOOL to its end; its output goes to the log "set-up" of DIRECTORY. Returns nothing if it ended with
/// exit status 0, otherwise the first line that it wrote, which says why: what follows is mostly where.
/// Throws Failure if there is no such program.
std::optional<std::string> runSetUpTool(const SetUpTool &tool, const ChildProgram &surroundings,
                                        const DeviceDirectory &directory);
