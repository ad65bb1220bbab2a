#include "host/own_place.h"

#include <dlfcn.h>
#include <link.h>

#include <string>
#include <system_error>

namespace marrowpress {
namespace {

/// The path under which the loader knows the library; empty for the program.
std::string libraryPath() {
    Dl_info info{};
    void* found = nullptr;
    const auto* const here = reinterpret_cast<const void*>(&isInLibrary);
    if (dladdr1(here, &info, &found, RTLD_DL_LINKMAP) == 0 || !found) {
        return {};
    }
    return static_cast<const link_map*>(found)->l_name;
}

}  // namespace

bool isInLibrary() {
    return !libraryPath().empty();
}

std::filesystem::path ownPath() {
    const std::string library = libraryPath();
    // Once, since a relative path is one of the folder that was current when it was loaded.
    static const std::filesystem::path path = library.empty()
                                                  ? std::filesystem::read_symlink("/proc/self/exe")
                                                  : std::filesystem::canonical(library);
    return path;
}

std::filesystem::path findBesideOrInstalled(const std::filesystem::path& name,
                                            const InstalledPaths& installed) {
    const std::filesystem::path folder = ownPath().parent_path();
    std::filesystem::path beside = folder / name;
    std::filesystem::path elsewhere =
        (folder / (isInLibrary() ? installed.fromLibrary : installed.fromProgram))
            .lexically_normal();
    std::error_code ignored;
    if (!std::filesystem::exists(beside, ignored) && std::filesystem::exists(elsewhere, ignored)) {
        return elsewhere;
    }
    return beside;
}

}  // namespace marrowpress
