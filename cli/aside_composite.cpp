#include "cli/aside_composite.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/algorithm/string/replace.hpp>
#include <boost/iostreams/device/mapped_file.hpp>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/file_failure.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kFolderBegin = ".marrowpress-";
/// Shows that a folder is one of ours, and is locked by who works in it.
constexpr const char* kOwnerName = "owner";
constexpr std::string_view kOwnerText = "A private folder of marrowpress, which removes it.\n";
/// The owner's file until it is locked.
constexpr const char* kComingOwnerName = "new";
/// The client holds the folder that it writes into by a lock of its own.
constexpr const char* kWorkName = "work";

class OpenFile {
public:
    OpenFile(const fs::path& path, int flags)
        : descriptor_(open(path.c_str(), flags | O_CLOEXEC)) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }

    int get() const noexcept { return descriptor_; }

private:
    int descriptor_;
};

/// Whether the file is an owner's, as far as it has come.
bool isOwner(const fs::path& path) {
    std::error_code ignored;
    if (!fs::is_regular_file(fs::symlink_status(path, ignored))) {
        return false;
    }
    std::ifstream in(path, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    return in && kOwnerText.starts_with(text);
}

/// Removes the folder if it is one of ours, and nobody works in it.
void removeUnlessHeld(const fs::path& folder) {
    std::error_code ignored;
    for (const char* const name : {kOwnerName, kComingOwnerName}) {
        const fs::path owner = folder / name;
        if (!isOwner(owner)) {
            continue;
        }
        const OpenFile lock(owner, O_RDONLY);
        if (lock.get() >= 0 && flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
            fs::remove_all(folder, ignored);
        }
        return;
    }
    // Its maker came no further; one that holds anything does not go this way.
    fs::remove(folder, ignored);
}

/// Makes a locked owner's file in the folder, and gives its descriptor; -1 when a batch took the
/// folder for one that was left, and removed it.
int makeOwner(const fs::path& folder) {
    const fs::path coming = folder / kComingOwnerName;
    std::ofstream(coming, std::ios::binary) << kOwnerText;
    const int lock = open(coming.c_str(), O_RDONLY | O_CLOEXEC);
    if (lock < 0) {
        return -1;
    }
    if (flock(lock, LOCK_EX | LOCK_NB) != 0 ||
        rename(coming.c_str(), (folder / kOwnerName).c_str()) != 0) {
        close(lock);
        return -1;
    }
    return lock;
}

}  // namespace

AsideComposite::AsideComposite(fs::path place) : place_(std::move(place)) {
    constexpr int kTries = 10;
    for (int tries = 0; lock_ < 0; ++tries) {
        std::string pattern =
            (place_.parent_path() / (std::string(kFolderBegin) + "XXXXXX")).string();
        const HeldSignals held;
        if (!mkdtemp(pattern.data()) || tries == kTries) {
            throw FileFailure::ofLastCall(FileAction::kWrite, place_.string());
        }
        folder_ = pattern;
        removal_.emplace(pattern);
        lock_ = makeOwner(folder_);
        if (lock_ < 0) {
            removal_.reset();
            std::error_code ignored;
            fs::remove_all(folder_, ignored);
        }
    }
    std::error_code error;
    fs::create_directory(folder_ / kWorkName, error);
    path_ = folder_ / kWorkName / place_.filename();
}

AsideComposite::~AsideComposite() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
    close(lock_);
}

void AsideComposite::moveToPlace() const {
    if (rename(path_.c_str(), place_.c_str()) != 0) {
        throw FileFailure::ofLastCall(FileAction::kWrite, place_.string());
    }
}

bool AsideComposite::isTold() const {
    std::error_code ignored;
    if (fs::file_size(path_, ignored) == 0 || ignored) {
        return false;
    }
    const boost::iostreams::mapped_file_source text(path_.string());
    return std::string_view(text.data(), text.size()).find(folder_.filename().string()) !=
           std::string_view::npos;
}

std::string AsideComposite::asOfPlace(std::string text) const {
    const std::string name = folder_.filename().string();
    if (text.find(name) == std::string::npos) {
        return text;
    }
    boost::replace_all(text, name + "/" + kWorkName + "/", "");
    boost::replace_all(text, "/" + name + "/" + kWorkName, "");
    return text;
}

Finding AsideComposite::asOfPlace(Finding finding) const {
    for (std::string* const text :
         {&finding.text, &finding.place.file, &finding.target, &finding.hint}) {
        *text = asOfPlace(std::move(*text));
    }
    for (FindingPlace& place : finding.places) {
        place.file = asOfPlace(std::move(place.file));
    }
    for (FindingStep& step : finding.via) {
        step.place.file = asOfPlace(std::move(step.place.file));
        step.what = asOfPlace(std::move(step.what));
    }
    if (finding.hostText) {
        finding.hostText = asOfPlace(std::move(*finding.hostText));
    }
    return finding;
}

void removeLeftAside(const fs::path& folder) {
    std::error_code error;
    std::vector<fs::path> left;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code ignored;
        if (entry->path().filename().string().starts_with(kFolderBegin) &&
            entry->symlink_status(ignored).type() == fs::file_type::directory) {
            left.push_back(entry->path());
        }
    }
    for (const fs::path& path : left) {
        removeUnlessHeld(path);
    }
}

}  // namespace marrowpress
