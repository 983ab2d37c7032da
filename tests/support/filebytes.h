// A whole file as bytes.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace FileBytes {

/// The bytes of the file; null, and not just empty, when it is absent or cannot be read.
QByteArray read(const QString &path);
/// Makes \a content the content of the file, in place; makes the file where it is missing.
bool write(const QString &path, const QByteArray &content);

} // namespace FileBytes
