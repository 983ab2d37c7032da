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
    using Answer = std::function<void(const QDBusMessage &)>;
    using Perform = std::function<void(const Answer &)>;

    using QObject::QObject;

    /**
     * Records \a call and lets it meet the fault that has waited longest, if one waits.
     *
     * \a perform does what the call asks for and gives the reply to its argument; \a answer sends it, or
     * another. What a fault lets happen of the two, and when, is in the documentation of the control
     * interface.
     */
    void pass(const QDBusMessage &call, const Perform &perform, const Answer &answer);

    void failNextCall(const QString &errorName, const QString &text);
    void delayNextCall(uint milliseconds);
    void ignoreNextCall();
    void dieInNextCall();

    const RecordedCalls &calls() const;
    void clearCalls();

Q_SIGNALS:
    void recorded(const RecordedCall &call);

private:
    using Fault = std::function<void(const QDBusMessage &call, const Perform &perform, const Answer &answer)>;

    std::queue<Fault> m_faults;
    RecordedCalls m_calls;
};
