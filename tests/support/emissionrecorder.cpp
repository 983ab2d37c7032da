// Receives signals through the meta-object, as a connection to a slot without a name.
#include "emissionrecorder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

namespace {
constexpr int patienceMilliseconds = 10000;
}

EmissionRecorder::EmissionRecorder(const QObject *sender)
{
    const QMetaObject *const metaObject = sender->metaObject();
    const int firstSlot = QObject::staticMetaObject.methodCount();
    for (int i = firstSlot; i < metaObject->methodCount(); ++i) {
        if (metaObject->method(i).methodType() != QMetaMethod::Signal)
            continue;
        QMetaObject::connect(sender, i, this, firstSlot + m_signals.size(), Qt::DirectConnection);
        m_signals.append(metaObject->method(i));
    }
}

int EmissionRecorder::qt_metacall(QMetaObject::Call call, int id, void **arguments)
{
    const int slot = QObject::qt_metacall(call, id, arguments);
    if (slot < 0 || call != QMetaObject::InvokeMetaMethod)
        return slot;

    const QMetaMethod &signal = m_signals.at(slot);
    Emission emission{QString::fromLatin1(signal.name()), {}};
    for (int i = 0; i < signal.parameterCount(); ++i)
        emission.arguments.append(QVariant(signal.parameterType(i), arguments[i + 1]));
    m_emissions.append(emission);
    return -1;
}

QVector<EmissionRecorder::Emission> EmissionRecorder::emissions() const
{
    return m_emissions;
}

QStringList EmissionRecorder::names() const
{
    QStringList result;
    for (const Emission &emission : m_emissions)
        result.append(emission.signal);
    return result;
}

QVariantList EmissionRecorder::values(const QString &signal) const
{
    QVariantList result;
    for (const Emission &emission : m_emissions) {
        if (emission.signal == signal)
            result.append(emission.arguments.value(0));
    }
    return result;
}

bool EmissionRecorder::waitFor(int count)
{
    const QDeadlineTimer deadline(patienceMilliseconds);
    QTimer wakeUp;
    wakeUp.start(patienceMilliseconds);
    while (m_emissions.size() < count && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return m_emissions.size() >= count;
}

void EmissionRecorder::clear()
{
    m_emissions.clear();
}
