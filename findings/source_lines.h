#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace marrowpress {

/// Lines of source files, as they stand on the disk now. Files are kept while they are few and
/// small, so that many findings in one of them read it once.
class SourceLines {
public:
    /// The bytes of a line, from 1, without its end; empty when the file can't be read, is large,
    /// is no text of single bytes or has no such line. The view holds until the next call.
    ///
    /// LF, CR LF and CR end a line, as for an XML parser, and a byte order mark belongs to none.
    std::optional<std::string_view> line(const std::string& file, std::uint32_t number);

private:
    struct Source {
        std::string text;
        std::vector<std::size_t> starts;  ///< Of each line, and one behind the last.
    };

    const Source& sourceOf(const std::string& file);

    std::unordered_map<std::string, Source> sources_;
    std::size_t keptBytes_ = 0;
};

}  // namespace marrowpress
