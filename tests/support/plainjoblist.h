// The list of jobs made in the plainest way, which the library's is compared with and measured against.
#pragma once

#include "printjobmetadata.h"

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QVariantList>

QString plainJobTime(const QString &timeStamp, bool is24HourClock);

QVariantList plainJobList(const QMap<QString, PrintJobMetaData> &jobs, bool is24HourClock);
