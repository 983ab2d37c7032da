// Jobs as a shop that prints labels has them, for the virtual device.
#pragma once

#include "storedjob.h"

#include <QtCore/QVector>

/**
 * \a count jobs whose times lie before \a before, the newest first and minutes to hours apart; without GUIDs.
 * \a first says how many were made already: the same arguments make the same jobs.
 */
QVector<StoredJob> believableJobs(int count, int first, qint64 before);

/// Writes the small PDF document that these jobs have printed, for this user alone. Returns an empty text, or
/// why it is not there.
QString writeBelievableDocument(const QString &path, qint64 *bytes);
