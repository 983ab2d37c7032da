// Text in, text out.
#include "jobtidying.h"

#include "printjobmetadata.h"

void tidyJob(PrintJobMetaData &job)
{
    for (const QLatin1String extension : {QLatin1String(".tavo"), QLatin1String(".zbzl")}) {
        if (job.jobName.endsWith(extension)) {
            job.jobName.remove(extension);
            break;
        }
    }
    const QString scheme = QStringLiteral("file:///");
    // Most jobs have no picture, and share this text then.
    job.imagePath = job.imagePath.isEmpty() ? scheme : scheme + job.imagePath;
}

bool isListed(const PrintJobMetaData &job)
{
    return job.copyCount >= 1;
}
