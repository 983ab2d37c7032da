// The presets folder: which presets are in it, in which order, and which one is current.
#pragma once

#include "folderfiles.h"
#include "presettext.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <optional>

/// A preset with the name of its file.
struct StoredPreset
{
    QString fileName;
    PresetRecord record;
};

/// What the folder holds for one printer model.
struct PresetFolderContent
{
    QVector<StoredPreset> presets; ///< in their order
    std::optional<PresetOrder> order; ///< as it was written last; nothing when it never was
    bool isOrderKept = true; ///< whether the order can be written; not one that only a newer version reads
    QStringList unread; ///< names of files that stay although no preset could be read from them
    QStringList setAside; ///< names that damaged files had
    QStringList complaints; ///< one line for the log each
};

/**
 * The presets of \a modelName in the folder \a path, open as long as the object lives.
 *
 * Functions that return an int return 0, or the errno value with which they failed.
 */
class PresetFolder
{
public:
    /// Waits at most \a patience milliseconds for the lock.
    PresetFolder(const QString &path, const QString &modelName, FolderFiles::Opening opening, int patience);

    int error() const { return m_files.error(); }

    /**
     * All presets that can be read, in the order that was written. Damaged files are renamed to
     * "*.damaged" when the folder is locked. Files of another model, of a newer format, and those that cannot
     * be opened stay as they are.
     */
    int read(PresetFolderContent *content);
    /// Puts \a record into a new file, named after \a wish; \a fileName becomes the file's name.
    int add(const QString &wish, const PresetRecord &record, QString *fileName);
    int remove(const QString &fileName) { return m_files.remove(fileName); }
    /// Reads the order without the presets into \a content, which has none so far.
    void readOrder(PresetFolderContent *content);
    /// Writes \a order, unless it is there already. Not for an order that is not kept.
    int writeOrder(const PresetOrder &order);
    int sync() const { return m_files.sync(); }
    bool hasChanged() const { return m_files.hasChanged(); }

private:
    void readPreset(const QString &fileName, PresetFolderContent *content);
    void setAside(const QString &fileName, PresetFolderContent *content);
    QString pathOf(const QString &fileName) const;

    const QString m_path;
    const QString m_modelName;
    FolderFiles m_files;
};
