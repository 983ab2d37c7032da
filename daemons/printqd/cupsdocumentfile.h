// A kept document on its way to the disk: it is there whole, or not at all.
#pragma once

#include <QtCore/QFile>
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

    /// A new file, for this user only. False, with reason(), where that fails.
    bool open();
    bool write(const char *bytes, qint64 size);
    /// Puts the file and its name on the disk.
    bool keep();
    const QString &reason() const { return m_reason; }

private:
    bool fail(const QString &reason);

    const QString m_path;
    const qint64 m_largest;
    const QByteArray m_newName;
    QFile m_file;
    QString m_reason;
};
