#pragma once

namespace marrowpress {

/// Where work is saved because its outcome is known already. The product takes every one of them;
/// tests turn them off, to show that the whole of the work comes to the same.
struct ShortCuts {
    /// A try that could only repeat the failure of the one before is not made.
    bool passOverRepeatedTries = true;
    /// What a DTD declares is asked of the grammar that documents were read with.
    bool shareDtds = true;
    /// Where the DTD of a doctype stands is looked up once.
    bool rememberDtdPaths = true;
    /// The ids of a document that is searched again are noted.
    bool noteIds = true;
    /// The conditional text of a source is read once.
    bool keepConditions = true;
    /// Passes for elements that a subtree doesn't have are not made.
    bool lookAhead = true;

    /// Those that are taken.
    static ShortCuts& taken() noexcept {
        static ShortCuts shortCuts;
        return shortCuts;
    }
};

}  // namespace marrowpress
