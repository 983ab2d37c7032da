// A screen in memory for a compositor that has no display.
#pragma once

#include <QtCore/QProcess>
#include <QtCore/QString>

class XServer
{
public:
    XServer() = default;
    XServer(const XServer &) = delete;
    XServer &operator=(const XServer &) = delete;
    ~XServer();

    /// Starts Xvfb on a number that is free and waits until it listens. Returns what went wrong, or nothing.
    QString start();
    /// What DISPLAY has to be to reach it.
    QString display() const { return m_display; }
    /// Presses and releases the keys with these X key codes, one after the other, through XTEST (xdotool).
    /// Returns what went wrong, or nothing.
    QString type(const QStringList &keyCodes) const;

private:
    QProcess m_process;
    QString m_display;
};
