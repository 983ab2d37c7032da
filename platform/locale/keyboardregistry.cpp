// The keyboard layouts that the system's XKB data offer, as libxkbregistry reads them.
#include "keyboardregistry.h"

#include <QtCore/QHash>
#include <QtCore/QPair>

#include <xkbcommon/xkbregistry.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

namespace {

constexpr char ruleset[] = "evdev";

struct ReleaseContext
{
    void operator()(rxkb_context *context) const { rxkb_context_unref(context); }
};

QByteArray folderFrom(const char *variable, const char *otherwise)
{
    const QByteArray value = qgetenv(variable);
    return value.isEmpty() ? QByteArray(otherwise) : value;
}

// Not isalnum(): that follows the locale of the process.
bool isPlainName(const QByteArray &name)
{
    return std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_'
            || c == '-' || c == '/';
    });
}

bool isReadableFile(const QByteArray &path)
{
    struct stat status = {};
    return stat(path.constData(), &status) == 0 && S_ISREG(status.st_mode)
        && access(path.constData(), R_OK) == 0;
}

QVector<KeyboardEntry> entriesIn(const QByteArray &folder)
{
    const std::unique_ptr<rxkb_context, ReleaseContext> context(
        rxkb_context_new(RXKB_CONTEXT_NO_DEFAULT_INCLUDES));
    if (!context)
        return {};
    // What is wrong with a file is for whoever calls to say, once.
    rxkb_context_set_log_level(context.get(), RXKB_LOG_LEVEL_CRITICAL);
    rxkb_context_include_path_append(context.get(), folder.constData());
    if (!rxkb_context_parse(context.get(), ruleset))
        return {};

    QVector<KeyboardEntry> entries;
    for (rxkb_layout *layout = rxkb_layout_first(context.get()); layout; layout = rxkb_layout_next(layout)) {
        entries.append({rxkb_layout_get_name(layout), rxkb_layout_get_variant(layout),
                        rxkb_layout_get_brief(layout), rxkb_layout_get_description(layout)});
    }
    return entries;
}

void fillWhenEmpty(QByteArray &text, const QByteArray &otherwise)
{
    if (text.isEmpty())
        text = otherwise;
}

using EntryName = QPair<QByteArray, QByteArray>;

} // namespace

QByteArrayList xkbFolders()
{
    return {folderFrom("XKB_CONFIG_EXTRA_PATH", "/etc/xkb"), folderFrom("XKB_CONFIG_ROOT", ZB_XKB_FOLDER)};
}

QByteArray registryFile(const QByteArray &folder)
{
    return folder + "/rules/" + ruleset + ".xml";
}

QByteArray symbolsFolder(const QByteArray &folder)
{
    return folder + "/symbols";
}

// One folder after the other: given all at once, libxkbregistry lists a variant of two folders twice.
QVector<KeyboardEntry> readRegistry(const QByteArrayList &folders)
{
    QVector<KeyboardEntry> all;
    QHash<EntryName, int> positions;
    for (const QByteArray &folder : folders) {
        const QVector<KeyboardEntry> entries = entriesIn(folder);
        for (const KeyboardEntry &entry : entries) {
            const EntryName name(entry.layout, entry.variant);
            const auto known = positions.constFind(name);
            if (known == positions.constEnd()) {
                positions.insert(name, all.size());
                all.append(entry);
            } else {
                fillWhenEmpty(all[*known].language, entry.language);
                fillWhenEmpty(all[*known].description, entry.description);
            }
        }
    }

    // A folder that only adds a variant names the layout and leaves its texts to the other folder.
    for (KeyboardEntry &entry : all) {
        const auto layout = positions.constFind({entry.layout, QByteArray()});
        if (layout != positions.constEnd())
            fillWhenEmpty(entry.language, all.at(*layout).language);
    }
    return all;
}

QVector<KeyboardEntry> loadableEntries(const QVector<KeyboardEntry> &entries, const QByteArrayList &folders)
{
    QHash<QByteArray, bool> isLoadable;
    const auto hasSymbols = [&folders](const QByteArray &layout) {
        return std::any_of(folders.begin(), folders.end(), [&layout](const QByteArray &folder) {
            return isReadableFile(symbolsFolder(folder) + '/' + layout);
        });
    };

    QVector<KeyboardEntry> loadable;
    loadable.reserve(entries.size());
    for (const KeyboardEntry &entry : entries) {
        auto known = isLoadable.find(entry.layout);
        if (known == isLoadable.end()) {
            const bool wellNamed = !entry.layout.isEmpty() && isPlainName(entry.layout);
            known = isLoadable.insert(entry.layout, wellNamed && hasSymbols(entry.layout));
        }
        if (known.value() && isPlainName(entry.variant))
            loadable.append(entry);
    }
    return loadable;
}
