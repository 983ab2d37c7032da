// Whether somebody wants this program to end: Ctrl-C, SIGTERM, SIGHUP.
#pragma once

#include <QtCore/QObject>

/// Turns the three signals into a Qt signal, so that what was started is ended and what was made is removed.
class EndRequest : public QObject
{
    Q_OBJECT

public:
    EndRequest();
    ~EndRequest() override;

    /// Whether one has come.
    static bool hasCome();

Q_SIGNALS:
    void came();

private:
    Q_DISABLE_COPY(EndRequest)
};
