#include "host/local_xml_input.h"

#include <fcntl.h>
#include <libxml/parser.h>
#include <libxml/xmlIO.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <utility>

#include "host/close_file.h"
#include "host/fatal_catalog.h"

namespace marrowpress {
namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

bool isUnescapedInUri(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') ||
           std::string_view("-._~/").find(character) != std::string_view::npos;
}

/// Value of a hexadecimal digit, -1 for any other character.
int hexValue(char character) {
    if (character >= '0' && character <= '9') {
        return character - '0';
    }
    if (character >= 'a' && character <= 'f') {
        return character - 'a' + 10;
    }
    if (character >= 'A' && character <= 'F') {
        return character - 'A' + 10;
    }
    return -1;
}

std::string undoPercentEscapes(std::string_view text) {
    std::string plain;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const bool isEscape = text[index] == '%' && index + 2 < text.size() &&
                              hexValue(text[index + 1]) >= 0 && hexValue(text[index + 2]) >= 0;
        if (!isEscape) {
            plain += text[index];
            continue;
        }
        plain += static_cast<char>(hexValue(text[index + 1]) * 16 + hexValue(text[index + 2]));
        index += 2;
    }
    return plain;
}

/// The path that libxml2 means by `name`, a URI or a plain path; empty when it isn't local.
std::optional<std::string> localPath(const char* name) {
    if (!name || *name == '\0') {
        return std::nullopt;
    }
    if (*name == '/') {
        return std::string(name);
    }
    return fileUriToPath(name);
}

/// What `takeLibxmlFailure` gives, as an error of the system; 0 for none.
int firstFailure = 0;

/// Notes why nothing is known of a file; one that isn't there is known.
void noteFailure(int error) {
    const bool isUnknown = error == EMFILE || error == ENFILE || error == ENOMEM ||
                           error == ENOSPC || error == EIO || error == EINTR || error == EACCES;
    if (isUnknown && firstFailure == 0) {
        firstFailure = error;
    }
}

bool isRegularFile(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        noteFailure(errno);
        return false;
    }
    return S_ISREG(status.st_mode);
}

bool isRegularFile(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        noteFailure(errno);
        return false;
    }
    return S_ISREG(status.st_mode);
}

int matchesEveryName(const char*) {
    return 1;
}

/// Null while nobody wants to know which files are looked for.
const std::function<void(const std::string&)>* fileSink = nullptr;

void* openLocalFile(const char* name) {
    const std::optional<std::string> path = localPath(name);
    if (path && fileSink) {
        (*fileSink)(*path);
    }
    // Asked before opening as well: a FIFO or a device must not even be opened.
    if (!path || !isRegularFile(*path)) {
        return nullptr;
    }
    const int descriptor = open(path->c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) {
        noteFailure(errno);
        return nullptr;
    }
    std::unique_ptr<std::FILE, CloseFile> file(fdopen(descriptor, "rb"));
    if (!file) {
        noteFailure(errno);
        close(descriptor);
        return nullptr;
    }
    if (!isRegularFile(descriptor) || isFatalCatalog(descriptor)) {
        return nullptr;
    }
    if (lseek(descriptor, 0, SEEK_SET) != 0) {
        noteFailure(errno);
        return nullptr;
    }
    // From here on it is libxml2's, which hands it back to be closed.
    return file.release();
}

int readLocalFile(void* context, char* buffer, int length) {
    auto* const file = static_cast<std::FILE*>(context);
    const std::size_t count = std::fread(buffer, 1, static_cast<std::size_t>(length), file);
    if (std::ferror(file) != 0) {
        noteFailure(errno);
        return -1;
    }
    return static_cast<int>(count);
}

int closeLocalFile(void* context) {
    const std::unique_ptr<std::FILE, CloseFile> file(static_cast<std::FILE*>(context));
    return 0;
}

void ignoreError(void*, const char*, ...) {}

void noteStructuredError(void*, xmlErrorPtr error) {
    if (error && error->code == XML_ERR_NO_MEMORY) {
        noteFailure(ENOMEM);
    }
}

bool isRestricted = false;

/// What the thread had before.
xmlGenericErrorFunc earlierErrorFunction = nullptr;
void* earlierErrorContext = nullptr;
xmlStructuredErrorFunc earlierStructuredFunction = nullptr;
void* earlierStructuredContext = nullptr;

void installRestrictions() {
    xmlInitParser();
    earlierErrorFunction = xmlGenericError;
    earlierErrorContext = xmlGenericErrorContext;
    earlierStructuredFunction = xmlStructuredError;
    earlierStructuredContext = xmlStructuredErrorContext;
    // The built-in handlers, those for http and ftp among them, go first.
    xmlCleanupInputCallbacks();
    xmlRegisterInputCallbacks(matchesEveryName, openLocalFile, readLocalFile, closeLocalFile);
    xmlSetGenericErrorFunc(nullptr, ignoreError);
    xmlSetStructuredErrorFunc(nullptr, noteStructuredError);
}

}  // namespace

std::string toFileUri(std::string_view absolutePath) {
    std::string uri = "file://";
    for (const char character : absolutePath) {
        if (isUnescapedInUri(character)) {
            uri += character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        uri += '%';
        uri += kHexDigits[byte >> 4];
        uri += kHexDigits[byte & 0xF];
    }
    return uri;
}

std::optional<std::string> fileUriToPath(std::string_view uri) {
    constexpr std::string_view kScheme = "file:";
    if (!uri.starts_with(kScheme)) {
        return std::nullopt;
    }
    uri.remove_prefix(kScheme.size());
    if (uri.starts_with("//")) {
        uri.remove_prefix(2);
        constexpr std::string_view kLocalhost = "localhost";
        if (uri.starts_with(kLocalhost)) {
            uri.remove_prefix(kLocalhost.size());
        }
    }
    if (!uri.starts_with('/')) {
        return std::nullopt;
    }
    std::string path = undoPercentEscapes(uri.substr(0, uri.find_first_of("?#")));
    if (path.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    return path;
}

void restrictLibxmlToLocalFiles() {
    if (!std::exchange(isRestricted, true)) {
        installRestrictions();
    }
}

void endLibxmlRestrictions() {
    if (!std::exchange(isRestricted, false)) {
        return;
    }
    xmlCleanupInputCallbacks();
    xmlRegisterDefaultInputCallbacks();
    xmlSetGenericErrorFunc(earlierErrorContext, earlierErrorFunction);
    xmlSetStructuredErrorFunc(earlierStructuredContext, earlierStructuredFunction);
}

LibxmlFileSink::LibxmlFileSink(const std::function<void(const std::string&)>& onFile) {
    fileSink = onFile ? &onFile : nullptr;
}

LibxmlFileSink::~LibxmlFileSink() {
    fileSink = nullptr;
}

std::error_code takeLibxmlFailure() {
    return {std::exchange(firstFailure, 0), std::generic_category()};
}

}  // namespace marrowpress
