#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>
#include <xercesc/framework/XMLFormatter.hpp>

#include "support/file_descriptor.h"

namespace marrowpress {

/// A regular file as the target of a serializer, where every byte counts.
///
/// The engine's own file target holds bytes back until its destructor and
/// swallows what goes wrong there, so that a full disk passes for a success.
class CheckedFileFormatTarget final : public xercesc::XMLFormatTarget {
public:
    /// Creates the file, with the permission bits `mode`, or the usual ones.
    ///
    /// An old file in its place is removed first, and so is a link: what other names lead to, or
    /// the link does, is never written.
    ///
    /// @throws std::system_error when that can't be done, an old file must not be written, or what
    ///         stands there is neither a regular file nor a link.
    explicit CheckedFileFormatTarget(const std::u16string& path,
                                     std::optional<mode_t> mode = std::nullopt);
    CheckedFileFormatTarget(const CheckedFileFormatTarget&) = delete;
    CheckedFileFormatTarget& operator=(const CheckedFileFormatTarget&) = delete;
    /// Closes the file if `close` did not. Unwritten bytes are lost then.
    ~CheckedFileFormatTarget() override = default;

    /// @throws std::system_error when the bytes can't be written.
    void writeChars(const XMLByte* bytes, XMLSize_t count,
                    xercesc::XMLFormatter* formatter) override;

    /// Writes what is still held back and closes the file.
    ///
    /// @throws std::system_error when either fails; the file is closed all the same.
    void close();

private:
    void writeHeldBack();

    FileDescriptor descriptor_;
    std::vector<XMLByte> heldBack_;
};

}  // namespace marrowpress
