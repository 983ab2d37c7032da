// Decides when the state of the internet connection is told.
#include "internetstate.h"

#include "routemonitor.h"

InternetState::InternetState(RouteMonitor &routes, QObject *parent)
    : QObject(parent)
    , m_routes(routes)
    , m_isConnected(lookAtRoutes())
{
    connect(&routes, &RouteMonitor::changed, this, &InternetState::tellChange);
}

bool InternetState::isConnected() const
{
    return m_isConnected;
}

void InternetState::check()
{
    m_isConnected = lookAtRoutes();
    emit told(m_isConnected);
}

void InternetState::fix(bool connected)
{
    m_isFixed = true;
    m_isConnected = connected;
    emit told(connected);
}

void InternetState::follow()
{
    m_isFixed = false;
    tellChange();
}

/// The state that counts now; what it was if the routes cannot be read.
bool InternetState::lookAtRoutes() const
{
    return m_isFixed ? m_isConnected : m_routes.hasWayToInternet().value_or(m_isConnected);
}

void InternetState::tellChange()
{
    const bool before = m_isConnected;
    m_isConnected = lookAtRoutes();
    if (m_isConnected != before)
        emit told(m_isConnected);
}
