// What this process has the disk do: the calls that make a change durable, in their order.
//
// The program's own fsync(), mkdir(), renameat(), renameat2(), flock() and fchown() stand before the C
// library's, also for the libraries that it uses. Its target needs ENABLE_EXPORTS.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace DiskCalls {

/// Whether fsync() does its work. What a killed process leaves is up to the kernel and not to the disk, and
/// without it a test hits far more moments of a change in the same time.
void setSyncing(bool isSyncing);

enum class Call { Lock, ChangeOwner };

/// While it lives, \a call fails with the errno value \a error, as on a file system that cannot do it.
class Refusal
{
public:
    Refusal(Call call, int error);
    ~Refusal();

private:
    Q_DISABLE_COPY(Refusal)
    const Call m_call;
};

/// The calls that succeeded while it lives, of one thread at a time. At most one lives at a time.
class Record
{
public:
    Record();
    ~Record();

    /// "make PATH", "sync PATH" of an open file or folder, "rename NAME NAME"; with "~" for \a home.
    QStringList steps(const QString &home) const;

private:
    Q_DISABLE_COPY(Record)
};

} // namespace DiskCalls
