// Stands before the daemon's own interface on a virtual device: records the calls and lets them go wrong.
#pragma once

#include "recordedcall.h"

#include <QtCore/QObject>
#include <QtDBus/QDBusMessage>

#include <functional>
#include <queue>

class CallGate : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /**
     * Records \a call and lets it meet the fault that has waited longest, if one waits.
     *
     * \a perform does what the call asks for and returns the reply; \a answer sends it, or another. What a
     * fault lets happen of the two, and when, is in the documentation of the control interface.
     */
    void pass(const QDBusMessage &call, const std::function<QDBusMessage()> &perform,
              const std::function<void(const QDBusMessage &)> &answer);

    void failNextCall(const QString &errorName, const QString &text);
    void delayNextCall(uint milliseconds);
    void ignoreNextCall();
    void dieInNextCall();

    const RecordedCalls &calls() const;
    void clearCalls();

Q_SIGNALS:
    void recorded(const RecordedCall &call);

private:
    using Fault = std::function<void(const QDBusMessage &call, const std::function<QDBusMessage()> &perform,
                                     const std::function<void(const QDBusMessage &)> &answer)>;

    std::queue<Fault> m_faults;
    RecordedCalls m_calls;
};
