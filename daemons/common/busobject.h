// The daemon's object on the bus: takes the calls, checks their types, and answers them.
#pragma once

#include <QtCore/QVariantList>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVirtualObject>

#include <functional>
#include <vector>

class CallGate;
class CallTarget;
class QDBusAbstractAdaptor;

/**
 * One object path with the interfaces of the adaptors that are generated from the XML files.
 *
 * The calls come through this object and not straight to the adaptors, so that there is one place where a
 * call of any method can be recorded or go wrong, also one with the wrong arguments, and where such a call
 * gets a clear error.
 */
class BusObject : public QDBusVirtualObject
{
    Q_OBJECT

public:
    explicit BusObject(QObject *parent = nullptr);

    /**
     * Adds the interface of \a adaptor, which is implemented by \a target. With a \a gate all of its calls go
     * through that. All of them must outlive this object, or its registration on the bus.
     *
     * A call that names no interface is taken as one of the interface that was added first.
     */
    void addInterface(QDBusAbstractAdaptor &adaptor, CallTarget &target, CallGate *gate = nullptr);

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    struct Interface
    {
        QDBusAbstractAdaptor *adaptor;
        CallTarget *target;
        CallGate *gate;
    };

    const Interface *findInterface(const QDBusMessage &message) const;
    const Interface *findInterface(const QString &name) const;
    bool asksForAllProperties(const QDBusMessage &message) const;
    static void perform(const Interface &interface, const QDBusMessage &message,
                        const std::function<void(const QDBusMessage &)> &answer);

    std::vector<Interface> m_interfaces;
};

/// Sends the signal \a name of \a adaptor's interface from the object path \a path.
void sendSignal(QDBusConnection connection, const QString &path, const QDBusAbstractAdaptor &adaptor,
                const QString &name, const QVariantList &arguments);
