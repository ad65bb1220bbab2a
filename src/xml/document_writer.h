#pragma once

#include <string>
#include <xercesc/dom/DOMDocument.hpp>

/// Trees to files: serialised as UTF-8, white space as it stands in the tree,
/// the document's doctype included.
namespace marrowpress {

enum class [[nodiscard]] WriteStatus{kWritten = 0, kFailed = 1};

/// What a run decides about a write that may have failed: to go on. Message 107 has told it, and no
/// line changes the status of a run.
inline void goOnAfter(WriteStatus /*status*/) {}

/// Writes `document` to the file at `path`, in the place of what is there: an old file, whose
/// permission bits the new one gets, or a link, whose target stays as it is. A null document fails.
///
/// Whatever goes wrong, a disk that runs full as much as text that XML can't hold, is message 107
/// with the path, and leaves what was written so far. Never throws.
WriteStatus writeDocument(const xercesc::DOMDocument* document, const std::u16string& path);

/// Writes `document` over the file that it was read from, which is kept beside it as "..._tmp"
/// until the new one is complete. A null document fails, with nothing touched; so does one in whose
/// copy's place a document stands that the run has read, with message 107.
///
/// When the write fails, message 107 has been given and the old file is back in its place.
///
/// @throws std::filesystem::filesystem_error "rename" when the old file can't be moved aside
///         (nothing is changed then) or back, "remove" when the old file can't be removed after a
///         good write. PublishException, with nothing touched, when the host has thrown something.
WriteStatus saveDocumentInPlace(const xercesc::DOMDocument* document);

/// Writes a document of nothing but a doctype and a root element. The first three texts are
/// UTF-8. A failure is message 107.
///
/// @throws PublishException, with nothing written, when the host has thrown something.
WriteStatus writeEmptyDocument(std::string_view rootName, std::string_view publicId,
                               std::string_view systemId, const std::u16string& path);

}  // namespace marrowpress
