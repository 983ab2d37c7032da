// Which lines of a full spool stay.
#pragma once

#include <QtCore/QByteArray>

/// \a lines without the older half of its lines; of an odd number the middle one goes too. A last line
/// without a line end counts as a line.
QByteArray newestHalf(const QByteArray &lines);

/**
 * What stays of \a lines so that it has at most \a room bytes: the newest half of the lines, and of these
 * again the newest half as long as they are still too long. No line is cut. A last line without a line end
 * gets one.
 */
QByteArray trimmedToFit(const QByteArray &lines, qint64 room);
