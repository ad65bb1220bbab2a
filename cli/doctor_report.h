#pragma once

#include <string>
#include <vector>

#include "cli/document_grammars.h"
#include "cli/trial_publication.h"

namespace marrowpress {

/// A file or a folder that a run needs.
struct CheckedPlace {
    std::string path;
    std::string fault;  ///< Why it can't be used, for people; empty when it can.
};

/// What a machine has for publishing and what it lacks, as lines for people in the language of the
/// run.
class DoctorReport {
public:
    /// In the order of asking. One that can't be used is only told.
    void addCatalogs(const std::vector<CheckedPlace>& catalogs);

    void addTypes(const std::vector<TriedType>& types);

    /// The types of a map's documents, with paths as seen from `currentFolder`.
    void addUses(const std::vector<GrammarUse>& uses, const std::string& currentFolder);

    void addEncodings(const std::vector<TriedEncoding>& encodings);

    /// @param current  Where outputs may go; need not be writable.
    /// @param passing  For private files; must be.
    void addFolders(const CheckedPlace& current, const CheckedPlace& passing);

    /// @param charset  That of the environment, as the system names it.
    void addCharset(const std::string& charset);

    /// Whether nothing stands in the way of a publication.
    bool isSound() const noexcept { return faults_.empty(); }

    std::string text() const;

private:
    void addSection(const std::string& text);
    void addFault(const std::string& text);

    std::string sections_;
    std::vector<std::string> faults_;
    std::vector<std::string> remarks_;  ///< Need not concern anybody.
};

}  // namespace marrowpress
