// Sets HOME, and looks at files.
#include "presethome.h"

#include "filebytes.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace {

// A disk in memory, where there is one: how long a disk takes to sync is not what the tests are about, and it
// depends on what else the machine does.
QString temporaryTemplate()
{
    const QFileInfo memory(QStringLiteral("/dev/shm"));
    return (memory.isDir() && memory.isWritable() ? memory.filePath() : QDir::tempPath())
        + QStringLiteral("/presethome-XXXXXX");
}

} // namespace

PresetHome::PresetHome()
    : m_home(temporaryTemplate())
    , m_before(qgetenv("HOME"))
{
    qputenv("HOME", m_home.path().toLocal8Bit());
}

PresetHome::~PresetHome()
{
    qputenv("HOME", m_before);
}

QStringList PresetHome::names() const
{
    return QDir(folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                    QDir::Name);
}

QByteArray PresetHome::content(const char *name) const
{
    return FileBytes::read(folder() + QString::fromUtf8(name));
}

bool PresetHome::write(const char *name, const QByteArray &content) const
{
    return QDir().mkpath(folder()) && FileBytes::write(folder() + QString::fromUtf8(name), content);
}

bool PresetHome::remove(const char *name) const
{
    return QFile::remove(folder() + QString::fromUtf8(name));
}

QByteArray presetFile(const QByteArray &name, int index, const QByteArray &option)
{
    return "Corvanta preset, format 1\nmodel: BrackenXL\nname: " + name
        + "\nindex: " + QByteArray::number(index) + "\n\n[options]\n" + option + "\n\n[end]\n";
}
