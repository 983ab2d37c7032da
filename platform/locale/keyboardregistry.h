// The keyboard layouts that the system's XKB data offer, as libxkbregistry reads them.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>
#include <QtCore/QVector>

/// A layout, or a variant of one. All texts are UTF-8.
struct KeyboardEntry
{
    QByteArray layout;
    QByteArray variant;
    QByteArray language;
    QByteArray description;
};

/**
 * The folders that hold XKB data for every user: XKB_CONFIG_EXTRA_PATH or /etc/xkb, then XKB_CONFIG_ROOT or
 * the folder of xkeyboard-config. A user's own folders are left out: the compositor runs as another user and
 * cannot read them.
 */
QByteArrayList xkbFolders();

/// The registry file of one of the xkbFolders().
QByteArray registryFile(const QByteArray &folder);

/// The folder of one of the xkbFolders() that holds a file for each layout.
QByteArray symbolsFolder(const QByteArray &folder);

/**
 * All entries of the registry files in \a folders, each layout and each variant once; none when there is no
 * file that can be read. Of an entry that several folders have, the texts are those of the first folder, and
 * where it has none, those of the next.
 */
QVector<KeyboardEntry> readRegistry(const QByteArrayList &folders);

/**
 * Those of \a entries that a compositor can load: the layout has a symbols file in one of \a folders, and
 * the names can stand in an environment file. The first rule takes out "custom", a place holder that
 * xkeyboard-config lists for a layout that the owner of the machine may add.
 */
QVector<KeyboardEntry> loadableEntries(const QVector<KeyboardEntry> &entries, const QByteArrayList &folders);
