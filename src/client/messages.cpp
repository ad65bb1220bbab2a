#include "client/messages.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "client/host_operations.h"
#include "support/request_singleton.h"

namespace marrowpress {
namespace {

/// A line as it goes to the host. Never longer than its buffer, NUL included.
class MessageLine {
public:
    template <class... Arguments>
    explicit MessageLine(MessageId id, const Arguments&... arguments) {
        // The texts are this module's own, each with as many %s as its function has arguments.
        // NOLINTNEXTLINE(clang-diagnostic-format-security): no text comes from outside
        std::snprintf(buffer_.data(), buffer_.size(), messageText(id).data(), arguments.c_str()...);
        length_ = std::strlen(buffer_.data());
    }

    /// Adds `unit` unless the line already fills its buffer.
    void append(char unit) {
        if (length_ + 1 < buffer_.size()) {
            buffer_[length_++] = unit;
        }
    }

    const char* text() const { return buffer_.data(); }

private:
    std::array<char, 4096> buffer_{};
    std::size_t length_ = 0;
};

void showProgress(const MessageLine& line) {
    constexpr std::int32_t kLineKind = 4;
    constexpr std::int32_t kNoNumber = -1;
    HostReportProgress(kLineKind, line.text(), kNoNumber);
}

void writeReport(MessageLine line) {
    line.append('\r');
    line.append('\n');
    HostConsoleWrite(line.text());
}

}  // namespace

ProgressMessenger& ProgressMessenger::instance() {
    return RequestSingleton<ProgressMessenger>::instance();
}

void ProgressMessenger::reportProgress(MessageId id) {
    showProgress(MessageLine(id));
}

void ProgressMessenger::reportAppending(const std::string& fileName) {
    showProgress(MessageLine(MessageId::kAppending, fileName));
}

ReportMessenger& ReportMessenger::instance() {
    return RequestSingleton<ReportMessenger>::instance();
}

void ReportMessenger::reportMessage(MessageId id, const std::string& argument) {
    writeReport(MessageLine(id, argument));
}

void ReportMessenger::reportElementNotFound(const std::string& tag, const std::string& id,
                                            const std::string& file) {
    writeReport(MessageLine(MessageId::kElementNotFound, tag, id, file));
}

void ReportMessenger::reportElementInTopicNotFound(const std::string& tag,
                                                   const std::string& elementId,
                                                   const std::string& topicId,
                                                   const std::string& file) {
    writeReport(MessageLine(MessageId::kElementInTopicNotFound, tag, elementId, topicId, file));
}

void ReportMessenger::reportInvalidConrefEnd() {
    writeReport(MessageLine(MessageId::kInvalidConrefEnd));
}

}  // namespace marrowpress
