#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/open_documents.h"
#include "marrowpress/messages.h"
#include "marrowpress/observer.h"

namespace marrowpress {

class Trace;

/// What a host operation throws because somebody wants the run to end.
class RunInterrupted : public std::runtime_error {
public:
    RunInterrupted() : std::runtime_error("the run was interrupted") {}
};

/// What a stand-in host has to offer. Every member may be left as it is.
struct StandInHostOptions {
    using PublicIdResolver = std::function<std::optional<std::string>(std::string_view)>;
    using LineSink = std::function<void(std::string_view)>;
    using ObservationSink = std::function<void(const Observation&)>;
    using ConsoleSink = std::function<void(std::optional<MessageId>, std::string_view)>;

    /// The session's open documents, in order.
    std::vector<OpenDocument> openDocuments;
    /// Answers for the client "XmlUtilities", which does not exist without it. One that throws has
    /// no answer, and ends the run.
    PublicIdResolver resolvePublicId;
    /// Takes the text of each progress line.
    LineSink onProgress;
    /// Takes each console text as it came, line end included, and the message that it is of;
    /// without one for a text that is none of the module's messages.
    ConsoleSink onConsole;
    /// Takes what a run meets. Without it the host has no observer.
    ObservationSink onObservation;
    /// Takes references that a run meets, among what the one above takes. Without it the host has
    /// no observer of references.
    ObservationSink onReference;
    /// Takes the path of a document that the client begins with, and an empty one when it ends with
    /// the last: the commands "start" and "end" to "XmlUtilities".
    LineSink onDocument;
    /// Asked at each operation of a request, and when a phase has been observed, whether the run is
    /// to end early.
    std::function<bool()> isInterrupted;
    /// Gets every host operation; must outlive the host.
    Trace* trace = nullptr;
};

}  // namespace marrowpress
