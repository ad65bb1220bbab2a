#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "application/connection.h"
#include "host/stand_in_host.h"

namespace marrowpress {

/// A host for unit tests: connected to the host operations while it lives,
/// it answers like the stand-in host and records what it was asked.
class RecordingHost {
public:
    /// `openDocuments` are the session's.
    explicit RecordingHost(std::vector<OpenDocument> openDocuments = {});
    RecordingHost(const RecordingHost&) = delete;
    RecordingHost& operator=(const RecordingHost&) = delete;
    ~RecordingHost();

    /// What "XmlUtilities" answers for public identifiers; UTF-8.
    std::map<std::string, std::string> pathsByPublicId;

    /// The commands that "XmlUtilities" got since the start or the last `forget`, in order.
    const std::vector<std::string>& commands() const noexcept { return commands_; }
    /// The console texts, each with its CR and LF.
    const std::vector<std::string>& console() const noexcept { return console_; }
    const std::vector<std::string>& progress() const noexcept { return progress_; }
    void forget();

private:
    class Recorder;

    std::vector<std::string> commands_;
    std::vector<std::string> console_;
    std::vector<std::string> progress_;
    std::unique_ptr<Recorder> recorder_;
};

/// The command that opens, and the one that ends, a session about the document at `path`.
std::string startOf(const std::string& path);
inline const std::string kEnd = "EntityResolver end";
inline const std::string kTerminate = "EntityResolver terminate";
/// The question for a public identifier.
std::string questionFor(const std::string& publicId);

}  // namespace marrowpress
