// What a service manager tells of a link that it made or removed: D-Bus type (sss). Here there are never any.
#pragma once

#include <QtCore/QVector>
#include <QtDBus/QDBusArgument>

struct UnitFileChange
{
    QString kind;
    QString link;
    QString destination;
};

using UnitFileChanges = QVector<UnitFileChange>;

Q_DECLARE_METATYPE(UnitFileChange)
Q_DECLARE_METATYPE(UnitFileChanges)

inline QDBusArgument &operator<<(QDBusArgument &argument, const UnitFileChange &change)
{
    argument.beginStructure();
    argument << change.kind << change.link << change.destination;
    argument.endStructure();
    return argument;
}

inline const QDBusArgument &operator>>(const QDBusArgument &argument, UnitFileChange &change)
{
    argument.beginStructure();
    argument >> change.kind >> change.link >> change.destination;
    argument.endStructure();
    return argument;
}
