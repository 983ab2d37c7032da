// VirtualDeviceControl: the control interface that the utility daemon has on a virtual device.
#pragma once

#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/QVector>

class VirtualDeviceControl
{
public:
    /// One call that the utility daemon got.
    struct Call
    {
        QString method;
        QString signature; ///< D-Bus signature of the arguments
        QVariantList arguments;
    };

    /// Whether there is a system bus with a utility daemon that can be steered.
    bool isThere() const;

    /// Fixes the state of the internet connection, which the daemon tells everyone. False when it cannot be
    /// told.
    bool setInternetState(bool connected);
    /// Lets the daemon follow the machine's routes again.
    bool followRoutes();

    bool clearCalls();
    /// The calls since clearCalls(), oldest first.
    QVector<Call> calls() const;
};
