// Synthesises the events of a finger and takes pictures of the window.
#include "windowdriver.h"

#include "waiting.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QVariant>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickItemGrabResult>
#include <QtQuick/QQuickWindow>

namespace {

constexpr int dragSteps = 20;
constexpr int pictureMilliseconds = 5000;

QQuickItem *findVisible(QQuickItem *item, const QString &objectName)
{
    if (!item->isVisible())
        return nullptr;
    if (item->objectName() == objectName)
        return item;
    for (QQuickItem *child : item->childItems()) {
        if (QQuickItem *found = findVisible(child, objectName))
            return found;
    }
    return nullptr;
}

} // namespace

WindowDriver::WindowDriver(QQuickWindow *window)
    : m_window(window)
{
}

QQuickItem *WindowDriver::visibleItem(const QString &objectName) const
{
    return findVisible(m_window->contentItem(), objectName);
}

QString WindowDriver::visibleText(const QString &objectName) const
{
    const QQuickItem *const item = visibleItem(objectName);
    return item ? item->property("text").toString() : QString();
}

void WindowDriver::bringIntoView(const QQuickItem &item)
{
    for (QQuickItem *area = item.parentItem(); area; area = area->parentItem()) {
        const QVariant position = area->property("contentY");
        if (!position.isValid())
            continue;
        const double top = item.mapToItem(area, QPointF(0, 0)).y();
        const double below = top + item.height() - area->height();
        if (top < 0)
            area->setProperty("contentY", position.toDouble() + top);
        else if (below > 0)
            area->setProperty("contentY", position.toDouble() + below);
    }
    QCoreApplication::processEvents();
}

void WindowDriver::click(const QQuickItem &item)
{
    bringIntoView(item);
    clickAt(item, QPointF(item.width() / 2, item.height() / 2));
}

void WindowDriver::clickAt(const QQuickItem &item, const QPointF &point)
{
    const QPointF place = item.mapToScene(point);
    sendMouse(QEvent::MouseButtonPress, place);
    sendMouse(QEvent::MouseButtonRelease, place);
}

void WindowDriver::drag(const QQuickItem &item, const QPointF &from, const QPointF &to)
{
    bringIntoView(item);
    sendMouse(QEvent::MouseButtonPress, item.mapToScene(from));
    for (int step = 1; step <= dragSteps; ++step)
        sendMouse(QEvent::MouseMove, item.mapToScene(from + (to - from) * step / dragSteps));
    sendMouse(QEvent::MouseButtonRelease, item.mapToScene(to));
}

void WindowDriver::sendMouse(int eventType, const QPointF &position)
{
    const auto type = static_cast<QEvent::Type>(eventType);
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, position, position, m_window->mapToGlobal(position.toPoint()), button, held,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(m_window, &event);
    QCoreApplication::processEvents();
}

void WindowDriver::type(const QString &text)
{
    for (const QChar letter : text) {
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, letter.toUpper().unicode(), Qt::NoModifier, QString(letter));
            QCoreApplication::sendEvent(m_window, &event);
        }
        QCoreApplication::processEvents();
    }
}

QImage WindowDriver::picture()
{
    // Works without a display, which QQuickWindow::grabWindow() does not with the software renderer.
    const QSharedPointer<QQuickItemGrabResult> result = m_window->contentItem()->grabToImage();
    if (!result)
        return QImage();
    bool isReady = false;
    QObject::connect(result.data(), &QQuickItemGrabResult::ready, [&isReady] { isReady = true; });
    waitUntil([&isReady] { return isReady; }, pictureMilliseconds);
    return result->image();
}
