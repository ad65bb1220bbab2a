#include "host/client_module.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>
#include <system_error>

namespace marrowpress {
namespace {

constexpr const char* kModuleName = "marrowpress_client.so";

std::string lastLoaderError() {
    const char* const text = dlerror();
    return text ? text : "unknown reason";
}

}  // namespace

void ClientModule::Close::operator()(void* handle) const noexcept {
    dlclose(handle);
}

ClientModule::ClientModule(const std::filesystem::path& path, AtEnd atEnd)
    : handle_(dlopen(path.c_str(),
                     RTLD_NOW | RTLD_LOCAL | (atEnd == AtEnd::kStays ? RTLD_NODELETE : 0))),
      entry_(nullptr) {
    if (!handle_) {
        throw std::runtime_error("cannot load the client module: " + lastLoaderError());
    }
    entry_ = reinterpret_cast<ClientEntry>(dlsym(handle_.get(), kClientEntryName));
    if (!entry_) {
        throw std::runtime_error(path.string() + " is no client module: " + lastLoaderError());
    }
}

std::filesystem::path defaultModulePath() {
    const std::filesystem::path folder =
        std::filesystem::read_symlink("/proc/self/exe").parent_path();
    std::filesystem::path beside = folder / kModuleName;
    std::filesystem::path installed =
        (folder / MARROWPRESS_MODULE_FOLDER / kModuleName).lexically_normal();
    std::error_code ignored;
    if (!std::filesystem::exists(beside, ignored) && std::filesystem::exists(installed, ignored)) {
        return installed;
    }
    return beside;
}

}  // namespace marrowpress
