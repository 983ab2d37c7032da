// Reads what is in the folder and sorts it, and gives new files their names.
#include "presetfolder.h"

#include "presetfilename.h"

#include <QtCore/QHash>

#include <algorithm>
#include <cerrno>

namespace {

QString reasonOf(int error)
{
    return qt_error_string(error);
}

// A symbolic link, a pipe or something else that no file of ours is, and what is too large for one.
bool isOfAnotherKind(int error)
{
    return error == ELOOP || error == EINVAL || error == EFBIG || error == ENXIO;
}

// By the order's entries; what it does not name comes behind them, by index and then by file name, as which
// the presets come here.
void sortBy(const PresetOrder &order, QVector<StoredPreset> *presets)
{
    QHash<QString, int> places;
    for (int i = 0; i < order.entries.size(); ++i)
        places.insert(order.entries.at(i).fileName, i);
    const int behind = order.entries.size();
    std::stable_sort(presets->begin(), presets->end(),
                     [&places, behind](const StoredPreset &left, const StoredPreset &right) {
                         const int leftPlace = places.value(left.fileName, behind);
                         const int rightPlace = places.value(right.fileName, behind);
                         if (leftPlace != rightPlace || leftPlace != behind)
                             return leftPlace < rightPlace;
                         return left.record.index < right.record.index;
                     });
}

} // namespace

PresetFolder::PresetFolder(const QString &path, const QString &modelName, FolderFiles::Opening opening,
                           int patience)
    : m_path(path)
    , m_modelName(modelName)
    , m_files(path, opening, patience)
{
}

int PresetFolder::read(PresetFolderContent *content)
{
    *content = {};
    QStringList names;
    if (const int error = m_files.list(&names))
        return error;
    for (const QString &name : qAsConst(names)) {
        if (mayBePresetFile(name))
            readPreset(name, content);
    }
    readOrder(content);
    sortBy(content->order.value_or(PresetOrder()), &content->presets);
    for (const PresetOrder::Entry &entry : content->order.value_or(PresetOrder()).entries) {
        if (!std::binary_search(names.cbegin(), names.cend(), entry.fileName))
            content->complaints.append(QStringLiteral("%1 is gone").arg(pathOf(entry.fileName)));
    }
    return 0;
}

void PresetFolder::readPreset(const QString &fileName, PresetFolderContent *content)
{
    QByteArray text;
    const int error = m_files.read(fileName, &text);
    // Another process took it away meanwhile.
    if (error == ENOENT)
        return;
    if (isOfAnotherKind(error))
        return setAside(fileName, content);
    if (error != 0) {
        content->unread.append(fileName);
        content->complaints.append(
            QStringLiteral("cannot read %1: %2").arg(pathOf(fileName), reasonOf(error)));
        return;
    }
    StoredPreset preset{fileName, {}};
    switch (readPresetText(text, &preset.record)) {
    case PresetTextKind::Readable:
        if (preset.record.modelName == m_modelName)
            content->presets.append(preset);
        break;
    case PresetTextKind::Newer:
        content->unread.append(fileName);
        content->complaints.append(
            QStringLiteral("%1 has a newer format and is left alone").arg(pathOf(fileName)));
        break;
    case PresetTextKind::Damaged:
        setAside(fileName, content);
    }
}

void PresetFolder::readOrder(PresetFolderContent *content)
{
    const QString name = presetOrderFileName(m_modelName);
    QByteArray text;
    const int error = m_files.read(name, &text);
    if (error == ENOENT)
        return;
    if (error != 0 && !isOfAnotherKind(error)) {
        content->isOrderKept = false;
        content->complaints.append(QStringLiteral("cannot read %1: %2").arg(pathOf(name), reasonOf(error)));
        return;
    }
    PresetOrder order;
    switch (error != 0 ? PresetTextKind::Damaged : readPresetOrderText(text, &order)) {
    case PresetTextKind::Readable:
        content->order = order;
        break;
    case PresetTextKind::Newer:
        content->isOrderKept = false;
        content->complaints.append(
            QStringLiteral("%1 has a newer format and is left alone").arg(pathOf(name)));
        break;
    case PresetTextKind::Damaged:
        setAside(name, content);
    }
}

void PresetFolder::setAside(const QString &fileName, PresetFolderContent *content)
{
    if (!m_files.isLocked()) {
        content->unread.append(fileName);
        content->complaints.append(QStringLiteral("%1 is damaged or no preset").arg(pathOf(fileName)));
        return;
    }
    int error = EEXIST;
    QString newName;
    for (int number = 1; error == EEXIST; ++number) {
        newName = damagedFileName(fileName, number);
        error = m_files.rename(fileName, newName);
    }
    if (error == ENOENT)
        return;
    content->setAside.append(fileName);
    content->complaints.append(
        error == 0 ? QStringLiteral("%1 is damaged or no preset and is now %2").arg(pathOf(fileName), newName)
                   : QStringLiteral("%1 is damaged or no preset and cannot be set aside: %2")
                         .arg(pathOf(fileName), reasonOf(error)));
}

int PresetFolder::add(const QString &wish, const PresetRecord &record, QString *fileName)
{
    if (const int error = m_files.prepare(presetText(record)))
        return error;
    int error = EEXIST;
    for (int number = 1; error == EEXIST; ++number) {
        *fileName = presetFileName(wish, number);
        error = m_files.rename(unfinishedFileName(), *fileName);
    }
    if (error != 0)
        m_files.remove(unfinishedFileName());
    return error;
}

int PresetFolder::writeOrder(const PresetOrder &order)
{
    const QString name = presetOrderFileName(m_modelName);
    const QByteArray text = presetOrderText(order);
    QByteArray present;
    if (m_files.read(name, &present) == 0 && present == text)
        return 0;
    return m_files.replace(name, text);
}

QString PresetFolder::pathOf(const QString &fileName) const
{
    return m_path + fileName;
}
