// What the utility daemon adds to the control interface of the virtual device.
#pragma once

#include "virtualdevicecontrol.h"

class InternetState;
class StateStore;

/// The internet state and the ship mode.
class UtilityDeviceControl : public VirtualDeviceControl
{
    Q_OBJECT

public:
    /// All three must outlive this object.
    UtilityDeviceControl(StateStore &store, InternetState &internet, CallGate &gate,
                         QObject *parent = nullptr);

    void SetInternetState(bool connected) override;
    void FollowRoutes() override;
    void SetShip(int mode) override;

private:
    StateStore &m_store;
    InternetState &m_internet;
};
