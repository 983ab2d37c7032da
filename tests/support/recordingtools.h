// System tools that note how they are started, in place of the machine's.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>
#include <QtCore/QVector>

/**
 * While it lives, the search path of this process is a folder in which timedatectl, fw_printenv, fw_setenv,
 * df, cat and lp are one small program. It notes its arguments and does what the test has set for its name.
 * No other program is on the path.
 *
 * Tools that stay do so until letGo() or the end of this object, also when the test is killed.
 */
class RecordingTools
{
public:
    /// One start of a tool.
    struct Run
    {
        QString program; ///< the name that the tool was called by
        QStringList arguments;
        qint64 processId;
        QByteArray standardInput; ///< "pipe" while it can be written to, "end" at its end, "other", "closed"
        QByteArray locale; ///< LC_ALL of the tool
    };

    /// What a tool does after it has noted its start: a list of the steps below, carried out in their order.
    using Steps = QList<QByteArray>;
    static QByteArray print(); ///< prints what setOutput() was given
    static QByteArray printForever();
    static QByteArray complain(int bytes); ///< writes to its standard error
    static QByteArray pauseFor(int milliseconds);
    static QByteArray closeOutput();
    static QByteArray stay(); ///< goes on running until the test lets it go
    static QByteArray exitWith(int status);
    static QByteArray crash(); ///< ends by a signal

    RecordingTools();
    ~RecordingTools();

    /// Whether the folder could be made; look before going on.
    bool isReady() const;
    void setSteps(const QString &program, const Steps &steps);
    /// Lets \a program print \a output and end; the usual tool.
    void setOutput(const QString &program, const QByteArray &output);
    /// As setOutput(), with more to do than printing.
    void setOutput(const QString &program, const QByteArray &output, const Steps &steps);
    /// Takes \a program off the search path.
    void remove(const QString &program);
    /// Puts a file on the path under the name of \a program that cannot be run.
    void breakProgram(const QString &program);

    /// All runs so far, in the order in which the processes were started.
    QVector<Run> runs() const;
    /// Each run as program and arguments.
    QList<QStringList> commands() const;
    /// Runs the event loop until there are \a count runs; false when that takes too long.
    bool waitForRuns(int count);
    /// Forgets the runs so far.
    void clear();
    /// Ends the tools that stay; those that are started later do not stay.
    void letGo();

private:
    Q_DISABLE_COPY(RecordingTools)
    QString path(const char *folder, const QString &name = {}) const;

    QTemporaryDir m_folder;
    QByteArray m_searchPath;
    int m_hold = -1;
    bool m_isReady = false;
};
