// One job as QML sees it.
#pragma once

#include <QtCore/QString>
#include <QtCore/QVariantMap>

struct PrintJobMetaData;

/// The map of 23 keys, with \a time as its time.
QVariantMap jobRow(const PrintJobMetaData &job, const QString &time);

/// Whether two records are the same in every member.
bool isSameJob(const PrintJobMetaData &a, const PrintJobMetaData &b);

/// Whether two texts are the same. Those that nobody has changed since they were copied are so without a look
/// at them.
bool isSameText(const QString &a, const QString &b);
