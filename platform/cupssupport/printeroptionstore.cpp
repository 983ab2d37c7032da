// Reads the files when they have changed and writes the user's.
#include "printeroptionstore.h"

#include "lpoptionsreading.h"
#include "lpoptionstext.h"
#include "optionsfiles.h"
#include "optionsfolder.h"

#include <QtCore/QDebug>

#include <array>
#include <climits>
#include <unistd.h>

namespace {

constexpr int mostLinks = 40;

QByteArray queue()
{
    return QByteArrayLiteral("BrackenXL");
}

/// Of \a path, which has a slash. With that at its end, so that the root is a folder like any other.
QByteArray folderOf(const QByteArray &path)
{
    return path.left(path.lastIndexOf('/') + 1);
}

QByteArray nameOf(const QByteArray &path)
{
    return path.mid(path.lastIndexOf('/') + 1);
}

/// Where the symbolic link \a path leads; null when it is none.
QByteArray targetOf(const QByteArray &path)
{
    std::array<char, PATH_MAX> target{};
    const ssize_t size = ::readlink(path.constData(), target.data(), target.size());
    return size > 0 ? QByteArray(target.data(), int(size)) : QByteArray();
}

/// The file that \a path names after all symbolic links, which may have none of that name yet.
QByteArray withoutLinks(QByteArray path)
{
    for (int links = 0; links < mostLinks; ++links) {
        const QByteArray target = targetOf(path);
        if (target.isNull())
            break;
        path = target.startsWith('/') ? target : folderOf(path) + target;
    }
    return path;
}

} // namespace

PrinterOptionStore::PrinterOptionStore()
    : PrinterOptionStore(userOptionsFile(), systemOptionsFile())
{
}

PrinterOptionStore::PrinterOptionStore(const QByteArray &userFile, const QByteArray &systemFile)
{
    m_user.path = userFile;
    m_system.path = systemFile;
}

void PrinterOptionStore::File::refresh()
{
    if (!isStateTrusted || FileState::of(path.constData()) != state)
        read();
}

void PrinterOptionStore::File::read()
{
    const LpOptionsReading reading = readLpOptions(path, text);
    state = reading.state;
    isStateTrusted = reading.isSettled;
    failure = reading.failure;
    if (isParsed && reading.text == text && reading.text.isNull() == text.isNull())
        return;
    text = reading.text;
    isParsed = true;
    const QVector<LpOption> options = lpOptionsOf(text, queue());
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = lpOptionValue(options, printerOptionInfo(PrinterOption(i)).name);
}

bool PrinterOptionStore::File::has(PrinterOption option, const QByteArray &expected) const
{
    const QByteArray present = value(option);
    return failure.isEmpty() && present == expected && present.isNull() == expected.isNull();
}

// What state the file has now is not known: another program may have written it since.
void PrinterOptionStore::File::noteWritten(const QByteArray &newText, PrinterOption option,
                                           const QByteArray &value)
{
    isStateTrusted = false;
    text = newText;
    values.at(size_t(option)) = value;
}

QByteArray PrinterOptionStore::value(PrinterOption option)
{
    m_user.refresh();
    const QByteArray usersValue = m_user.value(option);
    if (!usersValue.isNull())
        return usersValue;
    m_system.refresh();
    return m_system.value(option);
}

void PrinterOptionStore::setValue(PrinterOption option, const QByteArray &value)
{
    // What differs as far as is known is looked at under the lock, and once is enough.
    if (!m_user.isParsed || m_user.has(option, value)) {
        m_user.refresh();
        if (m_user.has(option, value))
            return;
    }
    report(change(option, value));
}

QString PrinterOptionStore::change(PrinterOption option, const QByteArray &value)
{
    if (m_user.path.isEmpty())
        return QStringLiteral("the user has no home folder");
    const QByteArray path = withoutLinks(m_user.path);
    const OptionsFolder folder(folderOf(path), m_patience.milliseconds());
    m_patience.noteOutcome(folder.error());
    if (folder.error() != 0)
        return FolderLock::reasonOf(folder.error());

    m_user.read();
    if (!m_user.failure.isEmpty())
        return m_user.failure;
    if (m_user.has(option, value))
        return {};
    const std::optional<QByteArray> text =
        withLpOption(m_user.text, queue(), printerOptionInfo(option).name, value);
    if (!text)
        return QStringLiteral("there is no place for it in the printer's line");
    const QByteArray ended = withEndedLine(*text, queue());
    if (const int error = folder.replace(nameOf(path), ended))
        return FolderLock::reasonOf(error);
    m_user.noteWritten(ended, option, value);
    return {};
}

void PrinterOptionStore::report(const QString &failure)
{
    if (!failure.isEmpty() && failure != m_lastFailure)
        qWarning("printer options cannot be written to %s: %s", m_user.path.constData(), qPrintable(failure));
    m_lastFailure = failure;
}
