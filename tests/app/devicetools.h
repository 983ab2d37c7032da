// The system tools behind the pages, as scripts of the test.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

/**
 * While it lives, timedatectl, fw_printenv, fw_setenv, df and cat are found in a folder of the test first:
 * each notes how it is started and does nothing else, until the test gives it something to do. None of the
 * machine's own is ever started.
 */
class DeviceTools
{
public:
    DeviceTools();
    ~DeviceTools();

    /// What the tool does after it has noted its start: lines for sh(1), with the tool's arguments in $@.
    void setScript(const QString &tool, const QByteArray &lines);
    /// The boot-loader environment: fw_printenv prints the values of the names that it is given, one a line;
    /// fw_setenv with a name deletes its value.
    void setBootValues(const QList<QPair<QByteArray, QByteArray>> &values);

    /// Every start so far, as the tool's name and its arguments with blanks between them.
    QStringList runs() const;
    /// Those of one tool.
    QStringList runs(const QString &tool) const;
    void clear();

private:
    Q_DISABLE_COPY(DeviceTools)

    QTemporaryDir m_folder;
    QByteArray m_searchPath;
};
