#pragma once

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

/// Owner of an open descriptor, or of none.
class Descriptor {
public:
    /// @param descriptor  What open(2) gave; negative for none.
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor()
    {
        if (m_descriptor >= 0) {
            close(m_descriptor);
        }
    }
    Descriptor(Descriptor&& other) noexcept : m_descriptor(other.release()) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    explicit operator bool() const { return m_descriptor >= 0; }
    int get() const { return m_descriptor; }

    /// Hands the descriptor over to the caller.
    int release() { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor;
};

/// open(2), made again when a signal has interrupted it. Child processes do not inherit the
/// descriptor.
inline int openDescriptor(const char* path, int flags, mode_t mode = 0)
{
    int descriptor = -1;
    do {
        descriptor = open(path, flags | O_CLOEXEC, mode);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}
