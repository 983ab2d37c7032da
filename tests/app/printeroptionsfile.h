// The printer's options and presets as other programs see them, in the home folder that the test runs in.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

namespace PrinterOptionsFile {

/// Lets options that the machine's own CUPS has for everybody count for nothing.
void hideThoseOfTheMachine();
/// Takes options and presets away.
void removeAll();
/// Puts a folder where the next file of options is made, so that none can be written, by root either.
bool blockOptions();
/// The same for presets, by a file where their folder would be. What is in the folder goes.
bool blockPresets();
/// Takes the right to write to the presets' folder away, from all but root.
bool makePresetsReadOnly();
/// Takes all rights to the presets' folder, or to the one above it, away, from all but root.
bool closePresets();
bool closeFolderAbovePresets();
/// Adds a preset that only a newer program can read: whoever lists the presets says so in the log.
bool addPresetOfNewerFormat();
/// Makes this the line of the queue, behind its name.
bool write(const QByteArray &options);
/// The text that the queue's line holds for the option; null when it does not hold it.
QByteArray value(const QByteArray &option);
/// How many options the queue's line holds.
int count();
/// Adds a preset with these options, keys and values in turns, as another program does it.
void addPreset(const QString &name, const QStringList &options);
/// The display names of the presets, as they are listed to a program that starts now.
QStringList presets();

/// While it lives, the presets' folder is locked, as by a program that hangs while it saves one.
class HungProgram
{
public:
    HungProgram();
    ~HungProgram();

    bool isHolding() const { return m_isHolding; }

private:
    Q_DISABLE_COPY(HungProgram)

    int m_folder;
    bool m_isHolding;
};

} // namespace PrinterOptionsFile
