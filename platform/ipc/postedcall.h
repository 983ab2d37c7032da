// A function that the event loop calls later.
#pragma once

#include <QtCore/QObject>

#include <functional>

/// post() lets the event loop call the function once, however often it is posted until then.
class PostedCall : public QObject
{
public:
    PostedCall(QObject *parent, const std::function<void()> &function);

    void post(Qt::EventPriority priority);

protected:
    /// The function may delete this object.
    void customEvent(QEvent *event) override;

private:
    const std::function<void()> m_function;
    bool m_isPosted = false;
};
