// A class ZBIPC of the test's own, which answers what the test sets and notes what it is asked.
#pragma once

#include "zbipc.h"

#include <QtCore/QHash>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <functional>

/// What all ZBIPC objects of the process share.
struct RecordingIpc
{
    QHash<QString, PrintJobMetaData> records; ///< what is answered; an empty record for what is not here
    QStringList log; ///< "made", "getJobInfo GUID", and what a test adds, in order
    QVector<ZBIPC *> made;
    QVector<QObject *> parents; ///< of those made, in the same order
    int destroyed = 0;
    std::function<void(const QString &guid)> beforeAnswer; ///< runs in getJobInfo()

    void clear() { *this = RecordingIpc(); }
};

RecordingIpc &recordingIpc();
