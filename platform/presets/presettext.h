// A preset as the text of its file, and the order of the presets likewise. Text in, text out.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

/// What the file of a preset holds.
struct PresetRecord
{
    QString modelName;
    QString displayName;
    QString description;
    int index = 0;
    QStringList options; ///< key, value, key, value; the last value may be missing
};

bool operator==(const PresetRecord &left, const PresetRecord &right);

/// What the file beside the presets holds.
struct PresetOrder
{
    struct Entry
    {
        QString fileName;
        QString displayName; ///< for people; the preset's own file counts
    };

    QString modelName;
    QVector<Entry> entries;
    QString current; ///< file name, or display name of a predefined preset; empty when none is current
    bool currentIsPredefined = false;
};

enum class PresetTextKind {
    Readable,
    Newer, ///< begins as a file of this kind, but in a format that comes after this one
    Damaged ///< anything else
};

/// The text of a preset's file: UTF-8, whatever characters and line ends the record holds. Reading it gives
/// the same record.
QByteArray presetText(const PresetRecord &record);
/// What \a text is. When it is readable, \a record becomes what it holds.
PresetTextKind readPresetText(const QByteArray &text, PresetRecord *record);

/// The same for the order of the presets.
QByteArray presetOrderText(const PresetOrder &order);
PresetTextKind readPresetOrderText(const QByteArray &text, PresetOrder *order);
