#include "cli/relative_references.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "cli/file_failure.h"
#include "cli/new_file.h"
#include "cli/start_tag.h"
#include "cli/xml_pieces.h"
#include "findings/regular_file.h"
#include "findings/shown_path.h"
#include "marrowpress/output_names.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// Whether a value in the tag begins with "/". Most tags have none, and need not be looked into.
bool mayHoldPath(std::string_view tag) {
    for (std::size_t at = tag.find('/'); at != std::string_view::npos; at = tag.find('/', at + 1)) {
        if (tag[at - 1] == '"' || tag[at - 1] == '\'') {
            return true;
        }
    }
    return false;
}

XmlPieces::Source bytesOf(const RegularFile& file, const std::string& path) {
    return [&file, path](char* into, std::size_t most) {
        ssize_t count = -1;
        do {
            count = read(file.descriptor(), into, most);
        } while (count < 0 && errno == EINTR);
        if (count < 0) {
            throw FileFailure::ofLastCall(FileAction::kRead, path);
        }
        return static_cast<std::size_t>(count);
    };
}

mode_t modeOf(const RegularFile& file) {
    constexpr mode_t kPermissions = 0777;
    struct stat status {};
    fstat(file.descriptor(), &status);
    return status.st_mode & kPermissions;
}

}  // namespace

void RelativeReferences::rewriteFile(const fs::path& path, std::string_view folder) const {
    const RegularFile file(path.string());
    if (!file.isOpen()) {
        throw FileFailure(FileAction::kRead, path.string(), file.fault());
    }
    NewFile successor(path.string().append(kAsideSuffix), path, modeOf(file));
    XmlPieces pieces(bytesOf(file, path.string()));
    bool hasChanged = false;
    while (const std::optional<XmlPiece> piece = pieces.next()) {
        const std::optional<std::string> tag =
            piece->isStartTag ? rewrittenTag(piece->bytes, folder) : std::nullopt;
        successor.write(tag ? *tag : piece->bytes);
        hasChanged |= tag.has_value();
    }
    successor.close();
    if (hasChanged) {
        successor.replace(path);
    }
}

std::optional<std::string> RelativeReferences::rewrittenTag(std::string_view bytes,
                                                            std::string_view folder) const {
    const std::optional<StartTag> tag = mayHoldPath(bytes) ? parseStartTag(bytes) : std::nullopt;
    if (!tag) {
        return std::nullopt;
    }
    std::string rewritten;
    const char* rest = bytes.data();
    for (const TagReference& reference : referencesOf(*tag)) {
        if (const std::optional<std::string> value = rewrittenValue(reference, folder)) {
            const std::string_view old = reference.attribute->value;
            rewritten.append(rest, old.data()).append(*value);
            rest = old.data() + old.size();
        }
    }
    if (rest == bytes.data()) {
        return std::nullopt;
    }
    return rewritten.append(rest, bytes.data() + bytes.size());
}

/// The value that is to stand in the place of the reference; empty when that is none to a local
/// file.
std::optional<std::string> RelativeReferences::rewrittenValue(const TagReference& reference,
                                                              std::string_view folder) const {
    const TagAttribute& attribute = *reference.attribute;
    const std::optional<std::string> text = textOfValue(attribute.value);
    std::optional<LocalReference> local = text ? localReference(*text) : std::nullopt;
    if (!local || !(reference.isCertain || isLocal(*local))) {
        return std::nullopt;
    }
    if (copies_ && (reference.use == ReferenceUse::kMedia || hasMediaExtension(local->path))) {
        if (std::optional<LocalReference> copy = toCopy(*local)) {
            local = std::move(copy);
        }
    }
    return valueOfText(relativeUri(*local, folder), attribute.quote);
}

bool RelativeReferences::isLocal(const LocalReference& reference) const {
    std::error_code ignored;
    return pathInside(reference.path, sources_.string()) ||
           fs::is_regular_file(filePathOf(reference), ignored);
}

/// A reference to the copy of what the reference names; empty when that is no file.
std::optional<LocalReference> RelativeReferences::toCopy(const LocalReference& reference) const {
    const std::optional<fs::path> copy = copies_->copyOf(filePathOf(reference));
    return copy ? std::optional(referenceToFile(copy->string(), reference.fragment)) : std::nullopt;
}

}  // namespace marrowpress
