// A home folder of the test's own, with the lpoptions files that the printer's options are in.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

/// While it lives, the user's and the system's lpoptions files of this process, and of those that it starts,
/// are in here. Make it before the CupsSupport that uses it.
class OptionsHome
{
public:
    OptionsHome();
    ~OptionsHome();

    QString path() const { return m_folder.path(); }
    QString cupsFolder() const;
    QString userFile() const;
    QString systemFile() const;
    /// Makes \a text the whole user's file, in place; makes the folder where it is missing.
    bool write(const QByteArray &text) const;
    bool writeSystem(const QByteArray &text) const;
    /// The bytes of the user's file, null when there is none.
    QByteArray text() const;
    /// Everything in ".cups".
    QStringList files() const;

private:
    const QTemporaryDir m_folder;
    const QByteArray m_home;
    const QByteArray m_serverRoot;
    const bool m_hasServerRoot;
};
