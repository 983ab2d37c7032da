// A folder of the machine that the device sees and may change, while the changes go to the device's own
// folder.
#pragma once

#include "devicedirectory.h"

#include <string>

class Overlay
{
public:
    /// TARGET is the folder of the machine, an absolute path. Throws Failure.
    Overlay(const std::string &target, const DeviceDirectory &directory);

    /// Folder of the changes. What is put there before show() is in the device from the beginning.
    std::string changes() const { return m_folder + "/changes"; }
    /// Lets the device see it. Throws Failure, with forbiddenStatus if the machine does not allow it.
    void show() const;

private:
    const std::string m_target;
    const std::string m_folder;
};
