// Chooses the tool by the document's first bytes, runs it with limits, and looks at what it wrote.
#include "picturemaker.h"

#include "limitedprocess.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QThread>
#include <QtCore/QtEndian>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int mostMilliseconds = 10000;
constexpr int longestRest = 60000;
/// With less room a picture may have failed for want of it.
constexpr off_t enoughRoom = 1024 * 1024;

struct Tool
{
    QString program;
    QStringList arguments; ///< by which it reads standard input and writes PNG to standard output
};

Tool pdfTool()
{
    return {QStringLiteral("/usr/bin/pdftoppm"),
            {QStringLiteral("-png"), QStringLiteral("-singlefile"), QStringLiteral("-f"), QStringLiteral("1"),
             QStringLiteral("-l"), QStringLiteral("1"), QStringLiteral("-scale-to"),
             QString::number(PictureMaker::longestSide), QStringLiteral("-")}};
}

// The format is said, since it is also what chooses one of the tool's many readers.
Tool rasterTool(const QString &format)
{
    const QString size = QStringLiteral("%1x%1").arg(PictureMaker::longestSide);
    return {QStringLiteral("/usr/bin/gm"),
            {QStringLiteral("convert"), QStringLiteral("-limit"), QStringLiteral("pixels"),
             QStringLiteral("40MP"), QStringLiteral("-limit"), QStringLiteral("disk"), QStringLiteral("0"),
             QStringLiteral("-size"), size, format + QStringLiteral(":-"), QStringLiteral("-auto-orient"),
             QStringLiteral("-thumbnail"), size + QLatin1Char('>'), QStringLiteral("png:-")}};
}

Tool toolFor(const QString &documentPath)
{
    QFile document(documentPath);
    const QByteArray beginning = document.open(QIODevice::ReadOnly) ? document.read(1024) : QByteArray();
    if (beginning.startsWith("\x89PNG\r\n\x1a\n"))
        return rasterTool(QStringLiteral("png"));
    if (beginning.startsWith("\xff\xd8\xff"))
        return rasterTool(QStringLiteral("jpeg"));
    // Printer commands may stand before it.
    if (beginning.contains("%PDF-"))
        return pdfTool();
    return {};
}

// A PNG file within the bounds (https://www.w3.org/TR/png/#11IHDR): what a program of the application
// decodes.
bool isSmallPicture(const QString &path)
{
    constexpr int widthOffset = 16;
    constexpr int heightOffset = 20;
    constexpr int headerSize = 24;
    QFile file(path);
    const QByteArray header = file.open(QIODevice::ReadOnly) ? file.read(headerSize) : QByteArray();
    if (header.size() != headerSize || !header.startsWith("\x89PNG\r\n\x1a\n"))
        return false;
    const auto width = qFromBigEndian<quint32>(header.constData() + widthOffset);
    const auto height = qFromBigEndian<quint32>(header.constData() + heightOffset);
    return width > 0 && height > 0 && width <= quint32(PictureMaker::longestSide)
        && height <= quint32(PictureMaker::longestSide);
}

} // namespace

PictureMaker::PictureMaker(QObject *parent)
    : QObject(parent)
    , m_limit(this)
    , m_rest(this)
{
    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, [this] {
        if (m_tool)
            m_tool->kill();
    });
    m_rest.setSingleShot(true);
    connect(&m_rest, &QTimer::timeout, this, [this] { begin(m_work); });
}

PictureMaker::~PictureMaker()
{
    if (!m_tool)
        return;
    delete m_tool;
    if (m_sync)
        m_sync->wait();
    QFile::remove(m_work.picturePath + QLatin1String(".new"));
}

void PictureMaker::make(const QString &guid, const QString &documentPath, const QString &picturePath)
{
    const Work work = {guid, documentPath, picturePath};
    if (m_waiting.size() >= mostWaiting) {
        answer(work, QStringLiteral("too many pictures wait to be made"));
        return;
    }
    m_waiting.enqueue(work);
    if (!m_tool && !m_rest.isActive())
        QMetaObject::invokeMethod(this, &PictureMaker::next, Qt::QueuedConnection);
}

void PictureMaker::next()
{
    if (!m_tool && !m_rest.isActive() && !m_waiting.isEmpty())
        begin(m_waiting.dequeue());
}

