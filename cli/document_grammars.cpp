#include "cli/document_grammars.h"

#include <algorithm>
#include <string_view>

#include "findings/profile.h"

namespace marrowpress {
namespace {

bool isDtd(std::string_view path) {
    return path.ends_with(".dtd");
}

bool haveOneType(const GrammarUse& left, const GrammarUse& right) {
    return left.root == right.root && left.grammar == right.grammar && left.dtd == right.dtd;
}

}  // namespace

void DocumentGrammars::observe(const Observation& observation) {
    if (observation.kind == ObservationKind::kDocumentRead && observation.element != kProfileRoot) {
        const auto grammar = static_cast<DocumentGrammar>(observation.code);
        if (index_.try_emplace(observation.target, documents_.size()).second) {
            documents_.push_back({observation.target, observation.element, grammar});
        }
    } else if (observation.kind == ObservationKind::kEntity && *observation.detail) {
        // A document may name other entities in front of its DTD.
        const auto [known, isNew] = dtds_.try_emplace(observation.detail, observation.target);
        if (!isNew && !isDtd(known->second) && isDtd(observation.target)) {
            known->second = observation.target;
        }
    }
}

std::vector<GrammarUse> DocumentGrammars::uses() const {
    std::vector<GrammarUse> uses;
    for (const Document& document : documents_) {
        GrammarUse use = useOf(document);
        const auto known = std::find_if(uses.begin(), uses.end(), [&use](const GrammarUse& other) {
            return haveOneType(use, other);
        });
        if (known == uses.end()) {
            uses.push_back(std::move(use));
        } else {
            ++known->documentCount;
        }
    }
    return uses;
}

GrammarUse DocumentGrammars::useOf(const std::string& path) const {
    const auto known = index_.find(path);
    return known == index_.end() ? GrammarUse() : useOf(documents_[known->second]);
}

GrammarUse DocumentGrammars::useOf(const Document& document) const {
    GrammarUse use{document.root, document.grammar, {}, 1, document.path};
    if (use.grammar == DocumentGrammar::kInvalid) {
        use.grammar = DocumentGrammar::kOwn;
    }
    const auto dtd = dtds_.find(document.path);
    if (use.grammar == DocumentGrammar::kOwn && dtd != dtds_.end()) {
        use.dtd = dtd->second;
    }
    return use;
}

}  // namespace marrowpress
