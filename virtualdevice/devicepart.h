// What a virtual device is made of: programs that run beside COMMAND, each a part of its own.
#pragma once

#include "childprocess.h"
#include "devicedirectory.h"

#include <string>
#include <utility>

/// One program of the device. A new part is a class of its own and one line in deviceparts.cpp; the keeper
/// starts the parts in the order of that list, each when the one before it is ready, and ends them in the
/// opposite order.
class DevicePart
{
public:
    /// DIRECTORY has to outlive the part.
    DevicePart(std::string name, const DeviceDirectory &directory)
        : m_name(std::move(name))
        , m_directory(directory)
    {
    }
    virtual ~DevicePart() = default;
    DevicePart(const DevicePart &) = delete;
    DevicePart &operator=(const DevicePart &) = delete;

    /// Name of the program, for messages and for its log file.
    const std::string &name() const { return m_name; }
    std::string logFile() const { return m_directory.logFile(m_name); }

    /// Starts the program with SURROUNDINGS (the device's environment and the signal mask) and returns its
    /// process id. Throws Failure with what a person can do about it.
    virtual pid_t start(const ChildProgram &surroundings) = 0;

    /// Readable when readiness may have changed; -1 if there is nothing to wait for.
    virtual int readinessDescriptor() const = 0;
    /// Looks at what has arrived, without waiting, and tells whether the part can be used.
    virtual bool isReady() = 0;

    /// The signal that ends the program.
    virtual int endSignal() const { return SIGTERM; }

protected:
    const DeviceDirectory &directory() const { return m_directory; }

private:
    const std::string m_name;
    const DeviceDirectory &m_directory;
};
