#include "xml/mapped_input.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <xercesc/util/BinFileInputStream.hpp>

#include "support/paths.h"
#include "support/text.h"
#include "support/xerces_ptr.h"

namespace marrowpress {
namespace {

/// Up to here a read is as good as a mapping, or better, and no other process can make it fail with
/// a signal by shortening the file.
constexpr off_t kLargestRead = 16 << 20;

/// Whether opening failed for want of what the machine has, and not for the file.
bool isExhaustion(int error) {
    return error == EMFILE || error == ENFILE || error == ENOMEM || error == ENOSPC || error == EIO;
}

/// A handle on the file at `path`; none for what isn't there or is no regular file.
///
/// @throws std::system_error when it can't be known.
FileDescriptor openRegularFile(const std::string& path) {
    // Not blocking: there are files that are regular by their mode and have nobody who writes.
    FileDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!descriptor && isExhaustion(errno)) {
        throw std::system_error(errno, std::generic_category(), "open");
    }
    struct stat status {};
    if (descriptor && (::fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode))) {
        return FileDescriptor();
    }
    return descriptor;
}

off_t sizeOf(const FileDescriptor& descriptor) {
    struct stat status {};
    return ::fstat(descriptor.get(), &status) == 0 ? status.st_size : -1;
}

/// The mapped stream of the file; null when it can't be mapped.
std::unique_ptr<xercesc::BinInputStream> mappedStream(const XMLCh* path,
                                                      xercesc::MemoryManager* manager) {
    try {
        std::unique_ptr<MemMapFileInputStream> stream(new (manager)
                                                          MemMapFileInputStream(path, manager));
        return stream->isOpen() ? std::move(stream) : nullptr;
    } catch (const std::ios_base::failure&) {
        // It is read through its handle then.
        return nullptr;
    }
}

}  // namespace

xercesc::BinInputStream* openLocalFile(const XMLCh* path, xercesc::MemoryManager* manager) {
    FileDescriptor descriptor = openRegularFile(toUtf8(domText(path)));
    if (!descriptor) {
        return nullptr;
    }
    if (sizeOf(descriptor) > kLargestRead) {
        if (std::unique_ptr<xercesc::BinInputStream> stream = mappedStream(path, manager)) {
            return stream.release();
        }
    }
    std::FILE* const file = ::fdopen(descriptor.get(), "rb");
    if (!file) {
        throw std::system_error(errno, std::generic_category(), "fdopen");
    }
    descriptor.release();
    return new (manager) xercesc::BinFileInputStream(file, manager);
}

xercesc::BinInputStream* MemMapLocalFileInputSource::makeStream() const {
    return openLocalFile(getSystemId(), getMemoryManager());
}

MemMapFileInputStream::MemMapFileInputStream(const XMLCh* path, xercesc::MemoryManager* manager)
    : stream_(boost::iostreams::mapped_file_source(toUtf8(domText(path)))),
      manager_(manager),
      descriptor_(openRegularFile(toUtf8(domText(path)))) {}

bool MemMapFileInputStream::isOpen() const {
    return stream_.is_open() && stream_->data() && isWhole();
}

XMLSize_t MemMapFileInputStream::readBytes(XMLByte* toFill, XMLSize_t maxToRead) {
    if (!isWhole()) {
        ThrowXMLwithMemMgr(xercesc::XMLPlatformUtilsException,
                           xercesc::XMLExcepts::File_CouldNotReadFromFile, manager_);
    }
    stream_.read(reinterpret_cast<char*>(toFill), static_cast<std::streamsize>(maxToRead));
    return static_cast<XMLSize_t>(stream_.gcount());
}

/// Whether the file still has what is mapped. Between this question and a read a moment remains.
bool MemMapFileInputStream::isWhole() const {
    return sizeOf(descriptor_) >= static_cast<off_t>(stream_->size());
}

bool sourceFileExists(const xercesc::InputSource& source) noexcept try {
    return pathExists(domText(source.getSystemId()));
} catch (...) {
    return false;
}

}  // namespace marrowpress
