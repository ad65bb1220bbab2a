#include "cli/request_files.h"

#include <algorithm>
#include <boost/json/parse.hpp>
#include <string_view>
#include <utility>

#include "cli/options.h"
#include "cli/publish_paths.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// The object behind "params"; empty when the client would find none.
boost::json::object paramsOf(const std::string& text) {
    boost::json::error_code error;
    // What follows a NUL is not sent.
    const boost::json::value root = boost::json::parse(std::string_view(text.c_str()), error);
    const boost::json::object* const request = error ? nullptr : root.if_object();
    const boost::json::value* const params = request ? request->if_contains("params") : nullptr;
    const boost::json::object* const found = params ? params->if_object() : nullptr;
    return found ? *found : boost::json::object();
}

/// The client takes a backslash for a separator.
std::string withSlashes(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

/// Empty where there is no such text, as for an empty one, which names nothing.
std::string textAt(const boost::json::object& params, std::string_view key) {
    const boost::json::value* const value = params.if_contains(key);
    const boost::json::string* const text = value ? value->if_string() : nullptr;
    return text ? std::string(*text) : std::string();
}

class RequestFiles {
public:
    explicit RequestFiles(const std::string& text) : params_(paramsOf(text)) {}

    std::vector<RequestFile> take() {
        addSource("ditamap");
        addSource("ditaVal");
        addOutputs("output", OutputFormat::kComposite);
        addOutputs("outputDir", OutputFormat::kFlatBook);
        return std::move(files_);
    }

private:
    void addSource(std::string_view key) {
        const std::string path = textAt(params_, key);
        if (path.empty()) {
            return;
        }
        RunOptions options;
        options.map = withSlashes(path);
        files_.push_back({quoted(key), resolvePublishPaths(options).map, false});
        // A profile's path is read as it stands.
        files_.push_back({quoted(key), fs::absolute(path), false});
    }

    void addOutputs(std::string_view key, OutputFormat format) {
        RunOptions options;
        options.map = "/";
        options.format = format;
        options.output = withSlashes(textAt(params_, key));
        if (options.output.empty()) {
            return;
        }
        const PublishPaths paths = resolvePublishPaths(options);
        for (const NamedPath& output : outputsOf(options, paths)) {
            const bool isNamed = output.path == paths.output;
            files_.push_back({isNamed ? quoted(key) : "a temporary file", output.path, true});
        }
    }

    static std::string quoted(std::string_view key) { return '"' + std::string(key) + '"'; }

    boost::json::object params_;
    std::vector<RequestFile> files_;
};

}  // namespace

std::vector<RequestFile> filesOfRequest(const std::string& text) {
    return RequestFiles(text).take();
}

}  // namespace marrowpress
