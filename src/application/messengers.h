#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

/// The lines of a run: one function for each message, with the arguments that
/// its text has.
///
/// A line is cut at 4095 bytes of UTF-8 and handed to the host. An argument
/// ends at its first NUL, and whatever stands in it is text.
///
/// The functions for report lines also take the element at fault, which the
/// lines don't name: null where there is none.
namespace marrowpress {

struct SourcePlace;

/// Why a file could not be read; for the observer, the lines don't say it.
struct ReadFailure {
    std::u16string reason;   ///< The parser's or the system's; may be empty.
    std::u16string file;     ///< Where the parser stopped.
    std::uint32_t line = 0;  ///< From 1, like the column; 0 where the fault is at no place.
    std::uint32_t column = 0;
};

/// Shows the state of a run.
class ProgressMessenger {
public:
    static ProgressMessenger& instance();

    void reportProcessingKeySpaces();
    void reportUpdatingReferences();
    /// The document of this file name is being appended.
    void reportAppending(std::u16string_view fileName);
    void reportProcessingReferences();
};

/// Writes what people have to look after on the host's console, each line ended by CR and LF
/// where the cut leaves room for them. No line changes the status of a run.
class ReportMessenger {
public:
    using Element = xercesc::DOMElement;
    using Document = xercesc::DOMDocument;

    static ReportMessenger& instance();

    /// Message 105: no definition has the key that `reference` names. A name that no author has
    /// written is `isNobodysKey`.
    void reportKeyNotFound(std::u16string_view keyName, const Element* reference,
                           bool isNobodysKey = false);

    /// Message 106: the file at `path`, to which `reference` leads, can't be read.
    void reportCannotRead(std::u16string_view path, const Element* reference,
                          const ReadFailure& failure = {});

    /// Message 107: the file at `path` can't be written, or not in whole. `reason` is the system's,
    /// in UTF-8, where there is one.
    void reportCannotWrite(std::u16string_view path, std::string_view reason = {});

    /// Message 107: `path`, which the `navtitle` of `reference` gives, is none for a component.
    void reportNoFileName(std::u16string_view path, std::u16string_view navtitle,
                          const Element& reference);

    /// Message 108: the topic of `target` has no element of that name and id, to which the content
    /// reference of `reference` leads.
    void reportElementInTopicNotFound(std::u16string_view tagName, std::u16string_view elementId,
                                      std::u16string_view topicId, const Document& target,
                                      const Element* reference);

    /// Message 109: `target` has no element of that name and id, or none that can be taken, to
    /// which the content reference of `reference` leads.
    void reportElementNotFound(std::u16string_view tagName, std::u16string_view id,
                               const Document& target, const Element* reference);

    /// Message 109, of a content reference that would copy itself without end. `ring` are the
    /// references that lead to each other, as far as they are known.
    void reportConrefLoop(std::u16string_view tagName, std::u16string_view id,
                          const Document& target, const Element& reference,
                          std::vector<SourcePlace> ring);

    /// Message 110: the "conrefend" of `reference` ends no range that begins at its "conref".
    void reportInvalidConrefEnd(const Element* reference);

    /// Message 111: there is no file at `path`, which `reference` names.
    void reportReferencedFileNotFound(std::u16string_view path, const Element* reference);
};

}  // namespace marrowpress
