#include "cli/file_replacement.h"

#include <boost/iostreams/concepts.hpp>
#include <boost/iostreams/stream.hpp>
#include <cerrno>
#include <exception>
#include <fstream>
#include <ostream>
#include <system_error>

#include "cli/file_failure.h"
#include "cli/new_file.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

void writeInPlace(const fs::path& path, const std::function<void(std::ostream&)>& fill) {
    errno = 0;
    std::ofstream out(path, std::ios::binary);
    fill(out);
    out.close();
    if (!out) {
        throw FileFailure::ofLastCall(FileAction::kWrite, path.string());
    }
}

/// Where a stream writes a new file. The stream takes what is thrown here, and goes bad.
class NewFileSink : public boost::iostreams::sink {
public:
    /// @param fault  Gets the first one.
    NewFileSink(NewFile& file, std::exception_ptr& fault) : file_(&file), fault_(&fault) {}

    std::streamsize write(const char* text, std::streamsize size) const {
        if (*fault_) {
            std::rethrow_exception(*fault_);
        }
        try {
            file_->write({text, static_cast<std::size_t>(size)});
        } catch (const FileFailure&) {
            *fault_ = std::current_exception();
            throw;
        }
        return size;
    }

private:
    NewFile* file_;
    std::exception_ptr* fault_;
};

}  // namespace

void replaceFile(const fs::path& path, std::string_view text) {
    replaceFile(path, [text](std::ostream& out) { out << text; });
}

void replaceFile(const fs::path& path, const std::function<void(std::ostream&)>& fill) {
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        writeInPlace(path, fill);
        return;
    }
    // A link stays, and what it leads to is replaced.
    const fs::path file = fs::absolute(fs::exists(status) ? fs::canonical(path) : path);
    NewFile successor(passingPath(file.parent_path()), path);
    std::exception_ptr fault;
    boost::iostreams::stream<NewFileSink> out{NewFileSink(successor, fault)};
    fill(out);
    out.flush();
    if (fault) {
        std::rethrow_exception(fault);
    }
    successor.close();
    successor.replace(file);
}

}  // namespace marrowpress
