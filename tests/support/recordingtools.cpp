// Lays out the folder of the recording tools, and reads what they note.
#include "recordingtools.h"

#include "filebytes.h"
#include "recordingtoolfiles.h"

#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QTimer>

#include <algorithm>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

constexpr int patienceMilliseconds = 10000;

qint64 largestProcessId()
{
    const QByteArray text = FileBytes::read(QStringLiteral("/proc/sys/kernel/pid_max"));
    return text.isNull() ? 32768 : text.trimmed().toLongLong();
}

/// Process ids are given out in ascending order until they start again from below.
bool isStartedBefore(const RecordingTools::Run &one, const RecordingTools::Run &other)
{
    const qint64 distance = other.processId - one.processId;
    return distance != 0 && (distance > 0) == (qAbs(distance) < largestProcessId() / 2);
}

} // namespace

QByteArray RecordingTools::print()
{
    return "print";
}

QByteArray RecordingTools::printForever()
{
    return "printforever";
}

QByteArray RecordingTools::complain(int bytes)
{
    return "complain " + QByteArray::number(bytes);
}

QByteArray RecordingTools::pauseFor(int milliseconds)
{
    return "pause " + QByteArray::number(milliseconds);
}

QByteArray RecordingTools::closeOutput()
{
    return "closeoutput";
}

QByteArray RecordingTools::stay()
{
    return "stay";
}

QByteArray RecordingTools::exitWith(int status)
{
    return "exit " + QByteArray::number(status);
}

QByteArray RecordingTools::crash()
{
    return "crash";
}

RecordingTools::RecordingTools()
    : m_searchPath(qgetenv("PATH"))
{
    using namespace RecordingToolFiles;
    m_isReady = m_folder.isValid();
    for (const char *const folder : {toolFolder, recordFolder, partFolder, stepsFolder, outputFolder})
        m_isReady = m_isReady && QDir().mkpath(path(folder));
    for (const char *const program : {"timedatectl", "fw_printenv", "fw_setenv", "df", "cat", "lp"}) {
        m_isReady = m_isReady
            && QFile::link(QStringLiteral(ZB_RECORDING_TOOL), path(toolFolder, QLatin1String(program)));
    }
    m_isReady = m_isReady && FileBytes::write(path(holdFile), {});
    m_hold = ::open(QFile::encodeName(path(holdFile)).constData(), O_RDONLY | O_CLOEXEC);
    m_isReady = m_isReady && m_hold >= 0 && ::flock(m_hold, LOCK_EX) == 0;
    qputenv("PATH", QFile::encodeName(path(toolFolder)));
    qputenv(folderVariable, QFile::encodeName(m_folder.path()));
}

RecordingTools::~RecordingTools()
{
    letGo();
    qputenv("PATH", m_searchPath);
    qunsetenv(RecordingToolFiles::folderVariable);
}

bool RecordingTools::isReady() const
{
    return m_isReady;
}

QString RecordingTools::path(const char *folder, const QString &name) const
{
    return m_folder.path() + QLatin1String(folder) + name;
}

void RecordingTools::setSteps(const QString &program, const Steps &steps)
{
    m_isReady =
        FileBytes::write(path(RecordingToolFiles::stepsFolder, program), steps.join('\n')) && m_isReady;
}

void RecordingTools::setOutput(const QString &program, const QByteArray &output)
{
    setOutput(program, output, {print()});
}

void RecordingTools::setOutput(const QString &program, const QByteArray &output, const Steps &steps)
{
    m_isReady = FileBytes::write(path(RecordingToolFiles::outputFolder, program), output) && m_isReady;
    setSteps(program, steps);
}

void RecordingTools::remove(const QString &program)
{
    m_isReady = QFile::remove(path(RecordingToolFiles::toolFolder, program)) && m_isReady;
}

void RecordingTools::breakProgram(const QString &program)
{
    remove(program);
    const QString file = path(RecordingToolFiles::toolFolder, program);
    m_isReady = FileBytes::write(file, "no program") && m_isReady
        && QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QVector<RecordingTools::Run> RecordingTools::runs() const
{
    QVector<Run> result;
    const QDir records(path(RecordingToolFiles::recordFolder));
    const QStringList names = records.entryList(QDir::Files);
    for (const QString &name : names) {
        const QByteArray record = FileBytes::read(records.filePath(name));
        if (record.isNull())
            continue;
        QList<QByteArray> fields = record.split('\0');
        fields.removeLast();
        Run run{QString::fromLocal8Bit(fields.takeFirst()),
                {},
                fields.takeFirst().toLongLong(),
                fields.takeFirst(),
                fields.takeFirst()};
        for (const QByteArray &argument : qAsConst(fields))
            run.arguments.append(QString::fromLocal8Bit(argument));
        result.append(run);
    }
    std::sort(result.begin(), result.end(), isStartedBefore);
    return result;
}

QList<QStringList> RecordingTools::commands() const
{
    QList<QStringList> result;
    const QVector<Run> all = runs();
    for (const Run &run : all)
        result.append(QStringList{run.program} + run.arguments);
    return result;
}

bool RecordingTools::waitForRuns(int count)
{
    const auto isReached = [this, count] {
        return QDir(path(RecordingToolFiles::recordFolder)).entryList(QDir::Files).size() >= count;
    };
    QEventLoop loop;
    QFileSystemWatcher watcher({path(RecordingToolFiles::recordFolder)});
    QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, &loop, [&] {
        if (isReached())
            loop.quit();
    });
    QTimer patience;
    patience.setSingleShot(true);
    QObject::connect(&patience, &QTimer::timeout, &loop, [&loop] { loop.exit(1); });
    patience.start(patienceMilliseconds);
    return isReached() || loop.exec() == 0;
}

void RecordingTools::clear()
{
    QDir records(path(RecordingToolFiles::recordFolder));
    const QStringList names = records.entryList(QDir::Files);
    for (const QString &name : names)
        records.remove(name);
}

void RecordingTools::letGo()
{
    if (m_hold >= 0)
        ::close(m_hold);
    m_hold = -1;
}
