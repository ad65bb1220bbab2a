#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "marrowpress/observer.h"

namespace marrowpress {

/// Documents of one kind: with the same root element, and the same DTD.
struct GrammarUse {
    std::string root;
    /// Never `kInvalid`: such a document has its DTD, too.
    DocumentGrammar grammar = DocumentGrammar::kOwn;
    std::string dtd;  ///< Absolute; empty when there is none.
    std::size_t documentCount = 0;
    std::string firstDocument;  ///< Absolute.
};

/// The DTDs with which a run reads documents, as it tells of them. Profiles are left out.
class DocumentGrammars {
public:
    void observe(const Observation& observation);

    /// In the order in which they were met.
    std::vector<GrammarUse> uses() const;

    /// That of the document at `path` alone; no documents when it was not read.
    GrammarUse useOf(const std::string& path) const;

private:
    struct Document {
        std::string path;
        std::string root;
        DocumentGrammar grammar;
    };

    GrammarUse useOf(const Document& document) const;

    std::vector<Document> documents_;
    std::unordered_map<std::string, std::size_t> index_;  ///< By path.
    std::unordered_map<std::string, std::string> dtds_;   ///< By the document that names it.
};

}  // namespace marrowpress
