#pragma once

#include <string>
#include <string_view>

#include "marrowpress/messages.h"

/// The lines of a run: each is formatted with its arguments, cut at 4095 bytes
/// and handed to the host. Arguments are UTF-8 and end at their first NUL.
namespace marrowpress {

/// Shows the state of a run.
class ProgressMessenger {
public:
    static ProgressMessenger& instance();

    /// A line without arguments.
    void reportProgress(MessageId id);
    /// Tells that the document of this file name is being appended.
    void reportAppending(const std::string& fileName);
};

/// Writes what people have to look after on the host's console, each line ended by CR and LF
/// where the cut leaves room for them. No line changes the status of a run.
class ReportMessenger {
public:
    static ReportMessenger& instance();

    /// A line with one argument.
    void reportMessage(MessageId id, const std::string& argument);
    void reportElementNotFound(const std::string& tag, const std::string& id,
                               const std::string& file);
    void reportElementInTopicNotFound(const std::string& tag, const std::string& elementId,
                                      const std::string& topicId, const std::string& file);
    void reportInvalidConrefEnd();
};

}  // namespace marrowpress
