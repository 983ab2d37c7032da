// The unit systemd-timesyncd.service, which keeps the time by the network, without a process behind it.
#pragma once

#include <QtCore/QObject>
#include <QtDBus/QDBusConnection>

class Unit : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.systemd1.Unit")
    Q_PROPERTY(QString Id READ name CONSTANT SCRIPTABLE true)
    Q_PROPERTY(QString LoadState READ loadState CONSTANT SCRIPTABLE true)
    Q_PROPERTY(QString ActiveState READ activeState SCRIPTABLE true)
    Q_PROPERTY(QString SubState READ subState SCRIPTABLE true)
    Q_PROPERTY(QString UnitFileState READ unitFileState SCRIPTABLE true)

public:
    explicit Unit(const QDBusConnection &bus, QObject *parent = nullptr);

    QString name() const { return QStringLiteral("systemd-timesyncd.service"); }
    QString path() const;
    QString loadState() const { return QStringLiteral("loaded"); }
    QString activeState() const;
    QString subState() const;
    QString unitFileState() const;

    /// Both tell the bus if something has changed.
    void setActive(bool active);
    void setEnabled(bool enabled);

private:
    void announce(const QVariantMap &changes) const;

    const QDBusConnection m_bus;
    bool m_active = true;
    bool m_enabled = true;
};
