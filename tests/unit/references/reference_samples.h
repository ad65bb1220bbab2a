#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "references/dita_reference.h"
#include "references/key_space.h"
#include "tests/support/message_texts.h"
#include "tests/support/xml_text.h"

namespace marrowpress {

/// The folder has a.dita, sub/b.dita and keys/k.dita; the document under test is map.ditamap in
/// the folder, and the key space document is in keys.
class ReferenceSampleTest : public XmlTest {
protected:
    ReferenceSampleTest() {
        for (const char* name : {"a.dita", "sub/b.dita", "sub/b c.dita", "keys/k.dita", "both.dita",
                                 "keys/both.dita", "map.ditamap"}) {
            folder.write(name, "x");
        }
    }

    std::u16string uriOf(std::string_view name) const { return u"file://" + folder.file16(name); }

    ParsedXml parse(std::string_view xml) const { return ParsedXml(xml, uriOf("map.ditamap")); }

    /// The reference of the root of `xml`, without a key space.
    DitaReference read(std::string_view xml) const {
        return readDitaReference(*parse(xml).root(), nullptr);
    }

    /// The same, with a key space that defines "k" and "k2".
    DitaReference readKeyed(std::string_view xml) const {
        const ParsedXml keys(
            "<!DOCTYPE map [<!ATTLIST keydef id ID #IMPLIED>]>"
            "<map><keydef id='k' href='k.dita#wrong' type='concept' format='pdf'/>"
            "<keydef id='k2'/></map>",
            uriOf("keys/space.ditamap"));
        const KeySpace keySpace(keys.document());
        return readDitaReference(*parse(xml).root(), &keySpace);
    }

    const std::vector<std::string>& console() const { return host.console(); }
};

}  // namespace marrowpress
