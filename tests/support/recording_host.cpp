#include "tests/support/recording_host.h"

#include <boost/json/parse.hpp>
#include <sstream>
#include <streambuf>

#include "application/host_operations.h"
#include "host/trace.h"

namespace marrowpress {
namespace {

StandInHostOptions::LineSink appendTo(std::vector<std::string>& lines) {
    return [&lines](std::string_view line) { lines.emplace_back(line); };
}

/// Takes whole lines of a trace, and gives each to `take`.
class LineBuffer final : public std::streambuf {
public:
    explicit LineBuffer(std::function<void(const std::string&)> take) : take_(std::move(take)) {}

protected:
    int_type overflow(int_type unit) override {
        if (unit == '\n') {
            take_(line_);
            line_.clear();
        } else {
            line_ += static_cast<char>(unit);
        }
        return unit;
    }

private:
    std::function<void(const std::string&)> take_;
    std::string line_;
};

}  // namespace

class RecordingHost::Recorder {
public:
    Recorder(RecordingHost& owner, std::vector<OpenDocument> openDocuments)
        : buffer_([&owner](const std::string& line) {
              const boost::json::value operation = boost::json::parse(line);
              if (const auto* command = operation.as_object().if_contains("command")) {
                  owner.commands_.emplace_back(command->as_string());
              }
          }),
          stream_(&buffer_),
          trace_(stream_),
          host_(options(owner, std::move(openDocuments))),
          interfaces_(host_.provider()) {
        forgetHostExceptions();
        interfaces_.askWhoFreesTexts();
        interfaces_.connect();
    }

private:
    StandInHostOptions options(RecordingHost& owner, std::vector<OpenDocument> openDocuments) {
        StandInHostOptions options;
        options.openDocuments = std::move(openDocuments);
        options.resolvePublicId =
            [&owner](std::string_view publicId) -> std::optional<std::string> {
            const auto found = owner.pathsByPublicId.find(std::string(publicId));
            if (found == owner.pathsByPublicId.end()) {
                return std::nullopt;
            }
            return found->second;
        };
        options.onConsole = [&owner](std::optional<MessageId>, std::string_view line) {
            owner.console_.emplace_back(line);
        };
        options.onProgress = appendTo(owner.progress_);
        options.trace = &trace_;
        return options;
    }

    LineBuffer buffer_;
    std::ostream stream_;
    Trace trace_;
    StandInHost host_;
    QsApiInterfacesC interfaces_;
};

RecordingHost::RecordingHost(std::vector<OpenDocument> openDocuments)
    : recorder_(std::make_unique<Recorder>(*this, std::move(openDocuments))) {}

RecordingHost::~RecordingHost() = default;

void RecordingHost::forget() {
    commands_.clear();
    console_.clear();
    progress_.clear();
}

std::string startOf(const std::string& path) {
    return "EntityResolver start -basefile \"" + path + "\"";
}

std::string questionFor(const std::string& publicId) {
    return "EntityResolver resolveentity -publicid \"" + publicId + "\"";
}

}  // namespace marrowpress
