// How a job's record travels over D-Bus: the structure (ssssiiiiiiiiissdssdssds). Daemon and client share it.
#pragma once

#include "printjobmetadata.h"

#include <QtCore/QList>
#include <QtCore/QMetaType>
#include <QtDBus/QDBusArgument>

using PrintJobMetaDataList = QList<PrintJobMetaData>;

Q_DECLARE_METATYPE(PrintJobMetaData)
Q_DECLARE_METATYPE(PrintJobMetaDataList)

QDBusArgument &operator<<(QDBusArgument &argument, const PrintJobMetaData &job);
const QDBusArgument &operator>>(const QDBusArgument &argument, PrintJobMetaData &job);

/// Makes both types known to QtDBus; to be called before the first of them is sent or read.
void registerJobTypes();

/// Whether two records are the same in every member.
bool isSameRecord(const PrintJobMetaData &a, const PrintJobMetaData &b);
