#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace marrowpress {

/// The `file:` URI of an absolute path, with everything but letters, digits and `-._~/` escaped.
std::string toFileUri(std::string_view absolutePath);

/// The absolute path that a `file:` URI names, with its percent escapes undone; empty for every
/// other scheme, for a host other than "localhost", and for what names no path.
std::optional<std::string> fileUriToPath(std::string_view uri);

/// Takes libxml2 off the network and off the terminal, for the process: it opens regular files on
/// this machine only, whatever a catalog points to, and keeps its diagnostics to itself. Does
/// nothing where that is so already.
void restrictLibxmlToLocalFiles();

/// Gives libxml2 back to a process that uses it as well, as it came. What others have registered
/// for its input is not there again. On the thread that restricted it.
void endLibxmlRestrictions();

/// While it lives, `onFile`, which may be empty and must outlive it, gets the path of each local
/// file that libxml2 looks for. One may live at a time.
class LibxmlFileSink {
public:
    explicit LibxmlFileSink(const std::function<void(const std::string&)>& onFile);
    LibxmlFileSink(const LibxmlFileSink&) = delete;
    LibxmlFileSink& operator=(const LibxmlFileSink&) = delete;
    ~LibxmlFileSink();
};

/// The first failure of libxml2 for want of file descriptors, memory or rights, or by the disk,
/// since the last call; empty when there was none. It tells its callers only that there is nothing,
/// as of a missing file.
std::error_code takeLibxmlFailure();

}  // namespace marrowpress
