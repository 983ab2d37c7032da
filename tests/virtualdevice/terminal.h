// A program in a terminal of its own, as its session leader.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

class Terminal
{
public:
    Terminal() = default;
    /// Closes the terminal and kills the program if it still runs.
    ~Terminal();
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    /// COMMAND, with ENTRIES ("NAME=value") added to the environment.
    bool start(const QStringList &command, const QStringList &entries);
    void type(const QByteArray &text) const;
    /// All that was shown, once it holds TEXT or the terminal has no more to show.
    QByteArray shownUntil(const QByteArray &text);
    void sendSignal(int number) const;
    /// What closing the window does.
    void close();
    /// Waits for the program's end; its exit status, or 128 + N if signal N ended it.
    int waitForEnd();

private:
    int m_descriptor = -1;
    int m_process = 0;
    QByteArray m_shown;
};
