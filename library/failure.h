#pragma once

#include <stdexcept>
#include <string>

#include "marrowpress/marrowpress.h"

namespace marrowpress {

/// Why a call of the library has no answer.
class LibraryFailure : public std::runtime_error {
public:
    /// @param code  One of MP_INVALID and its like.
    LibraryFailure(int code, const std::string& text) : std::runtime_error(text), code_(code) {}

    int code() const noexcept { return code_; }

private:
    int code_;
};

}  // namespace marrowpress
