#pragma once

#include <unistd.h>

#include <optional>
#include <string>
#include <string_view>

#include "references/conref_resolution.h"
#include "support/text.h"
#include "tests/support/message_texts.h"
#include "tests/support/texts.h"
#include "tests/support/xml_text.h"
#include "xml/document_store.h"

/// Documents with content references, and what comes of a walk over them.
///
/// Expected documents are written with single quotes for double ones, and with "U1", "U2" for the
/// ids that topics are given; "$D" stands for the folder of the test.
namespace marrowpress {

/// Declares what `getElementById` finds: topics and, for maps of keys, definitions.
inline constexpr std::string_view kIdDeclarations =
    "<!DOCTYPE topic [<!ATTLIST topic id ID #IMPLIED><!ATTLIST concept id ID #IMPLIED>"
    "<!ATTLIST keydef keys ID #IMPLIED>]>";

inline std::string withDeclarations(std::string_view text) {
    return std::string(kIdDeclarations).append(text);
}

/// A topic with the id "t".
inline std::string topicOf(std::string_view content) {
    return std::string("<topic id='t'>").append(content).append("</topic>");
}

/// The lines that report a missing target, as `console` gives them.
inline std::string notFound(std::string_view tag, std::string_view id, std::string_view file) {
    return elementNotFound(tag, id, std::string("file://$D/").append(file));
}

inline std::string notFoundInTopic(std::string_view tag, std::string_view elementId,
                                   std::string_view topicId, std::string_view file) {
    return elementInTopicNotFound(tag, elementId, topicId, std::string("file://$D/").append(file));
}

/// The document that is walked is "d.dita" in the test's folder. A walk that takes longer than
/// `kPatience` seconds ends the program: it would never have come back.
class ConrefTest : public XmlTest {
protected:
    static constexpr unsigned kPatience = 30;

    ConrefTest() { alarm(kPatience); }
    ~ConrefTest() override { alarm(0); }

    /// Writes a topic "t" with this content.
    void write(std::string_view name, std::string_view content) const {
        folder.write(name, withDeclarations(topicOf(content)));
    }

    ParsedXml parse(std::string_view text) const {
        return ParsedXml(withDeclarations(text), u"file://" + folder.file16("d.dita"));
    }

    void resolve(const ParsedXml& document) {
        KeySpace keySpace(keys->document());
        ConrefProcessor().resolveConrefs(document.root(), keySpace, topicIds);
    }

    /// What becomes of the content of the topic "t" in the document that is walked.
    std::string resolved(std::string_view content) {
        const ParsedXml document = parse(topicOf(content));
        resolve(document);
        return contentOf(document);
    }

    std::string inFolder(std::string_view text) const {
        return replacedAll(std::string(text), folder.path().string(), "$D");
    }

    std::string readable(std::string_view text) const {
        const std::string first = replacedAll(inFolder(text), kGeneratedIds[0], "U1");
        return replacedAll(replacedAll(first, kGeneratedIds[1], "U2"), "\"", "'");
    }

    std::string contentOf(const ParsedXml& document) const {
        const std::string text = readable(printed(*document.root()));
        const std::size_t begin = text.find('>') + 1;
        return text.ends_with("/>") ? std::string() : text.substr(begin, text.rfind("</") - begin);
    }

    /// The report lines.
    std::string console() const {
        std::string lines;
        for (const std::string& line : host.console()) {
            lines += inFolder(line);
        }
        return lines;
    }

    /// Makes `definitions` the content of the key space document.
    void defineKeys(std::string_view definitions) {
        keys.emplace(withDeclarations("<map>" + std::string(definitions) + "</map>"),
                     u"file:///keys/keys.ditamap");
    }

    std::optional<ParsedXml> keys{std::in_place, withDeclarations("<map/>")};
    TopicIdMap topicIds;
};

}  // namespace marrowpress
