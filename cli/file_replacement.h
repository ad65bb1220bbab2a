#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string_view>

namespace marrowpress {

/// Puts `text` into the file at `path`, which is as it was or whole: it is written beside and
/// renamed. A pipe or a device is written to.
///
/// @throws FileFailure that names `path`.
void replaceFile(const std::filesystem::path& path, std::string_view text);

/// The same with a text that need not be in memory as a whole: `fill` writes it to a stream that
/// throws nothing and is gone then. What `fill` throws leaves the file as it was.
///
/// @throws FileFailure that names `path`, behind `fill`.
void replaceFile(const std::filesystem::path& path, const std::function<void(std::ostream&)>& fill);

}  // namespace marrowpress
