// The ship mode of the device, as the utility daemon or the boot-loader environment give it.
#pragma once

#include <QtCore/QVariant>

/// Whether \a mode, of any basic type, is the military ship mode. What is no number is not.
bool isMilitaryShipMode(const QVariant &mode);