void PictureMaker::begin(const Work &work)
{
    const Tool tool = toolFor(work.documentPath);
    if (tool.program.isEmpty()) {
        answer(work, QStringLiteral("there are no pictures of such documents"));
        QMetaObject::invokeMethod(this, &PictureMaker::next, Qt::QueuedConnection);
        return;
    }
    m_work = work;
    m_tool = new LimitedProcess(this);
    connect(m_tool, &LimitedProcess::finished, this, [this] { end(takePicture()); });
    if (!m_tool->start(tool.program, tool.arguments, work.documentPath,
                       work.picturePath + QLatin1String(".new"))) {
        // As if it had run, so that whoever asked is answered from the event loop.
        QMetaObject::invokeMethod(
            m_tool, [this] { end(QStringLiteral("%1 cannot be run").arg(m_tool->program())); },
            Qt::QueuedConnection);
        return;
    }
    m_limit.start(mostMilliseconds);
}

// The reason why there is no picture; empty when there is one.
QString PictureMaker::takePicture()
{
    const QString written = m_work.picturePath + QLatin1String(".new");
    if (m_tool->hasCrashed())
        return m_limit.isActive() ? QStringLiteral("%1 crashed").arg(m_tool->program())
                                  : QStringLiteral("%1 takes too long").arg(m_tool->program());
    constexpr int noProgram = 127;
    if (m_tool->exitCode() == noProgram)
        return QStringLiteral("%1 cannot be run").arg(m_tool->program());
    if (m_tool->exitCode() != 0 || !isSmallPicture(written))
        return QStringLiteral("%1 makes no picture of it").arg(m_tool->program());
    if (std::rename(QFile::encodeName(written).constData(), QFile::encodeName(m_work.picturePath).constData())
        != 0)
        return QStringLiteral("the picture cannot be kept");
    return {};
}

void PictureMaker::end(const QString &reason)
{
    m_limit.stop();
    if (reason.isEmpty())
        syncFolder();
    else
        finish(reason);
}

// By a thread of its own, for the same reason for which the tool writes through.
void PictureMaker::syncFolder()
{
    const QByteArray path = QFile::encodeName(QFileInfo(m_work.picturePath).path());
    m_sync.reset(QThread::create([path] {
        const int folder = ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder < 0)
            return;
        // Where the disk fails at this, the picture is there all the same, as long as there is power.
        fsync(folder);
        ::close(folder);
    }));
    connect(m_sync.get(), &QThread::finished, this, [this] { finish({}); });
    m_sync->start();
}

void PictureMaker::finish(const QString &reason)
{
    m_tool->disconnect(this);
    m_tool->deleteLater();
    m_tool = nullptr;
    if (!reason.isEmpty())
        QFile::remove(m_work.picturePath + QLatin1String(".new"));
    if (!reason.isEmpty() && !hasRoom() && ++m_work.tries < mostTries) {
        tryAgainLater();
        return;
    }
    answer(m_work, reason);
    QMetaObject::invokeMethod(this, &PictureMaker::next, Qt::QueuedConnection);
}

// A tool does not tell why it did not write; another file of that size is a way to find out.
bool PictureMaker::hasRoom() const
{
    const QByteArray path = QFile::encodeName(m_work.picturePath + QLatin1String(".new"));
    const int file =
        ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    const int error = file < 0 ? errno : posix_fallocate(file, 0, enoughRoom);
    if (file >= 0) {
        ::close(file);
        unlink(path.constData());
    }
    return error != ENOSPC && error != EDQUOT && error != EIO;
}

void PictureMaker::tryAgainLater()
{
    qint64 rest = m_firstRest;
    for (int count = 1; count < m_work.tries && rest < longestRest; ++count)
        rest *= 2;
    m_rest.start(int(qMin<qint64>(rest, longestRest)));
}

void PictureMaker::answer(const Work &work, const QString &reason)
{
    QMetaObject::invokeMethod(
        this,
        [this, work, reason] {
            if (reason.isEmpty())
                Q_EMIT made(work.guid, work.picturePath);
            else
                Q_EMIT notMade(work.guid, reason);
        },
        Qt::QueuedConnection);
}
