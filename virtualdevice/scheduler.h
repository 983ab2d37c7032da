// The device's print scheduler: a cupsd of its own, with one queue.
#pragma once

#include "devicepart.h"
#include "filedescriptor.h"
#include "schedulerplace.h"

class Scheduler : public DevicePart
{
public:
    /// Throws Failure if there is no cupsd on this PC.
    Scheduler(const DeviceDirectory &directory, SchedulerPlace place);

    pid_t start(const ChildProgram &surroundings) override;
    int readinessDescriptor() const override { return m_tick.get(); }
    bool isReady() override;
    int endSignal() const override;

private:
    const SchedulerPlace m_place;
    FileDescriptor m_tick;
};
