// The Settings application in the process of the test, used as a person uses it.
#pragma once

#include "settingsapplication.h"
#include "windowdriver.h"

#include <QtCore/QPointF>
#include <QtCore/QString>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

class AppSession
{
public:
    /// Shows the window at this tab and waits until it can be used.
    explicit AppSession(int tab = 0);

    QQuickWindow *window() const;

    /// The visible item of this object name, scrolled into view; the test ends when there is none.
    QQuickItem &item(const QString &name);
    bool isVisible(const QString &name) const;
    /// Where the visible item of this object name is in the window, without scrolling.
    QRectF rectangle(const QString &name);
    /// The text that the visible item of this object name shows.
    QString text(const QString &name) const;
    QVariant property(const QString &name, const char *property);

    void click(const QString &name);
    /// Where the middle of a slider's handle is when it shows this value, in the slider.
    static QPointF handlePlace(const QQuickItem &slider, int value);
    /// Holds the item down; step buttons then step soon and quickly. Gives the place at which to let it go.
    QPoint hold(const QString &name);
    /// A mouse button that goes down at one point of the item, moves and goes up at the other.
    void drag(const QString &name, const QPointF &from, const QPointF &to);
    /// The same on a touch screen.
    void slideFinger(const QString &name, const QPointF &from, const QPointF &to);
    /// Gives the item the focus, as the Tab key would, and presses a key.
    void press(const QString &name, Qt::Key key);

    int currentTab() const;
    void turnTo(int tab);

private:
    void waitForPicture();

    SettingsApplication m_application;
    std::unique_ptr<WindowDriver> m_driver;
};
