// Reading and writing all bytes of an open file.
//
// The functions return 0, or the errno value (errno(3)) with which they failed.
#pragma once

#include <QtCore/QByteArray>

#include <sys/stat.h>

/// What fstat(2) says of \a file. EINVAL when it is no regular file, EFBIG when it is larger than \a largest.
int statusOfFile(int file, off_t largest, struct stat *status);
/// Reads \a size bytes of \a file from where it stands, or fewer where it ends before.
int readBytes(int file, off_t size, QByteArray *content);
/// Writes all of \a content, however many calls that takes.
int writeBytes(int file, const QByteArray &content);
