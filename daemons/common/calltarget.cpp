// Carries a refusal from a method to the answer.
#include "calltarget.h"

#include <utility>

std::optional<Refusal> CallTarget::takeRefusal()
{
    return std::exchange(m_refusal, std::nullopt);
}

void CallTarget::setCaller(const QString &busName)
{
    m_caller = busName;
}

void CallTarget::refuse(QDBusError::ErrorType type, const QString &text)
{
    m_refusal = Refusal{type, text};
}
