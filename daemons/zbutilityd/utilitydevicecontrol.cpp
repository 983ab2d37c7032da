// Fixes what the machine would decide.
#include "utilitydevicecontrol.h"

#include "internetstate.h"
#include "statestore.h"

UtilityDeviceControl::UtilityDeviceControl(StateStore &store, InternetState &internet, CallGate &gate,
                                           QObject *parent)
    : VirtualDeviceControl(gate, parent)
    , m_store(store)
    , m_internet(internet)
{
}

void UtilityDeviceControl::SetInternetState(bool connected)
{
    m_internet.fix(connected);
}

void UtilityDeviceControl::FollowRoutes()
{
    m_internet.follow();
}

void UtilityDeviceControl::SetShip(int mode)
{
    const QString failure = m_store.change(Value::ShipMode, mode);
    if (!failure.isEmpty())
        refuse(QDBusError::Failed, failure);
}
