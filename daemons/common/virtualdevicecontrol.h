// The control interface of the virtual device: com.corvanta.VirtualDevice1.
#pragma once

#include "calltarget.h"
#include "recordedcall.h"

class CallGate;

/**
 * One method a method of the interface, spelt as there, which the interface's XML file documents.
 *
 * What a daemon has no use for is refused as not supported; a daemon that has one overrides it.
 */
class VirtualDeviceControl : public CallTarget
{
    Q_OBJECT

public:
    /// \a gate must outlive this object.
    explicit VirtualDeviceControl(CallGate &gate, QObject *parent = nullptr);

    virtual void SetInternetState(bool connected);
    virtual void FollowRoutes();
    virtual void SetShip(int mode);
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
    void refuseAsUnsupported();

    CallGate &m_gate;
};
