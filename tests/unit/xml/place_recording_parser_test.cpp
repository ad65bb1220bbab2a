#include "xml/place_recording_parser.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "dom/copies.h"
#include "support/text.h"
#include "tests/support/xml_text.h"
#include "tests/unit/xml/sample_documents.h"
#include "xml/dom_parser.h"

namespace marrowpress {
namespace {

/// Stands in front of each start tag in the text of a test, in the order of the elements, and is
/// taken out before the text is parsed.
constexpr char16_t kMark = u'@';

/// A text without its marks, and where they stood: "line:column" for each.
struct MarkedText {
    std::u16string text;
    std::string places;
};

MarkedText parsedMarks(const std::string& marked) {
    MarkedText result;
    std::size_t line = 1;
    std::size_t column = 1;
    for (const char16_t unit : toUtf16(marked)) {
        if (unit == kMark) {
            result.places += std::to_string(line) + ":" + std::to_string(column) + " ";
            continue;
        }
        const bool endsLine = unit == u'\n';
        const bool isSecondOfLineEnd = endsLine && result.text.ends_with(u'\r');
        if (unit == u'\r' || (endsLine && !isSecondOfLineEnd)) {
            ++line;
            column = 1;
        } else if (!endsLine) {
            ++column;
        }
        result.text += unit;
    }
    return result;
}

std::string inUtf8(const std::u16string& text) {
    return toUtf8(std::u16string_view(text));
}

std::string inLatin1(const std::u16string& text) {
    return {text.begin(), text.end()};
}

/// With a byte order mark.
std::string inUtf16(const std::u16string& text) {
    std::string bytes = "\xFF\xFE";
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

class PlaceRecordingDOMParserTest : public XmlTest {
protected:
    PlaceRecordingDOMParserTest() {
        SourcePlaces::begin();
        bundle_ = std::make_unique<ParserBundle>();
    }
    ~PlaceRecordingDOMParserTest() override {
        bundle_.reset();
        SourcePlaces::end();
    }

    SourcePlaces& places() { return *SourcePlaces::existing(); }

    /// Parses a file of that name, with these bytes.
    xercesc::DOMDocument& parse(const std::string& name, const std::string& bytes) {
        folder.write(name, bytes);
        return *bundle_->parseFile(folder.file16(name), ParserBundle::kAllRetries);
    }

    std::string placeOf(const xercesc::DOMNode& node) {
        const SourcePlace place = places().placeOf(node);
        const std::filesystem::path file(
            toUtf8(std::u16string_view(places().filePath(place.file))));
        const bool isOwn = file.filename() == "d.xml";
        return (isOwn ? "" : file.filename().string() + ":") + std::to_string(place.line) + ":" +
               std::to_string(place.column) + " ";
    }

    /// The places of all elements in document order; in another file than "d.xml" with its name.
    std::string placesIn(const xercesc::DOMDocument& document) {
        std::string text;
        xercesc::DOMElement* const root = document.getDocumentElement();
        for (xercesc::DOMElement* element = root; element;
             element = nextInSubtree(element, *root)) {
            text += placeOf(*element);
        }
        return text;
    }

    /// Each element of the text has to stand at its mark.
    void expectMarks(const std::string& marked,
                     std::string (*encoded)(const std::u16string&) = inUtf8) {
        const MarkedText expected = parsedMarks(marked);
        ASSERT_NE(expected.places, "") << "nothing is expected";
        EXPECT_EQ(placesIn(parse("d.xml", encoded(expected.text))), expected.places) << marked;
    }

private:
    std::unique_ptr<ParserBundle> bundle_;
};

TEST_F(PlaceRecordingDOMParserTest, TheRootStandsBehindAllThatMayPrecedeIt) {
    for (const char* const marked : {
             "@<r/>",
             "<?xml version='1.0'?>@<r/>",
             "<?xml version='1.0' encoding='UTF-8'?>\n@<r/>",
             "<?xml version='1.0'?>\n\n   @<r/>",
             "<!-- one --><!-- two -->@<r/>",
             "<!-- one\nand a half -->\n  <!-- two -->\n@<r/>",
             "<?pi some data?>@<r/>",
             "<?pi some\ndata?>\n\t@<r/>",
             "<!DOCTYPE r>@<r/>",
             "<!DOCTYPE r [<!ELEMENT r ANY>\n]>\n@<r/>",
             "<?xml version='1.0'?>\n<!-- c -->\n<?pi?>\n<!DOCTYPE r>\n<!-- d --> @<r/>",
         }) {
        expectMarks(marked);
    }
}

TEST_F(PlaceRecordingDOMParserTest, AnElementStandsWhereItsStartTagBegins) {
    for (const char* const marked : {
             "@<r>@<a>@<b/></a></r>",
             "@<r>text@<a/>text@<b/></r>",
             "@<r>\n  @<a>x</a>\n  @<b>y</b>\n</r>",
             "@<r><!-- c -->@<a/><?pi x?>@<b/></r>",
             "@<r>\n<!-- c\n -->@<a/></r>",
             "@<r>@<a></a>@<b></b></r>",
             "@<r>@<a/>\n@<a/>@<a /></r>",
             "@<r>@<a></a\n>@<b/></r>",
         }) {
        expectMarks(marked);
    }
}

TEST_F(PlaceRecordingDOMParserTest, AStartTagMayHoldLineEndsAndAngleBrackets) {
    for (const char* const marked : {
             "@<r\n  a='1'\n  b='2'\n>@<a/></r>",
             "@<r a='x > y'>@<a/></r>",
             "@<r a='1'>@<a b='>'\n c='/>'/>@<b/></r>",
             "@<r a='&lt;x'>@<a/></r>",
             "@<r>@<a\n/>\n@<b\n></b></r>",
             "@<r a='\n\n'>@<a/></r>",
         }) {
        expectMarks(marked);
    }
}

TEST_F(PlaceRecordingDOMParserTest, TextMayBeOfAnyKind) {
    for (const char* const marked : {
             "@<r><![CDATA[ <x> ]]>@<a/></r>",
             "@<r><![CDATA[a\nb]]>\n@<a/><![CDATA[]]>@<b/></r>",
             "@<r>a &amp; b@<a/></r>",
             "@<r>&#65;&#x42;@<a/>&lt;@<b/></r>",
             "@<r>]]@<a/>></r>",
         }) {
        expectMarks(marked);
    }
}

TEST_F(PlaceRecordingDOMParserTest, ColumnsCountTabsAsOne) {
    expectMarks("@<r>\n\t\t@<a/>\t@<b/></r>");
}

TEST_F(PlaceRecordingDOMParserTest, ColumnsCountUtf16CodeUnits) {
    expectMarks("@<r>\xC3\xA4@<a/>\xE2\x82\xAC@<b/></r>");
    expectMarks("@<r>\xF0\x9F\x98\x80@<a/>\xF0\x9F\x98\x80\xF0\x9F\x98\x80@<b/></r>");
    expectMarks("@<r a='\xF0\x9F\x98\x80'>@<\xC3\xA4 \xC3\xB6='\xC3\xBC'/>@<b/></r>");
    expectMarks("@<r><!-- \xC3\xA4\xF0\x9F\x98\x80 -->@<a/></r>");
}

TEST_F(PlaceRecordingDOMParserTest, ALineMayEndInEachOfTheThreeWays) {
    for (const char* const end : {"\n", "\r\n", "\r"}) {
        const std::string line = end;
        expectMarks("<?xml version='1.0'?>" + line + "<!-- c -->" + line + "@<r" + line +
                    "  a='1'>" + line + line + "  @<a/>text" + line + "@<b/>" + line + "</r>");
    }
}

TEST_F(PlaceRecordingDOMParserTest, TheEncodingOfTheFileDoesNotMatter) {
    const std::string content = "<!-- \xC3\xA4 -->\n@<r>\xC3\xB6@<a b='\xC3\xBC'/>\n@<b/></r>";
    expectMarks("<?xml version='1.0' encoding='ISO-8859-1'?>\n" + content, inLatin1);
    expectMarks("<?xml version='1.0' encoding='UTF-16'?>\n" + content, inUtf16);
    expectMarks("\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-8'?>\n" + content);
}

TEST_F(PlaceRecordingDOMParserTest, ALongDocumentIsReadInSeveralBlocks) {
    std::string marked = "@<r>";
    for (int line = 0; line < 4000; ++line) {
        marked += "\n  @<a b='0123456789'>text \xE2\x82\xAC</a><!-- c -->@<b/>";
    }
    expectMarks(marked + "</r>");
    expectMarks("@<r>" + std::string(100000, 'x') + "@<a/>" + std::string(100000, ' ') +
                "@<b/></r>");
}

TEST_F(PlaceRecordingDOMParserTest, ElementsOfAnInternalEntityStandWhereItIsReferredTo) {
    expectMarks(
        "<!DOCTYPE r [<!ELEMENT r ANY><!ELEMENT a ANY><!ELEMENT b ANY>"
        "<!ENTITY e 'text'>]>\n@<r>x&e;@<a/>&e;&e;@<b/></r>");
    const MarkedText around = parsedMarks(
        "<!DOCTYPE r [<!ELEMENT r ANY><!ELEMENT a ANY>"
        "<!ELEMENT b ANY><!ENTITY e 'x<a/>y<a/>z'>]>\n"
        "@<r>\n  @&e;@<b/></r>");
    const std::string found = placesIn(parse("d.xml", inUtf8(around.text)));
    EXPECT_EQ(around.places, "2:1 3:3 3:6 ");
    EXPECT_EQ(found, "2:1 3:3 3:3 3:6 ");
}

TEST_F(PlaceRecordingDOMParserTest, ElementsOfEntitiesInEntitiesStandAtTheOutermostReference) {
    const std::string text =
        "<!DOCTYPE r [<!ELEMENT r ANY><!ELEMENT a ANY><!ELEMENT b ANY>"
        "<!ENTITY inner '<a>&#38;amp;</a>'><!ENTITY outer 'x&inner;<a/>&inner;'>]>\n"
        "<r><b>&outer;</b>\n&inner;<b/></r>";
    EXPECT_EQ(placesIn(parse("d.xml", text)), "2:1 2:4 2:7 2:7 2:7 3:1 3:8 ");
}

TEST_F(PlaceRecordingDOMParserTest, AnInternalEntityInAnAttributeOrATextMovesNothing) {
    expectMarks(
        "<!DOCTYPE r [<!ELEMENT r ANY><!ATTLIST r a CDATA #IMPLIED><!ELEMENT a ANY>"
        "<!ENTITY e 'a longer text than the reference'>]>\n@<r a='&e;'>@<a/>&e;\n&e; @<a/></r>");
}

TEST_F(PlaceRecordingDOMParserTest, ElementsOfAnExternalEntityStandInItsFile) {
    folder.write("e.ent", "text\n <a/><b>\n<a/></b>");
    const std::string text =
        "<!DOCTYPE r [<!ELEMENT r ANY><!ELEMENT a ANY><!ELEMENT b ANY>"
        "<!ENTITY e SYSTEM 'e.ent'>]>\n<r>&e;<a/>\n<b/></r>";
    EXPECT_EQ(placesIn(parse("d.xml", text)), "2:1 e.ent:2:2 e.ent:2:6 e.ent:3:1 2:7 3:1 ");
}

TEST_F(PlaceRecordingDOMParserTest, TheDoctypeHasItsPlace) {
    for (const char* const marked : {
             "@<!DOCTYPE r><r/>",
             "<?xml version='1.0'?>\n@<!DOCTYPE r [<!ELEMENT r ANY>]>\n<r/>",
             "<!-- c -->\n <?pi?>\n  @<!DOCTYPE\n r>\n<r/>",
         }) {
        const MarkedText expected = parsedMarks(marked);
        const xercesc::DOMDocument& document = parse("d.xml", inUtf8(expected.text));
        ASSERT_TRUE(document.getDoctype());
        EXPECT_EQ(placeOf(*document.getDoctype()), expected.places) << marked;
    }
}

TEST_F(PlaceRecordingDOMParserTest, TheTryThatSucceedsGivesThePlaces) {
    folder.write("topic.dtd", kTopicDtd);
    const std::string start = topicDoctype("topic.dtd") + "\n<topic id='t'>\n";
    EXPECT_EQ(placesIn(parse("d.xml", start + "<title>T</title>\n  <p id='p'>x</p></topic>")),
              "2:1 3:1 4:3 ");
    // Without its title it breaks the DTD, at its end, when all places were seen once.
    EXPECT_EQ(placesIn(parse("d.xml", start + "  <p id='p'>x</p></topic>")), "2:1 3:3 ");
    EXPECT_EQ(placesIn(parse("d.xml", topicDoctype("gone.dtd") + "\n <topic id='t'/>")), "2:2 ");
    EXPECT_EQ(placesIn(parse("d.xml", "<!DOCTYPE r [<!ELEMENT r EMPTY>]>\n<r>\n<a/></r>")),
              "2:1 3:1 ");
}

TEST_F(PlaceRecordingDOMParserTest, SeveralFilesKeepTheirPlaces) {
    const xercesc::DOMDocument& first = parse("d.xml", "\n<r><a/></r>");
    const xercesc::DOMDocument& second = parse("e.xml", "<r>\n<a/></r>");
    EXPECT_EQ(placesIn(first), "2:1 2:4 ");
    EXPECT_EQ(placesIn(second), "e.xml:1:1 e.xml:2:1 ");
}

TEST_F(PlaceRecordingDOMParserTest, AFailedParseLeavesNoPlaceForTheNext) {
    EXPECT_ANY_THROW(parse("d.xml", "<r>\n<a>\n</r>"));
    EXPECT_EQ(placesIn(parse("d.xml", "<r>\n\n<a/></r>")), "1:1 3:1 ");
}

TEST_F(PlaceRecordingDOMParserTest, TheTreeIsTheSameAsWithoutPlaces) {
    const std::string text =
        "<!DOCTYPE r [<!ELEMENT r ANY><!ELEMENT a ANY><!ATTLIST a b CDATA 'c'>"
        "<!ENTITY e 'x<a/>'>]><!-- 1 --><r> <?pi 2?>&e;<![CDATA[<]]><a b='&lt;'>&#9;</a></r>";
    const std::string observed = printed(*parse("d.xml", text).getDocumentElement());
    SourcePlaces::end();
    ParserBundle plain;
    const xercesc::DOMDocument* const document =
        plain.parseFile(folder.file16("d.xml"), ParserBundle::kAllRetries);
    SourcePlaces::begin();
    EXPECT_EQ(observed, printed(*document->getDocumentElement()));
}

}  // namespace
}  // namespace marrowpress
