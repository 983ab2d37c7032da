// Carries a refusal from a method to the answer.
#include "calltarget.h"

#include <utility>

std::optional<Refusal> refusalOf(const QString &text)
{
    return text.isEmpty() ? std::nullopt : std::optional<Refusal>({QDBusError::Failed, text});
}

std::optional<Refusal> CallTarget::takeRefusal()
{
    return std::exchange(m_refusal, std::nullopt);
}

void CallTarget::beginCall(const QString &busName, const Answer &answer)
{
    m_caller = busName;
    m_answer = answer;
    m_isAnsweredLater = false;
}

CallTarget::Answer CallTarget::answerLater()
{
    m_isAnsweredLater = true;
    return m_answer;
}

void CallTarget::refuse(QDBusError::ErrorType type, const QString &text)
{
    m_refusal = Refusal{type, text};
}
