#include "tests/harness/loaded_module.h"

#include <dlfcn.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace marrowpress {

void LoadedModule::Unload::operator()(void* handle) const noexcept {
    dlclose(handle);
}

LoadedModule::LoadedModule(const std::filesystem::path& path)
    : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)), entry_(nullptr) {
    if (handle_) {
        entry_ = reinterpret_cast<ClientEntry>(dlsym(handle_.get(), kClientEntryName));
    }
    if (!entry_) {
        throw std::runtime_error(path.string() + " can't be loaded as a module");
    }
}

StandInHostOptions hostWithDtds(const std::filesystem::path& dtds) {
    StandInHostOptions options;
    options.resolvePublicId = [dtds](std::string_view publicId) -> std::optional<std::string> {
        const bool isMap = publicId.find("Map") != std::string_view::npos;
        return (dtds / (isMap ? "map.dtd" : "topic.dtd")).string();
    };
    return options;
}

}  // namespace marrowpress
