#pragma once

namespace marrowpress {

/// Owner of a handle on a file; may have none.
class FileDescriptor {
public:
    explicit FileDescriptor(int number = -1) noexcept : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept;
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    ~FileDescriptor();

    explicit operator bool() const noexcept { return number_ >= 0; }
    int get() const noexcept { return number_; }
    /// Gives the handle away.
    int release() noexcept;

private:
    int number_;
};

}  // namespace marrowpress
