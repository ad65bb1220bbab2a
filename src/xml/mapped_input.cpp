#include "xml/mapped_input.h"

#include <memory>
#include <xercesc/util/BinFileInputStream.hpp>

#include "support/paths.h"
#include "support/text.h"
#include "support/xerces_ptr.h"

namespace marrowpress {
namespace {

/// A stream of the type made by `make`, or null when that throws or yields one that isn't open.
template <class Make, class IsOpen>
std::unique_ptr<xercesc::BinInputStream> openStream(Make&& make, IsOpen&& isOpen) {
    try {
        auto stream = make();
        if (isOpen(*stream)) {
            return stream;
        }
    } catch (...) {
        // The next way of reading the file is tried; there is nobody to tell here.
    }
    return nullptr;
}

}  // namespace

xercesc::BinInputStream* MemMapLocalFileInputSource::makeStream() const {
    const XMLCh* const path = getSystemId();
    xercesc::MemoryManager* const manager = getMemoryManager();
    if (isIrregularFile(domText(path))) {
        return nullptr;
    }
    std::unique_ptr<xercesc::BinInputStream> stream = openStream(
        [&] {
            return std::unique_ptr<MemMapFileInputStream>(new (manager)
                                                              MemMapFileInputStream(path, manager));
        },
        [](const MemMapFileInputStream& mapped) { return mapped.isOpen(); });
    if (!stream) {
        stream = openStream(
            [&] {
                return std::unique_ptr<xercesc::BinFileInputStream>(
                    new (manager) xercesc::BinFileInputStream(path, manager));
            },
            [](const xercesc::BinFileInputStream& file) { return file.getIsOpen(); });
    }
    return stream.release();
}

MemMapFileInputStream::MemMapFileInputStream(const XMLCh* path, xercesc::MemoryManager* manager)
    : stream_(boost::iostreams::mapped_file_source(toUtf8(domText(path)))), manager_(manager) {}

bool MemMapFileInputStream::isOpen() const {
    return stream_.is_open() && stream_->data();
}

XMLSize_t MemMapFileInputStream::readBytes(XMLByte* toFill, XMLSize_t maxToRead) {
    stream_.read(reinterpret_cast<char*>(toFill), static_cast<std::streamsize>(maxToRead));
    return static_cast<XMLSize_t>(stream_.gcount());
}

bool sourceFileExists(const xercesc::InputSource& source) noexcept try {
    return pathExists(domText(source.getSystemId()));
} catch (...) {
    return false;
}

}  // namespace marrowpress
