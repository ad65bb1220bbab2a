#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "findings/finding.h"
#include "marrowpress/observer.h"

namespace marrowpress {

/// One place that defines a key.
struct KeyDefinition {
    KeyState state = KeyState::kEffective;
    FindingPlace place;
    std::string element;           ///< Tag name.
    std::string target;            ///< An absolute path with its fragment, or a URI; may be empty.
    std::string text;              ///< With one blank for each white space; may be empty.
    std::string keyref;            ///< The key reference by which it leads on; may be empty.
    std::vector<FindingStep> via;  ///< The way to the root map, innermost first.
};

/// What becomes of a key.
enum class KeyUse {
    kUsed,
    kUnused,
    kUndefined,  ///< Somebody refers to it, and no definition counts.
    kExcluded,   ///< The profile leaves out each definition.
};

/// "used": in formats for programs.
const char* nameOf(KeyUse use);

/// A name that is defined, or that somebody refers to.
struct ListedKey {
    std::string name;
    std::vector<KeyDefinition> definitions;  ///< In the order in which they were met.
    std::vector<FindingPlace> uses;          ///< Elements that refer to it, each once.

    /// The definition that says what the key is: the one that counts, else the first that the
    /// profile has left out, else the first. Null when there is none.
    const KeyDefinition* leading() const;
    /// Null when none counts.
    const KeyDefinition* effective() const;
    KeyUse use() const;
};

/// The keys of a run, as it tells of them.
class KeyList {
public:
    void observe(const Observation& observation);

    /// To be called once, when the run is over.
    void finish();

    /// In the order in which they were met; those that nobody defines last.
    const std::vector<ListedKey>& keys() const noexcept { return keys_; }
    /// Null for a name that nobody defines or refers to.
    const ListedKey* find(const std::string& name) const;
    /// The names that are defined.
    std::vector<std::string> definedNames() const;

    /// The keys that `key` leads to, one by the other, up to one that leads nowhere. One that comes
    /// again ends it.
    std::vector<std::string> chainOf(const ListedKey& key) const;

private:
    ListedKey& keyOf(const std::string& name);
    void addDefinition(const Observation& observation);
    void addMeaning(const Observation& observation);
    void addUse(const Observation& observation);

    std::vector<ListedKey> keys_;
    std::unordered_map<std::string, std::size_t> index_;
    std::unordered_set<std::string> seenUses_;  ///< Key and place.
};

}  // namespace marrowpress
