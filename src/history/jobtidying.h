// What becomes of a job's record when it arrives.
#pragma once

struct PrintJobMetaData;

/// Takes the extension of a label document off the name, ".tavo" or else ".zbzl": where the name ends with
/// it, wherever it stands in the name. Makes a URL of the picture's path by putting "file:///" before it,
/// whatever it is.
void tidyJob(PrintJobMetaData &job);

/// Whether the history shows the job: one that has copies.
bool isListed(const PrintJobMetaData &job);
