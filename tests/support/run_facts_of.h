#pragma once

#include "findings/run_facts.h"
#include "tests/support/observations.h"

namespace marrowpress {

/// Tells `facts` of a `keydef` in the given line, column 3, of "/w/keys.ditamap".
inline void takeKey(RunFacts& facts, const char* key, KeyState state, const char* href = "",
                    std::uint32_t line = 5) {
    const ObservedStep step{{"/w/keys.ditamap", line, 3}, "", ""};
    Observation met = observationOf(ObservationKind::kKeyDefinition, key);
    met.code = static_cast<std::uint32_t>(state);
    met.element = "keydef";
    met.detail = href;
    met.steps = &step;
    facts.take(met);
}

/// Tells `facts` of a file that was read.
inline void takeDocument(RunFacts& facts, const char* path, DocumentGrammar grammar,
                         const char* rootName = "topic") {
    Observation met = observationOf(ObservationKind::kDocumentRead, path);
    met.code = static_cast<std::uint32_t>(grammar);
    met.element = rootName;
    facts.take(met);
}

}  // namespace marrowpress
