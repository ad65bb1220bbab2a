#include "findings/letter_case.h"

#include <utf8proc.h>

#include <cstdlib>
#include <memory>

namespace marrowpress {
namespace {

struct FreeFolded {
    void operator()(utf8proc_uint8_t* text) const noexcept { std::free(text); }
};

}  // namespace

std::string foldedCase(const std::string& text) {
    utf8proc_uint8_t* folded = nullptr;
    const utf8proc_ssize_t size =
        utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                     static_cast<utf8proc_ssize_t>(text.size()), &folded, UTF8PROC_CASEFOLD);
    const std::unique_ptr<utf8proc_uint8_t, FreeFolded> owner(folded);
    if (size < 0) {
        return text;
    }
    return {reinterpret_cast<const char*>(folded), static_cast<std::size_t>(size)};
}

}  // namespace marrowpress
