// An open file that is closed with the object.
#pragma once

#include <unistd.h>

class FileDescriptor
{
public:
    /// Takes over \a descriptor as open(2) returned it.
    explicit FileDescriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    ~FileDescriptor()
    {
        if (isOpen())
            ::close(m_descriptor);
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    int number() const { return m_descriptor; }

private:
    const int m_descriptor;
};
