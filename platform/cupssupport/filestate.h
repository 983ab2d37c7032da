// What tells one state of a file from another, without reading it.
#pragma once

#include "age.h"

#include <sys/stat.h>

/**
 * A file's device, inode, size and its two times in nanoseconds. Whoever writes in place changes a time,
 * whoever replaces the file changes the inode. Yet a clock for files that goes in ticks of some milliseconds
 * gives two writes of the same tick the same times, and an inode may be used again. So two states that are
 * equal hold the same bytes if the first one was settled when the file was read.
 */
class FileState
{
public:
    /// Of a file that is not there.
    FileState() = default;
    explicit FileState(const struct stat &file)
        : m_isThere(true)
        , m_device(file.st_dev)
        , m_inode(file.st_ino)
        , m_size(file.st_size)
        , m_modified(file.st_mtim)
        , m_changed(file.st_ctim)
    {
    }

    /// Of the file named \a path. Any reason why it cannot be looked at counts as not being there.
    static FileState of(const char *path)
    {
        struct stat file = {};
        return ::stat(path, &file) == 0 ? FileState(file) : FileState();
    }

    bool isThere() const { return m_isThere; }
    off_t size() const { return m_size; }
    timespec modified() const { return m_modified; }
    /// Whether a write after \a now has another time than the file had: both of its times are some ticks
    /// before \a now, and not after it. A file that is not there is settled.
    bool isSettledAt(const timespec &now) const;

    friend bool operator==(const FileState &left, const FileState &right)
    {
        return left.m_isThere == right.m_isThere && left.m_device == right.m_device
            && left.m_inode == right.m_inode && left.m_size == right.m_size
            && isSameTime(left.m_modified, right.m_modified) && isSameTime(left.m_changed, right.m_changed);
    }
    friend bool operator!=(const FileState &left, const FileState &right) { return !(left == right); }

private:
    bool m_isThere = false;
    dev_t m_device = 0;
    ino_t m_inode = 0;
    off_t m_size = 0;
    timespec m_modified = {};
    timespec m_changed = {};
};
