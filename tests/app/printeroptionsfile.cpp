// Reads the lpoptions file without CUPS, and the presets as a new object lists them.
#include "printeroptionsfile.h"

#include <presetlist.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace {

QString folder()
{
    return QDir::homePath() + QStringLiteral("/.cups");
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

void PrinterOptionsFile::removeAll()
{
    qputenv("CUPS_SERVERROOT", folder().toLocal8Bit() + "/none");
    QDir(folder()).removeRecursively();
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

QStringList PrinterOptionsFile::presets()
{
    return PresetList(QStringLiteral("BrackenXL"), true).getUserPresetNames();
}
