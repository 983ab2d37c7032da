// Hands pure functions to QML.
#include "qmlfunctions.h"

#include "layoutcode.h"
#include "listsearch.h"
#include "tooloutput.h"

namespace {

// The list is fixed while the process lives.
const QStringList &codes()
{
    static const QStringList list = layoutCodes();
    return list;
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

QVariantList ListSearch::positions(const QStringList &names, const QString &text) const
{
    QVariantList list;
    for (const int position : matchingPositions(names, text))
        list += position;
    return list;
}
