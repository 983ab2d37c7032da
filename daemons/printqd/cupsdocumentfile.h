// A kept document on its way to the disk: it is there whole, or not at all.
#pragma once

#include <QtCore/QString>

class CupsDocumentFile
{
public:
    /// The document will be \a path, with at most \a largest bytes. Meanwhile it is PATH.new, in place of
    /// what was left of that name.
    CupsDocumentFile(const QString &path, qint64 largest);
    /// What was not kept is removed.
    ~CupsDocumentFile();
    CupsDocumentFile(const CupsDocumentFile &) = delete;
    CupsDocumentFile &operator=(const CupsDocumentFile &) = delete;

    /// A new file, for this user only. False, with reason(), where that fails; so do the others.
    bool open();
    bool write(const char *bytes, qint64 size);
    /// Puts the file and its name on the disk.
    bool keep();
    const QString &reason() const { return m_reason; }
    /// Whether what failed may work another time: the disk was full or did not work, or the system was short
    /// of something.
    bool mayBeKeptLater() const { return m_mayBeKeptLater; }

private:
    bool fail(const QString &reason);
    bool failWithError();
    void close();

    const QString m_path;
    const qint64 m_largest;
    const QByteArray m_newName;
    int m_file = -1;
    qint64 m_size = 0;
    QString m_reason;
    bool m_mayBeKeptLater = false;
};
