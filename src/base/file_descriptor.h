#pragma once

#include <unistd.h>

#include <utility>

namespace netvane::base {

/// Owns a file descriptor and closes it.
class FileDescriptor {
public:
    FileDescriptor() = default;
    /// The result of a system call; negative if it failed.
    explicit FileDescriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    FileDescriptor(FileDescriptor&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~FileDescriptor()
    {
        if (isOpen())
            ::close(m_descriptor);
    }

    bool isOpen() const { return m_descriptor >= 0; }
    int get() const { return m_descriptor; }

private:
    int m_descriptor = -1;
};

} // namespace netvane::base
