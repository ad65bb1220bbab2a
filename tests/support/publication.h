#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/stand_in_host.h"
#include "host/stand_in_host_options.h"

namespace marrowpress {

/// What a request came to, as text that can be compared: the working folder reads "$CASE", and
/// generated ids read "id-1", "id-2", in the order in which they appear.
struct Publication {
    std::string answer;    ///< the typed values, one a line
    std::string console;   ///< the report lines
    std::string progress;  ///< the progress lines
    std::string trace;     ///< the host operations, one a line
    /// What the run left behind beside its input, by path.
    std::map<std::string, std::string> files;
};

/// A golden publication: a folder with a request, its input, and what is expected of it.
///
///     request.json   the request; "$CASE" in it is the working folder
///     input/         copied to the working folder, with what all cases have (may be missing)
///     open.json      the documents open in the host (may be missing)
///     real-dtds      if it is there, the system's DITA DTDs are used and not the tests' own
///     expected/      answer.txt, console.txt, progress.txt, files/
class PublicationCase {
public:
    /// `name` is that of a golden publication, or the path of a folder like theirs.
    explicit PublicationCase(const std::string& name);

    /// Publishes through the module, in a fresh copy of the input. The host has an observer if
    /// `onObservation` is given.
    Publication publish(StandInHostOptions::ObservationSink onObservation = {}) const;

    /// Publishes by the code of this program, in a fresh copy of the input.
    Publication publishInProcess() const;

    /// What is expected. When MARROWPRESS_UPDATE_GOLDEN is 1, that becomes `actual` first.
    Publication golden(const Publication& actual) const;

private:
    /// Hands a request to a client of a host with these options.
    using Sender =
        std::function<std::optional<TypedValues>(StandInHostOptions, const std::string&)>;

    Publication publishBy(const Sender& send,
                          StandInHostOptions::ObservationSink onObservation) const;

    std::filesystem::path folder_;
};

/// The names of all cases.
std::vector<std::string> publicationCases();

}  // namespace marrowpress
