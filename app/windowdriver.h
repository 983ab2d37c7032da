// WindowDriver: uses a window as a person does, with a finger and an eye, for programs that run without a
// person.
#pragma once

#include <QtCore/QPointF>
#include <QtCore/QString>
#include <QtGui/QImage>

class QEvent;
class QQuickItem;
class QQuickWindow;

class WindowDriver
{
public:
    /// The window must outlive the driver.
    explicit WindowDriver(QQuickWindow *window);

    /// The visible item with this object name; null when there is none.
    QQuickItem *visibleItem(const QString &objectName) const;

    /// The text that the visible item with this object name shows; empty when there is none.
    QString visibleText(const QString &objectName) const;

    /// Scrolls what the item lies on, as far as needed to see it.
    void bringIntoView(const QQuickItem &item);
    void click(const QQuickItem &item);
    /// A click at one point of the item, which is left where it is.
    void clickAt(const QQuickItem &item, const QPointF &point);
    /// Presses at one point of the item, moves in small steps and releases at the other.
    void drag(const QQuickItem &item, const QPointF &from, const QPointF &to);

    /// Types a text on a keyboard, to whatever has the focus.
    void type(const QString &text);

    /// What the window shows, popups included; null when the window cannot be drawn.
    QImage picture();

private:
    void sendMouse(int eventType, const QPointF &position);

    QQuickWindow *const m_window;
};
