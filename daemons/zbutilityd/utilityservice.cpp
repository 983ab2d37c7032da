// The methods of the daemon's own interface.
#include "utilityservice.h"

#include "internetstate.h"
#include "statestore.h"

UtilityService::UtilityService(StateStore &store, InternetState &internet, QObject *parent)
    : CallTarget(parent)
    , m_store(store)
    , m_internet(internet)
{
}

void UtilityService::setDisplayDimTime(int choice)
{
    change(Value::DisplayDimTime, choice);
}

void UtilityService::setDisplayPowerOffTime(int choice)
{
    change(Value::DisplayPowerOffTime, choice);
}

void UtilityService::setDisplayBrightness(uint level)
{
    change(Value::DisplayBrightness, level);
}

void UtilityService::setAutomaticUpdateCheck(bool enabled)
{
    change(Value::AutomaticUpdateCheck, enabled);
}

void UtilityService::setTwentyFourHourMode(bool enabled)
{
    change(Value::TwentyFourHourMode, enabled);
}

void UtilityService::setDateFormat(const QString &format)
{
    change(Value::DateFormat, format);
}

bool UtilityService::getInternetConnection() const
{
    return m_internet.isConnected();
}

void UtilityService::checkInternetConnection()
{
    m_internet.check();
}

int UtilityService::getShip() const
{
    return m_store.value(Value::ShipMode).toInt();
}

/// Checks the value and brings it to the disk; refuses the call if either fails.
void UtilityService::change(Value value, const QVariant &newValue)
{
    const QString complaint = ruleOf(value).complaint(newValue);
    if (!complaint.isEmpty()) {
        refuse(QDBusError::InvalidArgs, complaint);
        return;
    }
    const QString failure = m_store.change(value, newValue);
    if (!failure.isEmpty())
        refuse(QDBusError::Failed, failure);
}
