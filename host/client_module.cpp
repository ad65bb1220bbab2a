#include "host/client_module.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

#include "host/own_place.h"

namespace marrowpress {
namespace {

constexpr const char* kModuleName = "marrowpress_client.so";
const InstalledPaths kInstalledModule{MARROWPRESS_MODULE_FROM_PROGRAM,
                                      MARROWPRESS_MODULE_FROM_LIBRARY};

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
    return findBesideOrInstalled(kModuleName, kInstalledModule);
}

}  // namespace marrowpress
