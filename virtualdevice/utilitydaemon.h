// The device's utility daemon, zbutilityd.
#pragma once

#include "busnamewatch.h"
#include "devicepart.h"

#include <memory>

class UtilityDaemon : public DevicePart
{
public:
    /// PROGRAM is the daemon's absolute path. Throws Failure if it cannot be run.
    UtilityDaemon(const DeviceDirectory &directory, const std::string &program);

    pid_t start(const ChildProgram &surroundings) override;
    int readinessDescriptor() const override;
    bool isReady() override;

private:
    const std::string m_program;
    std::unique_ptr<BusNameWatch> m_watch;
};
