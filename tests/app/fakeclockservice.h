// A clock service whose state of network time the test decides.
#pragma once

#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusVirtualObject>

/// Owns the name org.freedesktop.timedate1 on the test's system bus and answers what its property NTP is.
/// Works while the test's event loop runs.
class FakeClockService : public QDBusVirtualObject
{
    Q_OBJECT

public:
    /// \a ntp is what the property holds; an invalid variant lets every question be answered with an error.
    explicit FakeClockService(const QVariant &ntp);
    ~FakeClockService() override;

    /// Changes the property and tells it.
    void setNetworkTime(bool on);
    /// Tells that the property has changed, but not to what.
    void invalidate(bool on);
    /// Tells of another property of this interface, and of NTP in another interface.
    void tellOfOthers();
    /// Leaves questions unanswered.
    void setSilent(bool silent);
    int questions() const;

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    void tell(const QString &interfaceName, const QVariantMap &changed, const QStringList &invalidated);

    QDBusConnection m_connection;
    QVariant m_ntp;
    bool m_silent = false;
    int m_questions = 0;
};
