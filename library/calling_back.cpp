#include "library/calling_back.h"

#include <algorithm>
#include <system_error>
#include <utility>
#include <vector>

#include "library/failure.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

thread_local unsigned askingDepth = 0;
/// Those of the calls that this thread is in, from the outermost.
thread_local std::vector<fs::path> foldersOfCalls;

bool isSameFolder(const fs::path& left, const fs::path& right) {
    std::error_code ignored;
    return left == right || fs::equivalent(left, right, ignored);
}

}  // namespace

Asking::Asking() noexcept {
    ++askingDepth;
}

Asking::~Asking() {
    --askingDepth;
}

bool Asking::isGoingOn() noexcept {
    return askingDepth > 0;
}

FolderTurn::FolderTurn(fs::path folder) {
    const bool isTaken =
        !folder.empty() &&
        std::any_of(foldersOfCalls.begin(), foldersOfCalls.end(),
                    [&folder](const fs::path& other) { return isSameFolder(folder, other); });
    if (isTaken) {
        throw LibraryFailure(MP_BUSY, "the run that is calling back writes into the same folder");
    }
    foldersOfCalls.push_back(std::move(folder));
}

FolderTurn::~FolderTurn() {
    foldersOfCalls.pop_back();
}

}  // namespace marrowpress
