// Reads a whole lpoptions file, also while another program is writing it.
#pragma once

#include "filestate.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

struct LpOptionsReading
{
    QByteArray text; ///< empty when there is no file
    FileState state; ///< of the file that the text is from
    bool isSettled = true; ///< whether reading a file of the same state again would give the same
    QString failure; ///< why a file that is there could not be read; empty when all is well
};

/**
 * Reads the file \a path. A file that is not there reads as an empty one.
 *
 * libcups empties the file and then writes it anew, without a lock. So a file that is empty, or has no end of
 * line at its end, or changes while it is read is read again until it has been left alone for 100 ms, and
 * then taken as it is. That is the longest that this takes. A file that has no end of line at its end and is
 * \a known, which is what the last reading gave, is taken at once.
 */
LpOptionsReading readLpOptions(const QByteArray &path, const QByteArray &known);
