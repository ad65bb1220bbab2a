#pragma once

#include <boost/iostreams/device/mapped_file.hpp>
#include <boost/iostreams/stream.hpp>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/util/BinInputStream.hpp>

namespace marrowpress {

/// A local file as input of the parser: read through a memory mapping, or,
/// when the file can't be mapped, through Xerces' own file stream.
///
/// Only regular files are opened: a pipe would block and a device may never
/// end, so that these, and directories, count as files that can't be opened.
class MemMapLocalFileInputSource final : public xercesc::LocalFileInputSource {
public:
    using LocalFileInputSource::LocalFileInputSource;

    /// A stream that the caller owns, or null when the file can't be opened. Never throws.
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
    XMLSize_t readBytes(XMLByte* toFill, XMLSize_t maxToRead) override;

    const XMLCh* getContentType() const override { return nullptr; }

private:
    // `mutable` because asking a Boost stream for its device is no constant operation.
    mutable boost::iostreams::stream<boost::iostreams::mapped_file_source> stream_;
    xercesc::MemoryManager* manager_;
};

/// Whether a file system entry of the source's system id exists. Every failure counts as no.
bool sourceFileExists(const xercesc::InputSource& source) noexcept;

}  // namespace marrowpress
