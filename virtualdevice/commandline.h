// What the person asked for on the command line.
#pragma once

#include <string>
#include <vector>

struct CommandLine
{
    bool help = false;
    bool withoutDaemon = false;
    /// A private bus, daemon and folders, and for the rest the machine itself.
    bool busOnly = false;
    /// COMMAND sees the device's own clock.
    bool deviceClock = false;
    /// An ext4 file system of the device's own.
    bool withDataPartition = false;
    /// A print scheduler with the printer's queue.
    bool printing = false;
    /// A print queue daemon.
    bool printQueueDaemon = false;
    /// The utility daemon to start; empty means the one beside the launcher.
    std::string utilityDaemon;
    /// The print queue daemon to start; empty means the one beside the launcher.
    std::string printQueueDaemonPath;
    /// COMMAND and its arguments; empty means that the person wants the device without a command.
    std::vector<std::string> command;
};

/// Reads the arguments after the program's name. Throws Failure for an option that does not exist or
/// lacks its value.
CommandLine parseCommandLine(const std::vector<std::string> &arguments);

/// The text that --help prints.
std::string helpText();
