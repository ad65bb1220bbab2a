#include "tests/support/file_conditions.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <system_error>

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// Sets the soft limit of a resource and gives the earlier one.
std::size_t setLimit(__rlimit_resource resource, std::size_t limit) {
    rlimit limits{};
    EXPECT_EQ(::getrlimit(resource, &limits), 0);
    const std::size_t earlier = limits.rlim_cur;
    limits.rlim_cur = limit;
    EXPECT_EQ(::setrlimit(resource, &limits), 0);
    return earlier;
}

/// The sanitizer looks at an object of a class that it doesn't know through a pipe, and takes it
/// for broken when there is no handle for one: it gets to know the class of the failure before.
std::size_t limitHandles(std::size_t handles) {
    const auto failure =
        std::make_unique<std::system_error>(std::make_error_code(std::errc::io_error));
    EXPECT_EQ(failure->code(), std::errc::io_error);
    EXPECT_STRNE(failure->what(), "");
    return setLimit(RLIMIT_NOFILE, handles);
}

/// The handle that a file gets that is opened now: the lowest that is free.
std::size_t nextHandle() {
    const int handle = ::dup(STDERR_FILENO);
    EXPECT_GE(handle, 0);
    ::close(handle);
    return static_cast<std::size_t>(handle);
}

}  // namespace

Watchdog::Watchdog(unsigned seconds) {
    ::alarm(seconds);
}

Watchdog::~Watchdog() {
    ::alarm(0);
}

FileSizeLimit::FileSizeLimit(std::size_t bytes)
    : earlierLimit_(setLimit(RLIMIT_FSIZE, bytes)),
      // Without this a write past the limit ends the process.
      earlierHandler_(std::signal(SIGXFSZ, SIG_IGN)) {}

FileSizeLimit::~FileSizeLimit() {
    setLimit(RLIMIT_FSIZE, earlierLimit_);
    std::signal(SIGXFSZ, earlierHandler_);
}

NoFileHandles::NoFileHandles() : earlierLimit_(limitHandles(0)) {}

NoFileHandles::~NoFileHandles() {
    setLimit(RLIMIT_NOFILE, earlierLimit_);
}

OneFileHandle::OneFileHandle() : earlierLimit_(limitHandles(nextHandle() + 1)) {}

OneFileHandle::~OneFileHandle() {
    setLimit(RLIMIT_NOFILE, earlierLimit_);
}

HeldFolder::HeldFolder(const std::string& folder)
    : descriptor_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    EXPECT_EQ(::flock(descriptor_, LOCK_EX | LOCK_NB), 0);
}

HeldFolder::~HeldFolder() {
    ::close(descriptor_);
}

WithoutRights::WithoutRights() {
    if (::getuid() == 0) {
        constexpr uid_t kNobody = 65534;
        EXPECT_EQ(::seteuid(kNobody), 0);
    }
}

WithoutRights::~WithoutRights() {
    if (::getuid() == 0) {
        EXPECT_EQ(::seteuid(0), 0);
    }
}

void makePipe(const std::string& path) {
    constexpr mode_t kOwnerOnly = 0600;
    ASSERT_EQ(::mkfifo(path.c_str(), kOwnerOnly), 0);
}

bool isMappedByProcess(const std::string& path) {
    std::ostringstream maps;
    maps << std::ifstream("/proc/self/maps").rdbuf();
    return maps.str().find(path) != std::string::npos;
}

bool isOpenInProcess(const std::string& path) {
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        if (fs::read_symlink(entry.path(), error) == path) {
            return true;
        }
    }
    return false;
}

SilentServer::SilentServer() : descriptor_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    constexpr int kWaitingAtMost = 8;
    EXPECT_EQ(::listen(descriptor_, kWaitingAtMost), 0);
}

SilentServer::~SilentServer() {
    ::close(descriptor_);
}

std::string SilentServer::authority() const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    EXPECT_EQ(::getsockname(descriptor_, reinterpret_cast<sockaddr*>(&address), &size), 0);
    return "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
}

bool SilentServer::wasAsked() const {
    // A connection stands in the queue as soon as the other side has made it.
    pollfd waiting{descriptor_, POLLIN, 0};
    return ::poll(&waiting, 1, 0) > 0;
}

}  // namespace marrowpress
