#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>
#include <xercesc/dom/DOM.hpp>

#include "client/xml_session.h"
#include "tests/support/recording_host.h"
#include "tests/support/temporary_folder.h"

/// Trees from text and back, for tests that say in XML what they mean.
namespace marrowpress {

/// A parsed text; the document lives as long as this.
class ParsedXml {
public:
    /// Parses without validation, default attributes of an internal subset included. A test fails
    /// when `text` isn't well-formed. `uri` becomes the document's URI if it isn't empty.
    explicit ParsedXml(std::string_view text, std::u16string_view uri = {});
    ParsedXml(ParsedXml&&) noexcept;
    ~ParsedXml();

    xercesc::DOMDocument& document() const;
    xercesc::DOMElement* root() const { return document().getDocumentElement(); }
    /// The first element in document order whose "id" is `id`; null if there is none.
    xercesc::DOMElement* byId(std::string_view id) const;

private:
    class Parser;
    std::unique_ptr<Parser> parser_;
};

/// `node` as text, without XML declaration and as it stands.
std::string printed(const xercesc::DOMNode& node);

/// The value of an attribute in UTF-8.
std::string attribute(const xercesc::DOMElement& element, std::string_view name);

/// The values of "id" of the elements, or the tag name in brackets where there is none, joined by
/// blanks.
std::string idsOf(const std::vector<xercesc::DOMElement*>& elements);

/// `depth` elements "ph", each in the one before, and `innermost` in the last.
std::string nestedElements(std::size_t depth, std::string_view innermost = {});

/// A test with a host and an open XML session.
class XmlTest : public testing::Test {
protected:
    RecordingHost host;
    TemporaryFolder folder;
    XmlSession session;
};

}  // namespace marrowpress
