#pragma once

#include <filesystem>
#include <memory>

#include "host/stand_in_host_options.h"
#include "marrowpress/client_entry.h"

namespace marrowpress {

/// A module that is loaded for its owner alone, and unloaded with it: `ClientModule` would keep it.
/// Must outlive everything that came from it.
class LoadedModule {
public:
    /// @throws std::runtime_error when it can't be loaded, or has no entry function.
    explicit LoadedModule(const std::filesystem::path& path);

    ClientEntry entry() const noexcept { return entry_; }
    void* handle() const noexcept { return handle_.get(); }

private:
    struct Unload {
        void operator()(void* handle) const noexcept;
    };

    std::unique_ptr<void, Unload> handle_;
    ClientEntry entry_;
};

/// A host that finds "map.dtd" and "topic.dtd" in the folder `dtds`, and nothing else.
StandInHostOptions hostWithDtds(const std::filesystem::path& dtds);

}  // namespace marrowpress
