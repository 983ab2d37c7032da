// The printer's options as texts, kept in the lpoptions files of the user and of the system.
#pragma once

#include "filestate.h"
#include "folderlock.h"
#include "printeroptions.h"

#include <QtCore/QString>

#include <array>

/**
 * The options of one queue. Values are kept in memory for as long as the files stay as they are, which one
 * stat(2) tells, but for the first few milliseconds after a change. No file stays open.
 */
class PrinterOptionStore
{
public:
    /// For the files of the user and the machine that the process runs as and on.
    PrinterOptionStore();
    PrinterOptionStore(const QByteArray &userFile, const QByteArray &systemFile);

    /// The value of \a option in the user's file, else in the system's, else null.
    QByteArray value(PrinterOption option);
    /// Puts \a value into the user's file, or takes \a option out when it is null, unless it is so already.
    /// On the disk when this returns. A failure is logged, unless the change before it failed in the same
    /// way.
    void setValue(PrinterOption option, const QByteArray &value);

private:
    /// One file, as it was when it was last looked at.
    struct File
    {
        QByteArray path;
        FileState state;
        bool isStateTrusted = false; ///< whether the file is as it was when it has this state
        bool isParsed = false;
        QByteArray text;
        QString failure;
        std::array<QByteArray, printerOptionCount> values;

        /// Reads the file if it may have changed.
        void refresh();
        void read();
        /// That the file has become \a newText, in which \a option is \a value and nothing else is new.
        void noteWritten(const QByteArray &newText, PrinterOption option, const QByteArray &value);
        QByteArray value(PrinterOption option) const { return values.at(size_t(option)); }
        /// Whether the file can be read and \a option is \a expected in it.
        bool has(PrinterOption option, const QByteArray &expected) const;
    };

    QString change(PrinterOption option, const QByteArray &value);
    void report(const QString &failure);

    File m_user;
    File m_system;
    QString m_lastFailure;
    LockPatience m_patience;
};
