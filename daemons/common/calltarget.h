// What the objects that implement a D-Bus interface have in common: a method can refuse the call.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtDBus/QDBusError>

#include <functional>
#include <optional>

/// Why a call is answered with an error.
struct Refusal
{
    QDBusError::ErrorType type;
    QString text;
};

/// The refusal of a call that failed with \a text; none where that is empty.
std::optional<Refusal> refusalOf(const QString &text);

/**
 * The object behind a D-Bus adaptor.
 *
 * The adaptor's methods return the value of the reply and nothing else. A method that refuses the call leaves
 * the reason here, where whoever answers the call finds it; one whose work takes longer says here that the
 * answer comes later.
 */
class CallTarget : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Answers a call that has no result: it is done, or refused.
    using Answer = std::function<void(const std::optional<Refusal> &)>;

    /// Before each call: who calls, by the unique name on the bus, and how the call is answered later.
    void beginCall(const QString &busName, const Answer &answer);
    /// The reason that the last method left, which is forgotten with that.
    std::optional<Refusal> takeRefusal();
    /// Whether the last method answers later.
    bool isAnsweredLater() const { return m_isAnsweredLater; }

protected:
    /// Who calls: its unique name on the bus.
    const QString &caller() const { return m_caller; }
    void refuse(QDBusError::ErrorType type, const QString &text);
    /// The call that is under way, which has no result, is answered by what is returned, once, and not when
    /// the method returns.
    Answer answerLater();

private:
    std::optional<Refusal> m_refusal;
    QString m_caller;
    Answer m_answer;
    bool m_isAnsweredLater = false;
};
