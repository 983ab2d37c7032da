// The device's Wayland compositor, started from its environment file.
#pragma once

#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QTemporaryDir>

/// Sway in a window of an X display or of another compositor. It reads its keyboard's layout and variant from
/// XKB_DEFAULT_LAYOUT and XKB_DEFAULT_VARIANT when it starts, as compositors do.
class Compositor
{
public:
    Compositor();
    Compositor(const Compositor &) = delete;
    Compositor &operator=(const Compositor &) = delete;
    ~Compositor();

    /// Starts it with the variables of \a environmentFile on top of \a environment, whose DISPLAY or
    /// WAYLAND_DISPLAY names where its window goes, and waits until clients can connect. Returns what went
    /// wrong, or nothing.
    QString start(const QProcessEnvironment &environment, const QByteArray &environmentFile);
    /// The environment in which a program becomes a client of the compositor.
    QProcessEnvironment clientEnvironment() const;

private:
    QString handFolderToNobody();
    QString socket() const;

    QTemporaryDir m_runtime;
    QProcessEnvironment m_environment;
    QProcessEnvironment m_clientEnvironment;
    QProcess m_process;
};
