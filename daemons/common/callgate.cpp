// Recording of calls, and the faults.
#include "callgate.h"

#include <QtCore/QTimer>

#include <chrono>
#include <cstdlib>

void CallGate::pass(const QDBusMessage &call, const Perform &perform, const Answer &answer)
{
    m_calls.append({call.member(), call.signature(), call.arguments()});
    emit recorded(m_calls.constLast());

    if (m_faults.empty()) {
        perform(answer);
        return;
    }
    const Fault fault = std::move(m_faults.front());
    m_faults.pop();
    fault(call, perform, answer);
}

void CallGate::failNextCall(const QString &errorName, const QString &text)
{
    m_faults.push([errorName, text](const QDBusMessage &call, const auto &, const auto &answer) {
        answer(call.createErrorReply(errorName, text));
    });
}

void CallGate::delayNextCall(uint milliseconds)
{
    m_faults.push([this, milliseconds](const QDBusMessage &, const auto &perform, const auto &answer) {
        perform([this, milliseconds, answer](const QDBusMessage &reply) {
            QTimer::singleShot(std::chrono::milliseconds(milliseconds), this,
                               [reply, answer] { answer(reply); });
        });
    });
}

void CallGate::ignoreNextCall()
{
    m_faults.push([](const QDBusMessage &, const auto &, const auto &) {});
}

void CallGate::dieInNextCall()
{
    m_faults.push([](const QDBusMessage &, const auto &, const auto &) { std::_Exit(EXIT_FAILURE); });
}

const RecordedCalls &CallGate::calls() const
{
    return m_calls;
}

void CallGate::clearCalls()
{
    m_calls.clear();
}
