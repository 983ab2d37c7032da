// A folder of XKB data of the test's own, as XKB_CONFIG_ROOT takes it.
#pragma once

#include <QtCore/QByteArrayList>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

/// One layout of the registry with the variants it has: "name" and "description" pairs.
struct XkbLayout
{
    QByteArray name;
    QByteArray description;
    QList<QPair<QByteArray, QByteArray>> variants;
};

class XkbFolder
{
public:
    /// Writes the registry and an (empty) symbols file for each layout.
    explicit XkbFolder(const QList<XkbLayout> &layouts);

    QByteArray path() const;
    QString registryPath() const;
    /// Puts \a bytes in the registry's place.
    void setRegistry(const QByteArray &bytes) const;
    void setLayouts(const QList<XkbLayout> &layouts) const;
    void removeSymbols(const QByteArray &layout) const;
    void addSymbols(const QByteArray &layout) const;

private:
    QTemporaryDir m_folder;
};
