#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "marrowpress/observer.h"
#include "tests/support/whole_request.h"

/// Whole requests to a host that has an observer, and what it was told.
namespace marrowpress {

/// A copy of an observation that outlives the call.
struct ObservedCopy {
    struct Place {
        std::string file;  ///< empty when it is not known
        std::uint32_t line = 0;
        std::uint32_t column = 0;
    };
    struct Step {
        Place place;
        std::string attribute;
        std::string target;
    };

    explicit ObservedCopy(const Observation& observation);

    bool isArtefact() const { return (flags & kArtefact) != 0; }

    ObservationKind kind;
    std::uint32_t code;
    std::uint32_t flags;
    std::string element;
    std::string target;
    std::string detail;
    std::string reason;
    std::string line;
    std::vector<Step> steps;
    std::vector<Place> related;
};

/// A line about an observation, what is empty left out, the code too where the kind has none:
///
///     artefact 204 a.dita:3:1 <xref> /b.dita#nope detail=D reason=R ring a.dita:3:1 b.dita:4:1
///
/// and behind that, in the same line, " via root.ditamap:3:1 href=a.dita" for each further step.
std::string printed(const ObservedCopy& observation);

/// A client attached to a host with an observer. Maps and topics of the test have DTDs, which
/// "dtd/" in its folder holds and the host finds by public identifier. All elements may stand
/// anywhere, and have the usual attributes.
class ObservedRunTest : public WholeRequestTest {
protected:
    ObservedRunTest();

    /// Writes a map, or a topic whose id is the name without folder and extension. The content
    /// begins in line 3, column 1.
    void writeMap(std::string_view name, std::string_view content) const;
    void writeTopic(std::string_view name, std::string_view content) const;
    /// Writes a profile that excludes `audience="x"`, which the next requests take.
    void excludeX();

    /// Publishes "root.ditamap", which has this content, and gives the lines of the faults, one
    /// below the other.
    std::string compositeFaults(std::string_view mapContent);
    std::string flatBookFaults(std::string_view mapContent);

    /// Lines of what the last request told. Places name files relative to the test's folder, in
    /// other texts its path is left out, so that an absolute path in it begins with "/".
    std::string faults() const;
    /// The faults of that code.
    std::string faults(FaultCode code) const;
    std::string observed(ObservationKind kind) const;

    std::vector<ObservedCopy> observations;  ///< of the last request
    /// Stands for the profile of a request; empty for none.
    std::string profile;
    bool usePrint = false;  ///< of the next requests
    std::int32_t lastStatus = 0;

private:
    ObservedCopy inFolder(ObservedCopy observation) const;
    std::string lines(const std::function<bool(const ObservedCopy&)>& isWanted) const;
    std::string publish(std::string_view mapContent, bool isFlatBook);
    StandInHostOptions observedOptions();
};

}  // namespace marrowpress
