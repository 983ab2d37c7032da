// A message handler that keeps every message.
#include "messagelog.h"

#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>

namespace {

QMutex mutex;
QVector<MessageLog::Message> collected;

void collect(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const QMutexLocker locker(&mutex);
    collected.append({type, QString::fromUtf8(context.category), text});
}

} // namespace

MessageLog::MessageLog()
{
    clear();
    m_previous = qInstallMessageHandler(collect);
}

MessageLog::~MessageLog()
{
    qInstallMessageHandler(m_previous);
}

QVector<MessageLog::Message> MessageLog::messages() const
{
    const QMutexLocker locker(&mutex);
    return collected;
}

QStringList MessageLog::texts() const
{
    QStringList result;
    const QVector<Message> all = messages();
    for (const Message &message : all)
        result.append(message.text);
    return result;
}

void MessageLog::clear()
{
    const QMutexLocker locker(&mutex);
    collected.clear();
}
