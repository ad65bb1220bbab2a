#pragma once

#include <cstdio>

namespace marrowpress {

/// Ends a stream of the C library that a `std::unique_ptr` owns.
struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

}  // namespace marrowpress
