#pragma once

#include <unistd.h>

#include <string>
#include <string_view>
#include <utility>

namespace farview
{

/// An open file, closed with this object. Movable; a negative number is no file.
class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : mDescriptor(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept
        : mDescriptor(std::exchange(other.mDescriptor, -1))
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(mDescriptor, other.mDescriptor);
        return *this;
    }
    ~FileDescriptor()
    {
        if (isOpen())
            ::close(mDescriptor);
    }

    bool isOpen() const { return mDescriptor >= 0; }
    int get() const { return mDescriptor; }
    /// Whoever gets it closes it.
    int release() { return std::exchange(mDescriptor, -1); }

private:
    int mDescriptor = -1;
};

/// Writes all of it. Returns 0, or an errno.
int writeAll(int descriptor, std::string_view bytes);

/// Whether the path, and not what a link there leads to, is the open file: another process may have
/// removed or replaced it.
bool isOpenAt(const std::string& path, int descriptor);

} // namespace farview
