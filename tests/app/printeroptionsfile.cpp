// Reads the lpoptions file without CUPS, and the presets as a new object lists them.
#include "printeroptionsfile.h"

#include <preset.h>
#include <presetlist.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

QString folder()
{
    // Never the home of the user who runs the test by hand.
    if (!qEnvironmentVariableIsSet("ZBVIRTUALDEVICE_DIRECTORY"))
        qFatal("This test runs in a virtual device only: zbvirtualdevice --without-daemon -- %s",
               qPrintable(QCoreApplication::applicationFilePath()));
    return QDir::homePath() + QStringLiteral("/.cups");
}

QString presetFolder()
{
    return folder() + QStringLiteral("/Presets");
}

bool makeFile(const QString &name, const QByteArray &content = {})
{
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QList<QByteArray> words()
{
    QFile file(folder() + QStringLiteral("/lpoptions"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    for (const QByteArray &line : file.readAll().split('\n')) {
        const QList<QByteArray> found = line.split(' ');
        if (found.size() > 1 && found.at(1) == "BrackenXL")
            return found.mid(2);
    }
    return {};
}

} // namespace

void PrinterOptionsFile::hideThoseOfTheMachine()
{
    qputenv("CUPS_SERVERROOT", folder().toLocal8Bit() + "/none");
}

void PrinterOptionsFile::removeAll()
{
    for (const QString &each : {folder(), presetFolder()})
        QFile::setPermissions(each, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QDir(folder()).removeRecursively();
}

bool PrinterOptionsFile::blockOptions()
{
    const QString next = folder() + QStringLiteral("/lpoptions.new");
    return QDir().mkpath(next) && makeFile(next + QStringLiteral("/file"));
}

bool PrinterOptionsFile::makePresetsReadOnly()
{
    return QFile::setPermissions(presetFolder(), QFile::ReadOwner | QFile::ExeOwner);
}

bool PrinterOptionsFile::blockPresets()
{
    return QDir().mkpath(folder()) && QDir(presetFolder()).removeRecursively() && makeFile(presetFolder());
}

bool PrinterOptionsFile::closePresets()
{
    return QFile::setPermissions(presetFolder(), {});
}

bool PrinterOptionsFile::closeFolderAbovePresets()
{
    return QFile::setPermissions(folder(), {});
}

bool PrinterOptionsFile::addPresetOfNewerFormat()
{
    return makeFile(presetFolder() + QStringLiteral("/Newer_p"), "Corvanta preset, format 2\n");
}

bool PrinterOptionsFile::write(const QByteArray &options)
{
    QFile file(folder() + QStringLiteral("/lpoptions"));
    const QByteArray line = "Dest BrackenXL " + options + '\n';
    return QDir().mkpath(folder()) && file.open(QIODevice::WriteOnly) && file.write(line) == line.size();
}

QByteArray PrinterOptionsFile::value(const QByteArray &option)
{
    for (const QByteArray &word : words()) {
        if (word.startsWith(option + '='))
            return word.mid(option.size() + 1);
    }
    return QByteArray();
}

int PrinterOptionsFile::count()
{
    return words().size();
}

void PrinterOptionsFile::addPreset(const QString &name, const QStringList &options)
{
    PresetList list(QStringLiteral("BrackenXL"), true);
    list.addPreset(new Preset(QStringLiteral("BrackenXL"), name + QStringLiteral("_p"),
                              static_cast<Preset::_State>(2), options, name, QString(),
                              list.applyLastPresetIndex()));
    list.save(list.getPredefinedPresetNames());
}

QStringList PrinterOptionsFile::presets()
{
    return PresetList(QStringLiteral("BrackenXL"), true).getUserPresetNames();
}

PrinterOptionsFile::HungProgram::HungProgram()
    : m_folder(::open(QFile::encodeName(presetFolder()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    , m_isHolding(m_folder >= 0 && ::flock(m_folder, LOCK_EX | LOCK_NB) == 0)
{
}

PrinterOptionsFile::HungProgram::~HungProgram()
{
    if (m_folder >= 0)
        ::close(m_folder);
}
