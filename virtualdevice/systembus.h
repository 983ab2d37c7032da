// The device's system bus: a dbus-daemon of its own.
#pragma once

#include "devicepart.h"
#include "filedescriptor.h"

class SystemBus : public DevicePart
{
public:
    explicit SystemBus(const DeviceDirectory &directory);

    pid_t start(const ChildProgram &surroundings) override;
    int readinessDescriptor() const override { return m_address.get(); }
    bool isReady() override;

private:
    FileDescriptor m_address;
};
