#pragma once

#include <string_view>
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

    /// Message 105: no definition has the key that `reference` names.
    void reportKeyNotFound(std::u16string_view keyName, const Element* reference);

    /// Message 106: the file at `path`, to which `reference` leads, can't be read.
    void reportCannotRead(std::u16string_view path, const Element* reference);

    /// Message 107: the file at `path` can't be written, or not in whole.
    void reportCannotWrite(std::u16string_view path);

    /// Message 108: the topic of `target` has no element of that name and id, to which the content
    /// reference of `reference` leads.
    void reportElementInTopicNotFound(std::u16string_view tagName, std::u16string_view elementId,
                                      std::u16string_view topicId, const Document& target,
                                      const Element* reference);

    /// Message 109: `target` has no element of that name and id, or none that can be taken, to
    /// which the content reference of `reference` leads.
    void reportElementNotFound(std::u16string_view tagName, std::u16string_view id,
                               const Document& target, const Element* reference);

    /// Message 110: the "conrefend" of `reference` ends no range that begins at its "conref".
    void reportInvalidConrefEnd(const Element* reference);

    /// Message 111: there is no file at `path`, which `reference` names.
    void reportReferencedFileNotFound(std::u16string_view path, const Element* reference);
};

}  // namespace marrowpress
