// Where the device's print scheduler is found.
#pragma once

#include "commandline.h"
#include "devicedirectory.h"

#include <string>

struct SchedulerPlace
{
    /// The folder of the scheduler, as it is seen in the device.
    std::string folder;
    /// A second socket, at which every program looks for the scheduler of its machine; may be empty.
    std::string wellKnownSocket;
    /// Port on the loopback interface.
    int port = 0;

    /// For tests and people: what can happen to the scheduler.
    std::string control() const { return folder + "/scheduler"; }
    std::string socket() const { return folder + "/cups.sock"; }
    std::string queueAddress() const;
};

/// The place for a device as COMMANDLINE asks for. In a whole device it is where every program looks for it;
/// with a bus only, it is in DIRECTORY, with a port that nobody else has at this moment. Throws Failure.
SchedulerPlace chooseSchedulerPlace(const CommandLine &commandLine, const DeviceDirectory &directory);
