#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// What tests make of texts before they compare them.
namespace marrowpress {

/// `text` with `to` in the place of each `from`.
std::string replacedAll(std::string text, std::string_view from, std::string_view to);

/// `count` times the text.
std::string repeated(std::string_view text, std::size_t count);

/// The ids that topics get in a request, in their order: the first five.
inline constexpr std::string_view kGeneratedIds[] = {
    "id5cbb91d0-f69e-4e22-aefa-e1e7791fc3d5", "id2c358220-dfb7-47f8-8500-d3e9e1af9538",
    "idba4be2a1-2b09-444e-a368-f81825a6168c", "idc4a84b47-1acd-4930-9f6d-008c10782dfe",
    "ide72a1ff5-e416-48ff-99ef-02f7fadabaf7"};

/// Names generated ids "id-1", "id-2", in the order in which they appear.
class IdNames {
public:
    /// `text` with the names. An id that an earlier text had keeps its name.
    std::string named(const std::string& text);

private:
    std::vector<std::string> ids_;
};

}  // namespace marrowpress
