// Puts recorded calls on the bus.
#include "recordedcall.h"

#include <QtDBus/QDBusMetaType>

QDBusArgument &operator<<(QDBusArgument &argument, const RecordedCall &call)
{
    argument.beginStructure();
    argument << call.method << call.signature << call.arguments;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, RecordedCall &call)
{
    argument.beginStructure();
    argument >> call.method >> call.signature >> call.arguments;
    argument.endStructure();
    return argument;
}

void registerRecordedCallTypes()
{
    qDBusRegisterMetaType<RecordedCall>();
    qDBusRegisterMetaType<RecordedCalls>();
    // The name under which the generated adaptor knows the type.
    qRegisterMetaType<RecordedCalls>("RecordedCalls");
}
