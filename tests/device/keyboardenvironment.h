// The compositor's environment file of the virtual device that the test runs in, as bytes.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace KeyboardEnvironment {

/// The folder; ends the program outside of a whole virtual device, whose /etc is its own.
QString folder();
QString path();
/// The bytes of the file; null when it is absent or cannot be read.
QByteArray content();
/// Makes \a content the content of the file, in place.
bool write(const QByteArray &content);
/// Takes away whatever lies in the folder.
bool clear();

} // namespace KeyboardEnvironment
