// What the keys of a keyboard type in a compositor that is started from the environment file.
#pragma once

#include "compositor.h"
#include "xserver.h"

#include <QtCore/QProcess>

/// A screen in memory, the compositor on it and a client with a text field.
class KeyboardTrial
{
public:
    /// \param client the program zbtextfield
    explicit KeyboardTrial(const QString &client);
    ~KeyboardTrial();
    KeyboardTrial(const KeyboardTrial &) = delete;
    KeyboardTrial &operator=(const KeyboardTrial &) = delete;

    /// Starts all three with the content of the environment file. Returns what went wrong, or nothing.
    QString start(const QByteArray &environmentFile);
    /// Presses the keys and waits until the client has received them. Returns what went wrong, or nothing.
    QString type(const QStringList &keyCodes);
    /// What the client has received, one text a key, empty for a key that gives no text.
    QStringList typed() const { return m_typed; }
    /// Waits until the client shows what was typed, and writes a picture of the screen with grim(1). Returns
    /// what went wrong, or nothing.
    QString writePicture(const QString &fileName);

private:
    bool readLine();

    const QString m_clientProgram;
    XServer m_screen;
    Compositor m_compositor;
    QProcess m_client;
    bool m_hasFocus = false;
    QStringList m_typed;
    QString m_shown;
};
