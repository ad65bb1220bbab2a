#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "findings/collector.h"
#include "marrowpress/observer.h"

namespace marrowpress {

/// Where the components of a flat book stand, or would stand.
struct BookPlaces {
    std::filesystem::path written;   ///< The folder that the client was given.
    std::filesystem::path intended;  ///< The one that was asked for; empty when none was.
    bool isAtOneLocation = false;    ///< As it was asked for.
    bool isOnlyLookedAt = false;     ///< Nothing is to be touched outside of `written`.
};

/// Watches the components of a flat book: that no two sources fall into one, and that none takes
/// the place of a file that no run has written. Such a file is kept beside it.
class ComponentPlaces {
public:
    explicit ComponentPlaces(BookPlaces places) : places_(std::move(places)) {}

    /// To be told of everything that the run meets, when it is met: what stands in a component's
    /// place is moved aside before the client writes there.
    void observe(const Observation& observation);

    void addFindings(FindingCollector& collector) const;

    /// The files that were looked at, whether they are there or not.
    std::vector<std::string> paths() const;

private:
    struct Component {
        std::string path;  ///< Where it was asked for.
        std::string source;
        FindingPlace reference;
        std::string element;
        std::vector<FindingStep> via;
    };
    /// A file in a component's place.
    struct Foreign {
        Component component;
        std::string kept;  ///< Where it is now; empty when it could not be moved, or is only seen.
    };

    std::filesystem::path intendedPath(const Observation& component) const;
    void lookAt(const Component& component);

    BookPlaces places_;
    std::vector<Component> components_;
    std::map<std::string, std::size_t> firstAt_;  ///< By path.
    std::vector<std::pair<std::size_t, std::size_t>> clashes_;
    std::vector<Foreign> foreign_;
};

}  // namespace marrowpress
