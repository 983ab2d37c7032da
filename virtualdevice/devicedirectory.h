// The folder in which a device lives: where it is and how it is laid out.
#pragma once

#include "filedescriptor.h"

#include <string>

/// Whether a whole device sees a folder of its own at PATH, and not the machine's.
bool isHiddenInDevices(const std::string &path);

class DeviceDirectory
{
public:
    /// Makes the folder with all its sub-folders, for the owner only (0700), in $TMPDIR or, where that is too
    /// long for the sockets that will lie in the device, cannot be written or is hidden by a whole device, in
    /// /tmp. It is locked for as long as the object lives. Devices of the same user found there whose lock
    /// nobody holds any more, because all their processes were killed at once, are removed. Throws Failure.
    static DeviceDirectory create();

    const std::string &path() const { return m_path; }
    std::string home() const { return m_path + "/home"; }
    std::string config() const { return m_path + "/config"; }
    std::string data() const { return m_path + "/data"; }
    std::string cache() const { return m_path + "/cache"; }
    std::string state() const { return m_path + "/state"; }
    std::string runtime() const { return m_path + "/runtime"; }
    std::string temporary() const { return m_path + "/tmp"; }
    std::string bus() const { return m_path + "/bus"; }
    /// D-Bus address of the device's system bus.
    std::string busAddress() const;
    /// What a whole device has changed in the machine's folders, and what else its set-up needs.
    std::string layers() const { return m_path + "/layers"; }
    /// The clock of a whole device.
    std::string clock() const { return m_path + "/clock"; }
    /// What the utility daemon keeps across restarts.
    std::string utilityDaemonState() const { return m_path + "/utilityd"; }
    /// What the print queue daemon keeps across restarts.
    std::string printQueueState() const { return m_path + "/printqd"; }
    /// The print scheduler's own tree.
    std::string printing() const { return m_path + "/printing"; }
    std::string printingConfiguration() const { return printing() + "/etc"; }
    /// The documents that were printed.
    std::string printed() const { return printing() + "/printed"; }
    /// What the program NAME, a part of the device, writes to its standard output and error.
    std::string logFile(const std::string &name) const;

private:
    explicit DeviceDirectory(const std::string &path);

    std::string m_path;
    FileDescriptor m_lock;
};
