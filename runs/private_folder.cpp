#include "runs/private_folder.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "host/utf8.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void refuse(const fs::path& parent, const std::string& reason) {
    throw ScratchError("cannot make a folder in " + parent.string() + " (TMPDIR): " + reason);
}

fs::path parentFolder() {
    const char* const named = std::getenv("TMPDIR");
    const fs::path parent = fs::absolute(named && *named != '\0' ? named : "/tmp");
    if (parent.string().find('\\') != std::string::npos) {
        refuse(parent, "a backslash would be read as a slash");
    }
    if (!isValidUtf8(parent.string())) {
        refuse(parent, "the path is not UTF-8");
    }
    return parent.lexically_normal();
}

}  // namespace

PrivateFolder::PrivateFolder() {
    const fs::path parent = parentFolder();
    std::string pattern = (parent / "marrowpress-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
        refuse(parent, std::generic_category().message(errno));
    }
    path_ = pattern;
}

PrivateFolder::~PrivateFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

}  // namespace marrowpress
