// Whether network time is on, as the clock service's property changes tell it.
#pragma once

#include <QtCore/QStringList>
#include <QtCore/QVariantMap>

enum class NetworkTimeState {
    Asking, ///< the clock service has been asked and has not answered yet
    Unknown, ///< there is no clock service, or it does not say
    Off,
    On
};

/// The state that a value of the property NTP of org.freedesktop.timedate1 (see org.freedesktop.timedate1(5))
/// stands for: Unknown for anything but a boolean.
NetworkTimeState networkTimeState(const QVariant &ntp);

/**
 * The state after a PropertiesChanged signal of org.freedesktop.timedate1 with these \a changed values and
 * \a invalidated names. Asking when NTP has changed without its new value; \a before when NTP is not named.
 */
NetworkTimeState networkTimeStateAfter(NetworkTimeState before, const QVariantMap &changed,
                                       const QStringList &invalidated);
