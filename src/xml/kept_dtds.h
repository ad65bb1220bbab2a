#pragma once

#include <string>
#include <unordered_map>
#include <vector>
#include <xercesc/util/XercesDefs.hpp>
#include <xercesc/validators/common/Grammar.hpp>

namespace marrowpress {

/// A DTD that a parser keeps for the documents to come.
struct KeptDtd {
    std::u16string path;        ///< the system id under which its file was opened
    xercesc::Grammar* grammar;  ///< the parser's
    /// By which its other files were asked for, in this order; with repetitions.
    std::vector<std::string> publicIds;
    /// It was read to its end, and is not what was wrong with a document.
    bool isSound = false;
};

/// A position of the engine's reader, in lines and columns from 1.
struct ReaderPosition {
    XMLFileLoc line = 0;
    XMLFileLoc column = 0;

    friend bool operator==(const ReaderPosition&, const ReaderPosition&) = default;
};

/// The DTDs that a parser keeps, and what its tries have shown of them.
///
/// The engine keeps a DTD from when it opens its file. One that turns out to be broken is kept as
/// far as it was read, and meets the next document as if it were whole.
class KeptDtds {
public:
    void beginTry() noexcept;

    /// The external subset of a document begins, whose declarations are or will be in `grammar`, a
    /// kept one. Gives the list that public identifiers are to be added to while it is read; null
    /// for a DTD that was met before.
    std::vector<std::string>* beginDtd(xercesc::Grammar& grammar);

    /// It has ended, and the reader of the document stands at `position`.
    void endDtd(ReaderPosition position) noexcept;

    /// The try has failed and its first diagnostic was of `position`.
    void failAt(ReaderPosition position) noexcept;
    /// The try has come to its end.
    void succeed() noexcept;

    /// Whether the try that failed would fail again, in the same way, if its DTD were read anew.
    bool wouldFailAgain() const noexcept { return isDtdRead_ && (isScanned_ || current_->isSound); }

    /// The sound one of that path; null if there is none.
    const KeptDtd* findSound(const std::u16string& path) const;

private:
    void noteThatDtdIsSound() noexcept;

    std::unordered_map<const xercesc::Grammar*, KeptDtd> dtds_;
    // Of the try.
    KeptDtd* current_ = nullptr;
    bool isScanned_ = false;  ///< it is this try that reads the DTD
    bool isDtdRead_ = false;
    ReaderPosition dtdEnd_;
};

}  // namespace marrowpress
