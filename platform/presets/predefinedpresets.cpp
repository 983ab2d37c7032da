// The fixed options, and the maker's file.
#include "predefinedpresets.h"

#include "folderfiles.h"

#include <QtCore/QFileInfo>

#include <cerrno>

namespace {

QStringList defaultOptions()
{
    return {QStringLiteral("orientation-requested"), QStringLiteral("5"), QStringLiteral("copies"),
            QStringLiteral("1")};
}

/// Why the file cannot be used, empty when it can or when there is none.
QString readSystemPreset(const QString &path, const QString &modelName, QStringList *options)
{
    const QFileInfo file(path);
    const FolderFiles folder(file.path(), FolderFiles::Opening::Existing, 0);
    QByteArray text;
    const int error = folder.error() != 0 ? folder.error() : folder.read(file.fileName(), &text);
    if (error == ENOENT)
        return {};
    if (error != 0)
        return qt_error_string(error);
    PresetRecord record;
    if (readPresetText(text, &record) != PresetTextKind::Readable)
        return QStringLiteral("it is damaged or no preset");
    if (record.modelName != modelName)
        return QStringLiteral("it is for the model %1").arg(record.modelName);
    *options = record.options;
    return {};
}

} // namespace

QVector<PresetRecord> predefinedPresets(const QString &modelName, const QString &systemPreset,
                                        QStringList *complaints)
{
    QStringList systemOptions = defaultOptions();
    const QString complaint = readSystemPreset(systemPreset, modelName, &systemOptions);
    if (!complaint.isEmpty())
        complaints->append(QStringLiteral("cannot use %1: %2").arg(systemPreset, complaint));
    return {{modelName, QStringLiteral("<Current Settings>"), {}, 0, {}},
            {modelName, QStringLiteral("<System Settings>"), {}, 0, systemOptions},
            {modelName, QStringLiteral("<Default Settings>"), {}, 0, defaultOptions()}};
}
