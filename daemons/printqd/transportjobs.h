// What a job of the transport means for the record that is told of it.
#pragma once

#include "printtransport.h"
#include "storedjob.h"

/// A job that was not known before; its supplies are still missing.
StoredJob newJob(const TransportJob &seen, const QString &guid);
/// A job that is known, as it was seen now.
void updateJob(const TransportJob &seen, StoredJob *job);
/// The job has ended without the transport: it failed, or the scheduler lost it.
void failJob(JobError error, StoredJob *job);

/// The order was carried out by a job that the transport does not know any more: it was printed.
void finishOrder(StoredJob *job);

/// The job once more: a new one, with the same content, that waits to be submitted with \a token.
StoredJob reprintOf(const StoredJob &job, const QString &guid, const QString &token, qint64 now);
