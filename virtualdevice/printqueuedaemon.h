// The device's print queue daemon, printqd.
#pragma once

#include "busnamewatch.h"
#include "devicepart.h"

#include <memory>

class PrintQueueDaemon : public DevicePart
{
public:
    /// PROGRAM is the daemon's absolute path, QUEUE the address of the scheduler's queue; without a queue,
    /// the daemon does without a scheduler. Throws Failure if the program cannot be run.
    PrintQueueDaemon(const DeviceDirectory &directory, const std::string &program, const std::string &queue);

    pid_t start(const ChildProgram &surroundings) override;
    int readinessDescriptor() const override;
    bool isReady() override;

private:
    const std::string m_program;
    const std::string m_queue;
    std::unique_ptr<BusNameWatch> m_watch;
};
