// A process that asks for a tab, reduced to its system calls, so that what is measured is the side that
// listens.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

class TabClient
{
public:
    /// Connects to the local socket at \a path; the process ends with a message when nobody listens there.
    explicit TabClient(const QString &path);
    /// Closes the connection.
    ~TabClient();

    void send(const QByteArray &message) const;

private:
    Q_DISABLE_COPY(TabClient)
    int m_socket = -1;
};
