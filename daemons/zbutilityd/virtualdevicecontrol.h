// The control interface of the virtual device: com.corvanta.VirtualDevice1.
#pragma once

#include "calltarget.h"
#include "recordedcall.h"

class CallGate;
class InternetState;
class StateStore;

/// One method a method of the interface, spelt as there, which the interface's XML file documents.
class VirtualDeviceControl : public CallTarget
{
    Q_OBJECT

public:
    /// All three must outlive this object.
    VirtualDeviceControl(StateStore &store, InternetState &internet, CallGate &gate,
                         QObject *parent = nullptr);

    void SetInternetState(bool connected);
    void FollowRoutes();
    void SetShip(int mode);
    void FailNextCall(const QString &errorName, const QString &message);
    void DelayNextCall(uint milliseconds);
    void IgnoreNextCall();
    void DieInNextCall();
    void Vanish();
    RecordedCalls Calls() const;
    void ClearCalls();

Q_SIGNALS:
    /// The process is to end, once the call is answered.
    void vanishing();

private:
    StateStore &m_store;
    InternetState &m_internet;
    CallGate &m_gate;
};
