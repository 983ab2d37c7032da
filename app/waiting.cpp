// Waits, with the event loop running, for something to come true.
#include "waiting.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

bool waitUntil(const std::function<bool()> &condition, int milliseconds)
{
    // Also wakes the loop below, which without any event would sleep on.
    QTimer patience;
    patience.setSingleShot(true);
    patience.start(milliseconds);
    while (!condition()) {
        if (!patience.isActive())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}
