// What the objects that implement a D-Bus interface have in common: a method can refuse the call.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtDBus/QDBusError>

#include <optional>

/// Why a call is answered with an error.
struct Refusal
{
    QDBusError::ErrorType type;
    QString text;
};

/**
 * The object behind a D-Bus adaptor.
 *
 * The adaptor's methods return the value of the reply and nothing else. A method that refuses the call leaves
 * the reason here, where whoever answers the call finds it.
 */
class CallTarget : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// The reason that the last method left, which is forgotten with that.
    std::optional<Refusal> takeRefusal();
    void setCaller(const QString &busName);

protected:
    /// Who calls: its unique name on the bus.
    const QString &caller() const { return m_caller; }
    void refuse(QDBusError::ErrorType type, const QString &text);

private:
    std::optional<Refusal> m_refusal;
    QString m_caller;
};
