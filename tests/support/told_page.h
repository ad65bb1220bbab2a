#pragma once

#include <memory>
#include <string>

#include "cli/page_files.h"
#include "tests/support/chosen_language.h"
#include "tests/support/told_files.h"

namespace marrowpress {

/// The files of an English page: a map "/w/m.ditamap" and its topic "/w/t.dita".
class ToldPage {
public:
    ToldPage() {
        files_.refer(ReferenceKind::kTopic, "/w/m.ditamap", 2, "/w/t.dita");
        files_.list.finish();
        neighbourhood_ = std::make_unique<Neighbourhood>(files_.list, KeyList());
        files = std::make_unique<PageFiles>(*neighbourhood_, ExclusionList(),
                                            std::unordered_set<std::string>(), "/w");
    }

    static bool holds(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }

    std::unique_ptr<PageFiles> files;

private:
    ChosenLanguage english_{Language::kEnglish};
    ToldFiles files_;
    std::unique_ptr<Neighbourhood> neighbourhood_;
};

}  // namespace marrowpress
