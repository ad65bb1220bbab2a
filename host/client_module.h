#pragma once

#include <filesystem>
#include <memory>

#include "marrowpress/client_entry.h"

namespace marrowpress {

/// A loaded client module. Must outlive everything that came from it.
class ClientModule {
public:
    /// What becomes of a module whose owner ends.
    enum class AtEnd {
        kStays,  ///< as in the application: memory checkers can name its code to the end
        kGoes,
    };

    /// Loads the module at `path`, with all of its symbols bound. Once it was to stay it does.
    ///
    /// @throws std::runtime_error when it cannot be loaded, or has no entry function.
    explicit ClientModule(const std::filesystem::path& path, AtEnd atEnd = AtEnd::kStays);

    ClientEntry entry() const noexcept { return entry_; }
    void* handle() const noexcept { return handle_.get(); }

private:
    struct Close {
        void operator()(void* handle) const noexcept;
    };

    std::unique_ptr<void, Close> handle_;
    ClientEntry entry_;
};

/// Where the module stands: beside the running executable or the library that this is part of, as
/// in a build folder, else where an installation has it. The first that exists, the path beside
/// them when none does.
std::filesystem::path defaultModulePath();

}  // namespace marrowpress
