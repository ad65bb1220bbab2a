#pragma once

#include <boost/iostreams/device/mapped_file.hpp>
#include <boost/iostreams/stream.hpp>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/util/BinInputStream.hpp>

#include "support/file_descriptor.h"

namespace marrowpress {

/// A stream of the file at `path` that the caller owns, or null when it can't be opened. Files of
/// up to 16 MB are read through a handle; larger ones through a memory mapping, or, when that can't
/// be made, through a handle too.
///
/// Only regular files are opened: a pipe would block and a device may never end, so that these, and
/// directories, count as files that can't be opened. What is looked at is what is opened.
///
/// @throws std::system_error when handles or memory are out, or the disk fails: nothing is known of
///         the file then, and a document must not be read as if it had none.
xercesc::BinInputStream* openLocalFile(const XMLCh* path, xercesc::MemoryManager* manager);

/// A local file as input of the parser.
class MemMapLocalFileInputSource final : public xercesc::LocalFileInputSource {
public:
    using LocalFileInputSource::LocalFileInputSource;

    /// As `openLocalFile`.
    xercesc::BinInputStream* makeStream() const override;
};

/// Bytes of a read-only mapping of a whole file.
///
/// The mapping and the file are open as long as the stream lives, and no longer: nothing of the
/// file is kept by the document that was read from it.
class MemMapFileInputStream final : public xercesc::BinInputStream {
public:
    /// `path` is UTF-16; the mapping is opened with its UTF-8 form.
    ///
    /// @throws std::ios_base::failure when the file can't be mapped.
    MemMapFileInputStream(const XMLCh* path, xercesc::MemoryManager* manager);

    bool isOpen() const;

    /// Always 1: the parser needs a position for its diagnostics alone, and these are not shown.
    XMLFilePos curPos() const override { return 1; }

    /// Gives the number of bytes read, 0 at the end of the file.
    ///
    /// @throws xercesc::XMLPlatformUtilsException when somebody has shortened the file: the pages
    ///         behind its end are gone, and a touch of them would end the process.
    XMLSize_t readBytes(XMLByte* toFill, XMLSize_t maxToRead) override;

    const XMLCh* getContentType() const override { return nullptr; }

private:
    bool isWhole() const;

    // `mutable` because asking a Boost stream for its device is no constant operation.
    mutable boost::iostreams::stream<boost::iostreams::mapped_file_source> stream_;
    xercesc::MemoryManager* manager_;
    FileDescriptor descriptor_;
};

/// Whether a file system entry of the source's system id exists. Every failure counts as no.
bool sourceFileExists(const xercesc::InputSource& source) noexcept;

}  // namespace marrowpress
