// An open file that is closed with the object.
#pragma once

class FileDescriptor
{
public:
    /// Takes over \a descriptor as open(2) returned it. When that is an error, error() is the present errno.
    explicit FileDescriptor(int descriptor);
    ~FileDescriptor();
    FileDescriptor(FileDescriptor &&other) noexcept;
    FileDescriptor &operator=(FileDescriptor &&other) = delete;

    /// The descriptor, negative when opening failed.
    int get() const { return m_descriptor; }
    /// Gives the descriptor to the caller, who closes it.
    int release();
    /// 0, or the errno value (see errno(3)) with which opening failed.
    int error() const { return m_error; }

private:
    int m_descriptor;
    int m_error;
};
