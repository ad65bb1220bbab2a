#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "cli/exclusion_list.h"
#include "cli/neighbourhood.h"
#include "findings/finding.h"

namespace marrowpress {

/// The files of a publication on its page: each has an entry there, with who refers to it and what
/// it refers to, and others link to that.
class PageFiles {
public:
    /// Up to so many bytes of names, those who refer to a file stand in its entry. Beyond that the
    /// page's script finds them, by the entries of those who refer.
    static constexpr std::size_t kMostIncomingBytes = 100'000;

    /// Of more files, the titles stand in the map's tree alone, and the script copies them.
    static constexpr std::size_t kMostTitledFiles = 2'000;

    /// @param neighbourhood  Must outlive this object.
    /// @param exclusions     Finished; what does not come into titles.
    /// @param documents      The paths of those that have a title.
    /// @param currentFolder  Absolute; paths are shown as seen from it.
    PageFiles(const Neighbourhood& neighbourhood, const ExclusionList& exclusions,
              const std::unordered_set<std::string>& documents, std::string currentFolder);

    std::size_t size() const noexcept { return names_.size(); }

    /// The title of the document at `path`; empty when it has none.
    const std::string& title(const std::string& path) const;

    /// `html` as a link to the file's entry; as it is where the file has none.
    std::string linked(const std::string& path, const std::string& html) const;
    /// A place as findings show it, linked to its file's entry.
    std::string linked(const FindingPlace& place) const;

    /// A place by the name that its file has on the page, and its line. The script makes it a link.
    std::string brief(const FindingPlace& place) const;
    /// The same, linked to its file's entry.
    std::string briefLinked(const FindingPlace& place) const;

    const std::string& currentFolder() const noexcept { return currentFolder_; }

    /// The part of the page that has all entries.
    std::string part() const;

private:
    std::string entry(std::size_t number) const;
    std::string summary(std::size_t number) const;
    std::string neighbours(const std::vector<Neighbour>& neighbours, bool isIncoming) const;
    const Neighbourhood& neighbourhood_;
    std::string currentFolder_;
    std::vector<std::string> names_;
    std::vector<std::string> titles_;
    bool showsIncoming_;
};

/// What a reference of each kind is called, seen from the one that refers, in the order of the
/// kinds, and seen from the one that is referred to.
std::vector<std::string> outgoingWords();
std::vector<std::string> incomingWords();

}  // namespace marrowpress
