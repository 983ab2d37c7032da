// Root without root's rights.
#pragma once

#include <QtCore/QFile>
#include <QtCore/QStringList>

#include <unistd.h>

/// Permission bits do not stop root. While it lives, root acts as a user without rights who owns \a paths;
/// another user stays who it is.
class OrdinaryUser
{
public:
    explicit OrdinaryUser(const QStringList &paths)
    {
        constexpr uid_t nobody = 65534;
        bool isOwner = m_before == 0;
        for (const QString &path : paths)
            isOwner = isOwner && chown(QFile::encodeName(path).constData(), nobody, gid_t(-1)) == 0;
        m_changed = isOwner && seteuid(nobody) == 0;
    }
    ~OrdinaryUser()
    {
        if (m_changed && seteuid(m_before) != 0)
            qFatal("cannot become root again");
    }

    bool isOrdinary() const { return geteuid() != 0; }

private:
    Q_DISABLE_COPY(OrdinaryUser)
    const uid_t m_before = geteuid();
    bool m_changed = false;
};
