// The printer's options and presets as other programs see them, in the home folder that the test runs in.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace PrinterOptionsFile {

/// Takes options and presets away, and hides the machine's own.
void removeAll();
/// Makes this the line of the queue, behind its name.
bool write(const QByteArray &options);
/// The text that the queue's line holds for the option; null when it does not hold it.
QByteArray value(const QByteArray &option);
/// How many options the queue's line holds.
int count();
/// The display names of the presets, as they are listed to a program that starts now.
QStringList presets();

} // namespace PrinterOptionsFile
