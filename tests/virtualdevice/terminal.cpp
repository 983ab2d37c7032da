// A pseudo-terminal by forkpty(3).
#include "terminal.h"

#include <QtCore/QVector>

#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int waitMilliseconds = 30000;

} // namespace

Terminal::~Terminal()
{
    close();
    if (m_process > 0) {
        kill(m_process, SIGKILL);
        waitForEnd();
    }
}

bool Terminal::start(const QStringList &command, const QStringList &entries)
{
    QVector<QByteArray> words;
    for (const QString &word : command)
        words.append(word.toLocal8Bit());
    QVector<char *> arguments;
    for (QByteArray &word : words)
        arguments.append(word.data());
    arguments.append(nullptr);
    QVector<QByteArray> variables;
    for (const QString &entry : entries)
        variables.append(entry.toLocal8Bit());

    m_process = forkpty(&m_descriptor, nullptr, nullptr, nullptr);
    if (m_process == 0) {
        for (QByteArray &variable : variables)
            putenv(variable.data());
        execv(arguments.constFirst(), arguments.data());
        _exit(127);
    }
    return m_process > 0;
}

void Terminal::type(const QByteArray &text) const
{
    const ssize_t written = write(m_descriptor, text.constData(), static_cast<std::size_t>(text.size()));
    Q_ASSERT(written == text.size());
    Q_UNUSED(written)
}

QByteArray Terminal::shownUntil(const QByteArray &text)
{
    while (!m_shown.contains(text)) {
        pollfd readable = {m_descriptor, POLLIN, 0};
        QByteArray piece(4096, Qt::Uninitialized);
        if (poll(&readable, 1, waitMilliseconds) <= 0)
            break;
        const ssize_t size = read(m_descriptor, piece.data(), static_cast<std::size_t>(piece.size()));
        if (size <= 0)
            break;
        m_shown += piece.left(static_cast<int>(size));
    }
    return m_shown;
}

void Terminal::sendSignal(int number) const
{
    // 0 would be our own process group.
    if (m_process > 0)
        kill(m_process, number);
}

void Terminal::close()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

int Terminal::waitForEnd()
{
    int status = 0;
    waitpid(m_process, &status, 0);
    m_process = 0;
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}
