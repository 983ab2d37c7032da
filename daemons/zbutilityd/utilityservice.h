// The daemon's own interface: local.ZBUtilityd.UtilityDaemon.
#pragma once

#include "calltarget.h"
#include "values.h"

class InternetState;
class StateStore;

/// One method a method of the interface, which the interface's XML file documents.
class UtilityService : public CallTarget
{
    Q_OBJECT

public:
    /// Both must outlive this object.
    UtilityService(StateStore &store, InternetState &internet, QObject *parent = nullptr);

    void setDisplayDimTime(int choice);
    void setDisplayPowerOffTime(int choice);
    void setDisplayBrightness(uint level);
    void setAutomaticUpdateCheck(bool enabled);
    void setTwentyFourHourMode(bool enabled);
    void setDateFormat(const QString &format);
    bool getInternetConnection() const;
    void checkInternetConnection();
    int getShip() const;

private:
    void change(Value value, const QVariant &newValue);

    StateStore &m_store;
    InternetState &m_internet;
};
