// The state of the internet connection and when it is told.
#pragma once

#include <QtCore/QObject>

class RouteMonitor;

/// Follows the routes, unless a test or the virtual device has fixed the state.
class InternetState : public QObject
{
    Q_OBJECT

public:
    /// \a routes must outlive this object.
    explicit InternetState(RouteMonitor &routes, QObject *parent = nullptr);

    bool isConnected() const;

    /// Looks at the routes afresh and tells the state in any case.
    void check();

    /// Fixes the state and tells it in any case.
    void fix(bool connected);
    /// Follows the routes again and tells the state if it is another now.
    void follow();

Q_SIGNALS:
    /// The state is told: it has changed, or somebody asked for it.
    void told(bool connected);

private:
    bool lookAtRoutes() const;
    void tellChange();

    RouteMonitor &m_routes;
    bool m_isFixed = false;
    bool m_isConnected = false;
};
