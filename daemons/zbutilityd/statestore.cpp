// Reads and replaces the state file.
#include "statestore.h"

#include "filedescriptor.h"

#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// A state file has a few hundred bytes. What is larger is none, and is not read as a whole to find out.
constexpr qint64 largestStateFile = 64 * 1024;

/// Brings the names in \a directory onto the disk, after a file in it was replaced.
bool syncDirectory(const QString &directory)
{
    const FileDescriptor folder(
        ::open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Some file systems cannot do it for folders, and keep the names without.
    return folder.get() >= 0 && (::fsync(folder.get()) == 0 || errno == EINVAL);
}

} // namespace

StateStore::StateStore(const QString &directory)
    : m_directory(directory)
    , m_path(directory + QStringLiteral("/state.json"))
    , m_values(initialState())
{
}

void StateStore::load()
{
    m_values = initialState();
    const QFileInfo information(m_path);
    if (!information.exists())
        return;
    if (!information.isFile()) {
        qWarning().noquote() << "no file, so no value can be kept:" << m_path;
        return;
    }

    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) {
        setAside(file.errorString());
        return;
    }
    const QByteArray text = file.read(largestStateFile + 1);
    if (text.size() > largestStateFile) {
        setAside(QStringLiteral("too large"));
        return;
    }
    QString complaint;
    if (const std::optional<StateValues> values = stateFromText(text, &complaint))
        m_values = *values;
    else
        setAside(complaint);
}

QVariant StateStore::value(Value value) const
{
    return m_values.at(static_cast<size_t>(value));
}

QString StateStore::change(Value value, const QVariant &newValue)
{
    StateValues values = m_values;
    values.at(static_cast<size_t>(value)) = newValue;
    const QString failure = write(values);
    if (failure.isEmpty())
        m_values = values;
    return failure;
}

QString StateStore::write(const StateValues &values) const
{
    if (!QDir().mkpath(m_directory))
        return QStringLiteral("the folder %1 cannot be created").arg(m_directory);

    QSaveFile file(m_path);
    const QByteArray text = stateToText(values);
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush();
    // QSaveFile syncs as well, but does not tell when that fails.
    if (isWritten && ::fsync(file.handle()) != 0)
        return QStringLiteral("%1: %2").arg(m_path, qt_error_string(errno));
    if (!isWritten || !file.commit())
        return QStringLiteral("%1: %2").arg(m_path, file.errorString());
    if (!syncDirectory(m_directory))
        return QStringLiteral("%1: %2").arg(m_directory, qt_error_string(errno));
    return {};
}

// A device that damages the file at every power cut must not fill its disk with them.
constexpr int mostSetAside = 5;

void StateStore::setAside(const QString &complaint) const
{
    int number = 1;
    const auto freePath = [this, &number] { return m_path + QStringLiteral(".damaged-%1").arg(number); };
    while (QFileInfo::exists(freePath()) && number < mostSetAside)
        ++number;
    QFile::remove(freePath());
    const QString place = QFile::rename(m_path, freePath()) ? QStringLiteral("set aside as ") + freePath()
                                                            : QStringLiteral("could not be set aside");
    qWarning().noquote() << "state file" << m_path << "is not usable," << complaint + QStringLiteral(";")
                         << place;
}
