// The settings file of the virtual device that the test runs in, as bytes.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

/// The file as another program sees it, which knows nothing of QSettings.
namespace SettingsFile {

QString folder();
QString path();
bool exists();
/// The bytes of the file; empty when it is absent.
QByteArray content();
/**
 * Makes \a content the content of the file, in place, and its folder where it is missing.
 *
 * Each call gives the file a modification time that no earlier call gave it: QSettings takes a file of the
 * same size and the same millisecond for unchanged, and a test writes faster than that.
 */
bool write(const QByteArray &content);
/// Takes the whole folder away, whatever lies in it.
void removeAll();

} // namespace SettingsFile
