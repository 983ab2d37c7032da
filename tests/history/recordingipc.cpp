// The class ZBIPC that the library finds first when it stands in the program.
#include "recordingipc.h"

RecordingIpc &recordingIpc()
{
    static RecordingIpc recording;
    return recording;
}

ZBIPC::ZBIPC(QObject *parent)
    : QObject(parent)
    , d(nullptr)
{
    recordingIpc().log.append(QStringLiteral("made"));
    recordingIpc().made.append(this);
    recordingIpc().parents.append(parent);
}

ZBIPC::~ZBIPC()
{
    ++recordingIpc().destroyed;
}

PrintJobMetaData ZBIPC::getJobInfo(QString guid) const
{
    recordingIpc().log.append(QStringLiteral("getJobInfo ") + guid);
    if (recordingIpc().beforeAnswer)
        recordingIpc().beforeAnswer(guid);
    return recordingIpc().records.value(guid);
}
