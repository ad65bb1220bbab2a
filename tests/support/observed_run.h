#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/recording_observer.h"
#include "tests/support/whole_request.h"

/// Whole requests to a host that has an observer, and what it was told.
namespace marrowpress {

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
