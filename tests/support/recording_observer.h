#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "application/connection.h"
#include "application/run_observer.h"
#include "marrowpress/observer.h"
#include "tests/support/scripted_interfaces.h"

/// What an observer is told, kept and printed.
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

/// An observer that keeps what it is told.
class RecordingObserver final : public IHostObserver {
public:
    ComStatus queryInterface(const InterfaceId& id, void** object) override;
    std::uint32_t addRef() override { return ++references; }
    std::uint32_t release() override { return --references; }
    ComStatus observe(const Observation* observation) override;

    /// The faults, as `printed`, one below the other.
    std::string faults() const;
    /// All that is of that kind, likewise.
    std::string told(ObservationKind kind) const;

    std::vector<ObservedCopy> observations;
    std::uint32_t references = 0;  ///< that others hold
    ComStatus outcome = kComOk;    ///< of each call
};

/// The observer of the connected host while it lives, and in it one that the passes find.
class ObservedScope {
public:
    ObservedScope() { RunObserver::begin(); }
    ObservedScope(const ObservedScope&) = delete;
    ObservedScope& operator=(const ObservedScope&) = delete;
    ~ObservedScope() { RunObserver::end(); }

    RunObserver& operator*() const { return *RunObserver::existing(); }
    RunObserver* operator->() const { return RunObserver::existing(); }

    /// Sends the faults that wait, all elements being published, and gives them.
    std::string faults() const;

    RecordingObserver host;

private:
    InterfaceReplacement<IHostObserver> replacement_{QsApiInterfacesC::connected()->observer,
                                                     &host};
};

}  // namespace marrowpress
