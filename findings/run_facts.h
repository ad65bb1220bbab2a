#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "findings/finding.h"
#include "findings/profile_remarks.h"
#include "marrowpress/observer.h"

namespace marrowpress {

/// Where and how a key was defined.
struct KeyFact {
    KeyState state;
    FindingPlace place;
    std::string element;  ///< Tag name.
    std::string href;     ///< Absolute; empty when it has none.
};

/// A file that a run has read.
struct DocumentFact {
    std::string path;
    std::string rootName;
    DocumentGrammar grammar;
    FindingPlace reference;  ///< The first one; no file for what the request names.
};

/// A component of a flat book.
struct ComponentFact {
    std::string path;
    std::string source;  ///< Empty for a heading.
    FindingPlace reference;
    std::string referenceElement;
};

/// The place of a start tag as the observer tells it.
FindingPlace placeOf(const ObservedPlace& place);

/// The references that led to the place of an observation, innermost first.
std::vector<FindingStep> wayOf(const Observation& observation);

/// What a run met, but for its faults: what their texts and hints are made from.
class RunFacts {
public:
    /// Takes everything but faults.
    void take(const Observation& observation);

    /// The definition that says most of why the key isn't there, or is: one that counts, else one
    /// that the profile took, else one that is lost. Null when nothing defines it.
    const KeyFact* keyFact(const std::string& key) const;
    /// The names of all keys that count, in the order in which they were met.
    const std::vector<std::string>& keys() const noexcept { return keys_; }

    const std::vector<DocumentFact>& documents() const noexcept { return documents_; }
    /// Null when the file was not read.
    const DocumentFact* document(const std::string& path) const;
    /// Whether the file was read, and without its DTD.
    bool isWithoutDtd(const std::string& path) const;
    /// The first map that was read without its DTD, and so lost references; null when none was.
    const DocumentFact* mapWithoutDtd() const;
    /// A document of DITA's that was read without its DTD, a map before all others; null when there
    /// is none.
    const DocumentFact* documentWithoutDtd() const;
    bool isRead(const std::string& path) const { return document(path) != nullptr; }

    const std::vector<ComponentFact>& components() const noexcept { return components_; }
    const ConditionValues& conditionValues() const noexcept { return conditionValues_; }
    /// Whether the profile leaves out a reference to that file.
    bool isExcluded(const std::string& path) const { return excluded_.contains(path); }
    /// Whether a key that counts stands for that file.
    bool isKeyTarget(const std::string& path) const { return keyTargets_.contains(path); }

    std::size_t topicCount() const noexcept { return topicCount_; }
    std::size_t droppedFaults() const noexcept { return droppedFaults_; }
    /// Why the run ended with a negative status; empty when it didn't, or nobody knows.
    const std::string& failure() const noexcept { return failure_; }

private:
    void takeKey(const Observation& observation);
    void takeDocument(const Observation& observation);

    std::unordered_map<std::string, KeyFact> keyFacts_;
    std::vector<std::string> keys_;
    std::vector<DocumentFact> documents_;
    std::optional<std::size_t> mapWithoutDtd_;
    std::optional<std::size_t> topicWithoutDtd_;
    std::unordered_map<std::string, std::size_t> documentIndex_;
    std::vector<ComponentFact> components_;
    ConditionValues conditionValues_;
    std::unordered_set<std::string> excluded_;
    std::unordered_set<std::string> keyTargets_;
    std::size_t topicCount_ = 0;
    std::size_t droppedFaults_ = 0;
    std::string failure_;
};

}  // namespace marrowpress
