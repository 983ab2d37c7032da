// Owner of one file descriptor.
#include "filedescriptor.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

FileDescriptor::FileDescriptor(int descriptor)
    : m_descriptor(descriptor)
    , m_error(descriptor < 0 ? errno : 0)
{
}

FileDescriptor::~FileDescriptor()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

FileDescriptor::FileDescriptor(FileDescriptor &&other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1))
    , m_error(other.m_error)
{
}

int FileDescriptor::release()
{
    return std::exchange(m_descriptor, -1);
}
