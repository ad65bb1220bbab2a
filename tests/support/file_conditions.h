#pragma once

#include <csignal>
#include <string>
#include <string_view>

namespace marrowpress {

/// Ends the process when its scope lasts longer than some seconds: what must not hang fails so.
class Watchdog {
public:
    explicit Watchdog(unsigned seconds);
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;
    ~Watchdog();
};

/// No file can grow beyond a number of bytes, as if the disk ended there.
class FileSizeLimit {
public:
    explicit FileSizeLimit(std::size_t bytes);
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit();

private:
    using Handler = void (*)(int);

    std::size_t earlierLimit_;
    Handler earlierHandler_;
};

/// No further file can be opened; files can still be renamed and removed.
class NoFileHandles {
public:
    NoFileHandles();
    NoFileHandles(const NoFileHandles&) = delete;
    NoFileHandles& operator=(const NoFileHandles&) = delete;
    ~NoFileHandles();

private:
    std::size_t earlierLimit_;
};

/// No more than one further file can be open at a time.
class OneFileHandle {
public:
    OneFileHandle();
    OneFileHandle(const OneFileHandle&) = delete;
    OneFileHandle& operator=(const OneFileHandle&) = delete;
    ~OneFileHandle();

private:
    std::size_t earlierLimit_;
};

/// Holds a folder as a run does that writes into it.
class HeldFolder {
public:
    explicit HeldFolder(const std::string& folder);
    HeldFolder(const HeldFolder&) = delete;
    HeldFolder& operator=(const HeldFolder&) = delete;
    ~HeldFolder();

private:
    int descriptor_;
};

/// A user without rights, where the tests run as root; files of others are out of reach for it. It
/// changes nothing for any other user.
class WithoutRights {
public:
    WithoutRights();
    WithoutRights(const WithoutRights&) = delete;
    WithoutRights& operator=(const WithoutRights&) = delete;
    ~WithoutRights();
};

/// Makes a pipe at `path`.
void makePipe(const std::string& path);

/// Whether this process has the file at `path` in its memory, or holds a handle on it.
bool isMappedByProcess(const std::string& path);
bool isOpenInProcess(const std::string& path);

/// A server on this machine that listens and never answers.
class SilentServer {
public:
    SilentServer();
    SilentServer(const SilentServer&) = delete;
    SilentServer& operator=(const SilentServer&) = delete;
    ~SilentServer();

    /// "127.0.0.1" with the port.
    std::string authority() const;

    /// Whether somebody has connected since the start.
    bool wasAsked() const;

private:
    int descriptor_;
};

}  // namespace marrowpress
