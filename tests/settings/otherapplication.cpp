// Talks to the other process over its standard input and output.
#include "otherapplication.h"

#include "testapplicationcommand.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QElapsedTimer>

namespace {
constexpr int patienceMilliseconds = 30000;
}

OtherApplication::OtherApplication(const QString &name, const QProcessEnvironment &environment)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.setProcessEnvironment(environment);
    m_process.start(QCoreApplication::applicationDirPath() + QStringLiteral("/zbtestapplication"), {name});
    m_process.waitForStarted(patienceMilliseconds);
}

OtherApplication::~OtherApplication()
{
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(patienceMilliseconds))
        kill();
}

OtherApplication::Reply OtherApplication::construct(bool runLocalServer)
{
    return run({QStringLiteral("construct"), runLocalServer});
}

OtherApplication::Reply OtherApplication::destroy()
{
    return run({QStringLiteral("destroy")});
}

OtherApplication::Reply OtherApplication::get(const QString &key)
{
    return run({QStringLiteral("get"), key});
}

OtherApplication::Reply OtherApplication::get(const QString &key, const QVariant &defaultValue)
{
    return run({QStringLiteral("get"), key, defaultValue});
}

OtherApplication::Reply OtherApplication::set(const QString &key, const QVariant &value)
{
    return run({QStringLiteral("set"), key, value});
}

QVariantMap OtherApplication::properties()
{
    return run({QStringLiteral("properties")}).value.toMap();
}

QVariant OtherApplication::property(const QString &name)
{
    return properties().value(name);
}

QVariantList OtherApplication::emittedValues(const QString &signal)
{
    return run({QStringLiteral("emitted values"), signal}).value.toList();
}

QStringList OtherApplication::log()
{
    return run({QStringLiteral("log")}).value.toStringList();
}

void OtherApplication::limitFileSize(int bytes)
{
    run({QStringLiteral("limit file size"), bytes});
}

void OtherApplication::begin(const QVariantList &command)
{
    m_process.write(commandLine(command));
    m_process.waitForBytesWritten(patienceMilliseconds);
}

bool OtherApplication::hasReplyWithin(int milliseconds)
{
    return m_process.canReadLine() || m_process.waitForReadyRead(milliseconds);
}

OtherApplication::Reply OtherApplication::finish()
{
    QElapsedTimer timer;
    timer.start();
    const QDeadlineTimer deadline(patienceMilliseconds);
    while (!m_process.canReadLine()) {
        if (m_process.state() == QProcess::NotRunning || deadline.hasExpired()
            || !m_process.waitForReadyRead(int(deadline.remainingTime())))
            return {{}, QStringLiteral("no reply"), -1};
    }
    const QVariantList reply = commandOf(m_process.readLine());
    if (reply.value(0).toString() == QLatin1String("ok"))
        return {reply.value(1), {}, timer.elapsed()};
    return {{}, reply.value(1).toString(), timer.elapsed()};
}

OtherApplication::Reply OtherApplication::run(const QVariantList &command)
{
    begin(command);
    return finish();
}

bool OtherApplication::isRunning()
{
    return m_process.state() == QProcess::Running;
}

qint64 OtherApplication::processId() const
{
    return m_process.processId();
}

void OtherApplication::kill()
{
    m_process.kill();
    m_process.waitForFinished(patienceMilliseconds);
}
