#pragma once

#include <string>

#include "runs/key_list.h"
#include "tests/support/observations.h"

namespace marrowpress {

/// Tells a list of keys what a run would tell it. Places are in column 3.
class ToldKeys {
public:
    void define(const char* key, KeyState state, const char* file, std::uint32_t line,
                const char* href = "", const char* keyref = "") {
        const ObservedStep steps[]{{{file, line, 3}, "", ""},
                                   {{"/w/m.ditamap", 2, 3}, "href", "k"}};
        Observation met = observationOf(ObservationKind::kKeyDefinition, key);
        met.code = static_cast<std::uint32_t>(state);
        met.element = "keydef";
        met.detail = href;
        met.reason = keyref;
        met.steps = steps;
        met.stepCount = std::string(file) == "/w/m.ditamap" ? 1 : 2;
        list.observe(met);
    }

    void mean(const char* key, const char* file, std::uint32_t line, const char* href,
              const char* text) {
        const ObservedStep step{{file, line, 3}, "", ""};
        Observation met = observationOf(ObservationKind::kKeyMeaning, key);
        met.detail = href;
        met.reason = text;
        met.steps = &step;
        list.observe(met);
    }

    void refer(const char* key, const char* file, std::uint32_t line, std::uint32_t flags = 0) {
        const ObservedStep step{{file, line, 3}, "", ""};
        Observation met = observationOf(ObservationKind::kKeyReference, key);
        met.flags = flags;
        met.steps = &step;
        list.observe(met);
    }

    /// Four keys: one that is used and defined twice, and leads to another; that; one that the
    /// profile leaves out; one that nobody defines.
    void tellAll() {
        define("off", KeyState::kExcluded, "/w/m.ditamap", 9, "/w/off.dita");
        define("a", KeyState::kEffective, "/w/m.ditamap", 4, "", "b");
        define("b", KeyState::kEffective, "/w/m.ditamap", 5);
        define("a", KeyState::kShadowed, "/w/k.ditamap", 3, "/w/old.dita");
        mean("a", "/w/k.ditamap", 3, "/w/old.dita", "");
        mean("a", "/w/m.ditamap", 4, "/w/t.dita#t", "An \n \"A\"");
        mean("b", "/w/m.ditamap", 5, "/w/t.dita#t", "");
        refer("b", "/w/m.ditamap", 4);
        refer("gone", "/w/t.dita", 8);
        refer("a", "/w/t.dita", 7);
        refer("a", "/w/t.dita", 6);
        list.finish();
    }

    std::vector<const ListedKey*> all() const {
        std::vector<const ListedKey*> keys;
        for (const ListedKey& key : list.keys()) {
            keys.push_back(&key);
        }
        return keys;
    }

    KeyList list;
};

}  // namespace marrowpress
