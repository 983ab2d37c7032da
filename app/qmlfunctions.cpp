// Hands functions to QML, with the files that some of them need.
#include "qmlfunctions.h"

#include "layoutcode.h"
#include "listsearch.h"
#include "presetname.h"
#include "tooloutput.h"

#include <cupssupport.h>
#include <presetlist.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace {

// The list is fixed while the process lives.
const QStringList &codes()
{
    static const QStringList list = layoutCodes();
    return list;
}

bool canBeRead(const QFileInfo &folder)
{
    return folder.isDir() && folder.isReadable() && folder.isExecutable();
}

/// The list of presets is empty then, as it is where nothing was saved.
bool arePresetsOutOfReach()
{
    const QFileInfo presets(QDir::homePath() + QStringLiteral("/.cups/Presets"));
    const QFileInfo above(presets.path());
    // Without the right to enter the folder above, this one does not seem to exist.
    return (above.exists() && !above.isExecutable()) || (presets.exists() && !canBeRead(presets));
}

} // namespace

QVariantList ToolOutput::storageRows(const QString &table) const
{
    QVariantList rows;
    for (const StorageRow &row : ::storageRows(table)) {
        rows += QVariantMap{{QStringLiteral("fileSystem"), row.fileSystem},
                            {QStringLiteral("size"), row.size},
                            {QStringLiteral("used"), row.used},
                            {QStringLiteral("available"), row.available},
                            {QStringLiteral("mountPoint"), row.mountPoint},
                            {QStringLiteral("usedPercent"), row.usedPercent}};
    }
    return rows;
}

QStringList ToolOutput::valueLines(const QString &output, int count) const
{
    return ::valueLines(output, count);
}

QStringList ToolOutput::offsetValues(const QString &line, int count) const
{
    return ::offsetValues(line, count);
}

QString KeyboardLayouts::codeAt(int position) const
{
    return codes().value(position);
}

int KeyboardLayouts::positionOf(const QString &code) const
{
    return code.isEmpty() ? -1 : codes().indexOf(code);
}

bool KeyboardLayouts::isWritten(const QString &code) const
{
    QFile file(QStringLiteral("/etc/corvanta/wayland.env"));
    // Anything else, such as a pipe, could keep the page waiting.
    return QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly)
        && layoutInEnvironment(QString::fromUtf8(file.readAll())) == code;
}

QVariantList ListSearch::positions(const QStringList &names, const QString &text) const
{
    QVariantList list;
    for (const int position : matchingPositions(names, text))
        list += position;
    return list;
}

QString PresetNames::visibleName(const QString &text) const
{
    return ::visibleName(text);
}

QString PresetNames::shortened(const QString &text, int characters) const
{
    return ::shortened(text, characters);
}

int PrinterFiles::presetsNamed(const QString &name) const
{
    if (arePresetsOutOfReach())
        return -1;
    return PresetList(QStringLiteral("BrackenXL"), true).getUserPresetNames().count(name);
}

QVariantMap PrinterFiles::options() const
{
    const CupsSupport stored;
    return {{QStringLiteral("orientationEnum"), int(stored.getOrientation())},
            {QStringLiteral("cutEnum"), stored.getCut()},
            {QStringLiteral("mirror"), stored.getMirror()},
            {QStringLiteral("negative"), stored.getInverse()},
            {QStringLiteral("overprint"), stored.getOverprint()},
            {QStringLiteral("whitebase"), stored.getWhiteBase()},
            {QStringLiteral("horizontal1Offset"), stored.getOffsetH1()},
            {QStringLiteral("horizontal2Offset"), stored.getOffsetH2()},
            {QStringLiteral("vertical1Offset"), stored.getOffsetV1()},
            {QStringLiteral("vertical2Offset"), stored.getOffsetV2()},
            {QStringLiteral("feedOffset"), stored.getFeed()},
            {QStringLiteral("backfeedOffset"), stored.getStop()},
            {QStringLiteral("head1HeatOffset"), stored.getColorHeadOffset(1)},
            {QStringLiteral("head2HeatOffset"), stored.getColorHeadOffset(2)},
            {QStringLiteral("r1Tension"), stored.getR1Tension()},
            {QStringLiteral("r2Tension"), stored.getR2Tension()}};
}
