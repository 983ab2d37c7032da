// One call as it came over the bus, in the shape in which the control interface tells it.
#pragma once

#include <QtCore/QList>
#include <QtCore/QMetaType>
#include <QtCore/QString>
#include <QtCore/QVariantList>
#include <QtDBus/QDBusArgument>

struct RecordedCall
{
    QString method;
    QString signature;
    QVariantList arguments;
};

/// D-Bus type a(ssav).
using RecordedCalls = QList<RecordedCall>;

QDBusArgument &operator<<(QDBusArgument &argument, const RecordedCall &call);
const QDBusArgument &operator>>(const QDBusArgument &argument, RecordedCall &call);

/// Makes the types known to QtDBus; once, before the first call.
void registerRecordedCallTypes();

Q_DECLARE_METATYPE(RecordedCall)
Q_DECLARE_METATYPE(RecordedCalls)
