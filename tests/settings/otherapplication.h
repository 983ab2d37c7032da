// A second process with a ZBSettingsMain, steered by the test.
#pragma once

#include "childprocess.h"

#include <QtCore/QProcessEnvironment>
#include <QtCore/QString>
#include <QtCore/QVariant>

/**
 * Another application of the device. Each function waits for the other process; what it has not done after
 * half a minute fails. A process that has died answers nothing more: see isRunning().
 */
class OtherApplication
{
public:
    /// What a command gave: its result, or the text of the exception that it threw.
    struct Reply
    {
        QVariant value;
        QString exception;
        qint64 milliseconds = -1; ///< how long it took; -1 when there was no reply
    };

    /// Starts the process; its local socket is named \a name.
    explicit OtherApplication(
        const QString &name = QStringLiteral("other application"),
        const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
    /// Lets the process end by itself and kills it if it does not.
    ~OtherApplication();

    Reply construct(bool runLocalServer = false);
    Reply destroy();
    Reply get(const QString &key);
    Reply get(const QString &key, const QVariant &defaultValue);
    Reply set(const QString &key, const QVariant &value);
    QVariantMap properties();
    QVariant property(const QString &name);
    QVariantList emittedValues(const QString &signal);
    QStringList log();
    /// Keeps the process from writing files of more than \a bytes; -1 for no limit.
    void limitFileSize(int bytes);

    /// Sends a command without waiting for its end; see finish().
    void begin(const QVariantList &command);
    /// Whether the command has ended, or ends within \a milliseconds.
    bool hasReplyWithin(int milliseconds);
    Reply finish();

    bool isRunning();
    qint64 processId() const;
    void kill();

private:
    Q_DISABLE_COPY(OtherApplication)
    Reply run(const QVariantList &command);
    ChildProcess m_process;
};
