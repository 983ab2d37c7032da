// Reads the files when they have changed and writes the user's.
#include "printeroptionstore.h"

#include "lpoptionsreading.h"
#include "lpoptionstext.h"
#include "optionsfolder.h"

#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace {

constexpr int patienceMilliseconds = 1000;
constexpr int mostLinks = 40;

QByteArray queue()
{
    return QByteArrayLiteral("BrackenXL");
}

QByteArray userFile()
{
    return QFile::encodeName(QDir::homePath()) + "/.cups/lpoptions";
}

QByteArray systemFile()
{
    const QByteArray folder = qgetenv("CUPS_SERVERROOT");
    return (folder.isEmpty() ? QByteArrayLiteral("/etc/cups") : folder) + "/lpoptions";
}

/// The file that \a path names after all symbolic links, which may have none of that name yet.
QString withoutLinks(QString path)
{
    for (int links = 0; links < mostLinks && QFileInfo(path).isSymLink(); ++links)
        path = QFileInfo(path).symLinkTarget();
    return path;
}

} // namespace

PrinterOptionStore::PrinterOptionStore()
    : PrinterOptionStore(userFile(), systemFile())
{
}

PrinterOptionStore::PrinterOptionStore(const QByteArray &userFile, const QByteArray &systemFile)
{
    m_user.path = userFile;
    m_system.path = systemFile;
}

void PrinterOptionStore::File::refresh()
{
    if (isRead && FileState::of(path.constData()) == state)
        return;
    LpOptionsReading reading = readLpOptions(path);
    isRead = true;
    state = reading.state;
    text = reading.text;
    failure = reading.failure;
    const QVector<LpOption> options = lpOptionsOf(text, queue());
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = lpOptionValue(options, printerOptionInfo(PrinterOption(i)).name);
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
    m_user.refresh();
    const QByteArray present = m_user.value(option);
    if (m_user.failure.isEmpty() && present == value && present.isNull() == value.isNull())
        return;
    report(change(option, value));
}

QString PrinterOptionStore::change(PrinterOption option, const QByteArray &value)
{
    const QFileInfo file(withoutLinks(QFile::decodeName(m_user.path)));
    // Who waited in vain once does not wait again, so that a process that hangs costs one wait and not one
    // for each option.
    const OptionsFolder folder(QFile::encodeName(file.path()), m_isHeldByOther ? 0 : patienceMilliseconds);
    m_isHeldByOther = folder.isHeldByOther();
    if (!folder.failure().isEmpty())
        return folder.failure();

    m_user.refresh();
    if (!m_user.failure.isEmpty())
        return m_user.failure;
    const std::optional<QByteArray> text =
        withLpOption(m_user.text, queue(), printerOptionInfo(option).name, value);
    if (!text)
        return QStringLiteral("there is no place for it in the printer's line");
    return *text == m_user.text ? QString() : folder.replace(QFile::encodeName(file.fileName()), *text);
}

void PrinterOptionStore::report(const QString &failure)
{
    if (!failure.isEmpty() && failure != m_lastFailure)
        qWarning("printer options cannot be written to %s: %s", m_user.path.constData(), qPrintable(failure));
    m_lastFailure = failure;
}
