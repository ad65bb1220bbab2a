#pragma once

#include <cstdlib>
#include <optional>
#include <string>

#include "findings/language.h"

namespace marrowpress {

/// A language for the length of a scope; German, and the environment's LANGUAGE, come back with its
/// end.
class ChosenLanguage {
public:
    explicit ChosenLanguage(Language language) {
        if (const char* const value = std::getenv("LANGUAGE")) {
            before_ = value;
        }
        chooseLanguage(language);
    }
    ChosenLanguage(const ChosenLanguage&) = delete;
    ChosenLanguage& operator=(const ChosenLanguage&) = delete;
    ~ChosenLanguage() {
        chooseLanguage(Language::kGerman);
        if (before_) {
            setenv("LANGUAGE", before_->c_str(), 1);
        } else {
            unsetenv("LANGUAGE");
        }
    }

private:
    std::optional<std::string> before_;
};

}  // namespace marrowpress
