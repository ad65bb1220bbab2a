#pragma once

#include <boost/unordered/unordered_flat_map.hpp>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>
#include <xercesc/dom/DOMElement.hpp>

#include "support/text.h"

namespace marrowpress {

/// A start tag in a source file, at its "<".
struct SourcePlace {
    std::uint32_t file = 0;    ///< As `SourcePlaces` numbers them; 0 when it is not known.
    std::uint32_t line = 0;    ///< From 1; 0 for the file as a whole.
    std::uint32_t column = 0;  ///< From 1, in UTF-16 code units.

    friend bool operator==(const SourcePlace&, const SourcePlace&) = default;
    friend bool operator<(const SourcePlace& left, const SourcePlace& right) {
        return std::tie(left.file, left.line, left.column) <
               std::tie(right.file, right.line, right.column);
    }
};

/// On whose account something is copied.
struct CopyCause {
    const xercesc::DOMElement* reference = nullptr;  ///< Null: what is copied only changes places.
    const XMLCh* attribute = nullptr;                ///< A literal: by which it refers.
    std::u16string_view target;                      ///< The attribute's value.
    /// The reference takes a topic into the output. What is copied there later, out of that topic,
    /// came on account of another one.
    bool takesTopic = false;
};

/// `reference` as a cause: by the first of "conref", "href", "conkeyref" and "keyref" that it has.
CopyCause causeOf(const xercesc::DOMElement& reference);

/// A reference on the way from an element to the root map.
struct SourceStep {
    SourcePlace place;
    const XMLCh* attribute = nullptr;  ///< Null for the element itself.
    std::u16string target;
};

/// Where the elements of a run come from: the source of each start tag, also
/// of copies, and the references on whose account they were copied.
///
/// A table beside the trees: user data on a node does not survive an import,
/// and costs more. It is there only while somebody observes the run, and then
/// each parser fills it and each deep copy carries it along.
///
/// Holds pointers to elements and looks into none but those that it is asked
/// about, whose documents must be alive.
class SourcePlaces {
public:
    /// The table of the request; null when nobody observes the run.
    static SourcePlaces* existing() noexcept;
    /// Makes the table of the request.
    static void begin();
    static void end() noexcept;

    /// The number of the file at `path`.
    std::uint32_t fileNumber(std::u16string_view path);
    /// The path of a file by its number; empty for 0.
    const std::u16string& filePath(std::uint32_t number) const { return files_[number]; }

    /// `node` is an element, or a doctype.
    void record(const xercesc::DOMNode& node, SourcePlace place) {
        entries_.insert_or_assign(&node, Entry{place, kNoInclusion});
    }

    /// Leaves out the nodes of `document`, which is to end; so far all are alive that were
    /// recorded.
    void forget(const xercesc::DOMDocument& document);

    /// `copy`, of the same shape as `original`, was made on account of `cause`.
    void recordCopy(const xercesc::DOMNode& original, const xercesc::DOMNode& copy,
                    const CopyCause& cause);

    /// The file at `path` was asked for on account of `reference`; the first one counts.
    void recordReference(std::u16string_view path, const xercesc::DOMElement& reference);

    /// The place of `element`, or of the nearest element around it that came from a file.
    SourcePlace placeOf(const xercesc::DOMNode& element) const;

    /// The place of `element`, as by `placeOf`, and the references that led from the root map to
    /// it, innermost first. There is at least one step.
    std::vector<SourceStep> stepsTo(const xercesc::DOMNode& element) const;

    /// `place`, and the references that led to its file.
    std::vector<SourceStep> stepsTo(SourcePlace place) const;

private:
    using Inclusion = std::uint32_t;
    static constexpr Inclusion kNoInclusion = 0;

    struct Entry {
        SourcePlace place;
        Inclusion inclusion;
    };
    /// A reference, and on whose account it was copied itself.
    struct InclusionRecord {
        SourceStep step;
        Inclusion outer;
        bool takesTopic;
    };

    const Entry* entryAround(const xercesc::DOMNode& node) const;
    Inclusion add(InclusionRecord record);
    Inclusion inclusionBy(const CopyCause& cause);
    Inclusion continued(Inclusion inner, Inclusion outer);
    void appendInclusions(std::vector<SourceStep>& steps, Inclusion inclusion) const;
    void appendFirstReferences(std::vector<SourceStep>& steps) const;

    boost::unordered_flat_map<const xercesc::DOMNode*, Entry> entries_;
    std::vector<InclusionRecord> inclusions_{1};
    std::map<std::pair<Inclusion, Inclusion>, Inclusion> continued_;
    std::vector<std::u16string> files_{1};
    std::unordered_map<std::u16string, std::uint32_t, U16Hash, std::equal_to<>> fileNumbers_;
    std::unordered_map<std::uint32_t, Inclusion> firstReferences_;  ///< by file
};

}  // namespace marrowpress
