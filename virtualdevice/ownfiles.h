// Programs and libraries that were built together with this one.
#pragma once

#include <string>

/// The utility daemon beside this program.
std::string utilityDaemonBesideThis();

/// The print queue daemon beside this program.
std::string printQueueDaemonBesideThis();

/// The device's service manager beside this program.
std::string serviceManagerPath();

/// What starts a service so that it ends with the device, beside this program.
std::string serviceStartPath();

/// By which the print scheduler tells the print queue daemon of its jobs, beside this program; may be
/// missing.
std::string notifierPath();

/// The device's clock, in the folder of libraries that goes with the folder of this program.
std::string clockLibraryPath();
