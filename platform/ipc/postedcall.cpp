// One event of our own at a time.
#include "postedcall.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>

PostedCall::PostedCall(QObject *parent, const std::function<void()> &function)
    : QObject(parent)
    , m_function(function)
{
}

void PostedCall::post(Qt::EventPriority priority)
{
    if (m_isPosted)
        return;
    m_isPosted = true;
    QCoreApplication::postEvent(this, new QEvent(QEvent::User), priority);
}

void PostedCall::customEvent(QEvent *)
{
    m_isPosted = false;
    const std::function<void()> function = m_function;
    function();
}
