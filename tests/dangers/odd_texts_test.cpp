#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "host/utf8.h"
#include "marrowpress/messages.h"
#include "tests/dangers/danger.h"
#include "tests/support/message_texts.h"
#include "tests/support/texts.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kVeryLong = 100'000;
/// Longer than the lines about them may be.
constexpr std::size_t kLong = 5'000;

/// What somebody may write where a reference, a name or a title is wanted; UTF-8.
std::vector<std::string> oddTexts() {
    std::vector<std::string> texts{
        "%s%n",
        "%n%n%n%n",
        "%99999999s",
        "%",
        "%%",
        "%zz",
        "%0",
        "%00",
        "a%00b.dita",
        "%2F",
        "%2e%2e%2fa",
        "%C3",
        "%C3%28",
        "%ED%A0%80",
        "%FF%FE",
        "%23",
        " ",
        "  a  ",
        "\t",
        "a\nb",
        "#",
        "##",
        "#/",
        "#./a",
        "#a/b/c",
        "a#b#c",
        "?",
        "a?b=c&d",
        ".",
        "..",
        "./",
        "\\",
        "\\\\",
        "a\\b",
        "C:\\a",
        "c:",
        ":",
        "://",
        "http:",
        "http://",
        "http://[",
        "file:",
        "file:a",
        "FILE:///a",
        "mailto:a@b",
        "urn:a",
        "javascript:a()",
        "data:,a",
        "~",
        "$HOME/${HOME}",
        "`a` $(a) ; | & > <",
        "\"'",
        "]]>",
        "<!--",
        "&amp;",
        "*",
        "-",
        "--",
        "CON",
        "a.dita.",
        "\xC2\x85",
        "\xE2\x80\xAE",
        "\xEF\xBB\xBF",
        "\xEF\xBF\xBD",
        "\xF0\x9F\x98\x80",
        "e\xCC\x81",
        std::string(300, 'a'),
        std::string(kVeryLong, 'a'),
        std::string(kLong, '%'),
        std::string(kLong, '/'),
        std::string(kLong, '#'),
        repeated("a/", kVeryLong / 2),
    };
    // Lines about these are cut, each at another byte of a character.
    for (const char* const start : {"", "a", "ab", "abc"}) {
        texts.push_back(start + repeated("\xF0\x9F\x98\x80", kLong / 4));
    }
    return texts;
}

/// What means the folder at the root; a map is looked for there.
std::vector<std::string> rootFolderTexts() {
    return {"/",
            "//",
            "///",
            "file://",
            "file:///",
            "../../../../../../../../../../../..",
            repeated("../", kVeryLong / 3)};
}

/// `text` as the value of an attribute, which holds its blanks as they are.
std::string asValue(const std::string& text) {
    return replacedAll(replacedAll(escaped(text), "\n", "&#10;"), "\t", "&#9;");
}

class OddTextDangerTest : public DangerTest {
protected:
    OddTextDangerTest() {
        watch = [this](const std::string& line) {
            longestLine_ = std::max(longestLine_, line.size());
        };
    }

    /// Publishes, and expects the topic beside to be whole.
    void expectBesideWhole() {
        EXPECT_EQ(publish(), 0);
        EXPECT_TRUE(isBesideWhole());
        expectOrder();
    }

    /// Nothing is left over, and what came out is as long, and of such bytes, as it is to be.
    void expectOrder() {
        EXPECT_TRUE(isTidy());
        EXPECT_TRUE(isValidUtf8(operations.str()));
        EXPECT_LE(longestLine_, kLongestMessageLine);
    }

    /// The paths that are not in the folder of the outputs.
    std::string outside() const {
        std::string paths;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder.path())) {
            paths += entry.path().string() + "\n";
        }
        return paths;
    }

    static std::string shown(const std::string& text) {
        return "\"" + text.substr(0, 60) + "\", " + std::to_string(text.size()) + " bytes";
    }

private:
    std::size_t longestLine_ = 0;
};

/// A reference in a map or in a topic; "@" stands for its value, "$" for its number.
struct Reference {
    const char* name;
    const char* inMap;
    const char* inTopic;
};

const Reference kReferences[] = {
    {"TopicReference", "<topicref href=\"@\"/>", ""},
    {"TopicReferenceWithAFormat", "<topicref href=\"@\" format='dita' type='topic'/>", ""},
    {"MapReference", "<mapref href=\"@\" format='ditamap'/>", ""},
    {"KeyDefinition", "<keydef keys='k$' href=\"@\"/>",
     "<p conkeyref='k$/p'/><xref keyref='k$'/><image keyref='k$'/>"},
    {"Key", "<keydef keys=\"@\" href='beside.dita'/>",
     "<p conkeyref=\"@\"/><p conkeyref=\"@/p\"/><xref keyref=\"@\"/><ph keyref=\"@\"/>"},
    {"ContentReference", "", "<p conref=\"@\"/>"},
    {"FragmentOfAContentReference", "", "<p conref=\"beside.dita#@\"/>"},
    {"EndOfARange", "", "<p conref='beside.dita#beside/p' conrefend=\"@\"/>"},
    {"ContentReferenceInTheMap", "<topicref conref=\"@\"/>", ""},
    {"Image", "", "<image href=\"@\"/>"},
    {"CrossReference", "", "<xref href=\"@\"/>"},
    {"LocalCrossReference", "", "<xref href=\"@\" scope='local' format='dita'/>"},
    {"Object", "", "<object data=\"@\"/>"},
    {"Link", "", "<related-links><link href=\"@\"/></related-links>"},
};

class OddReferenceDangerTest : public OddTextDangerTest,
                               public testing::WithParamInterface<Reference> {
protected:
    /// Writes a map and a topic that have such a reference for each of the texts.
    void writeReferences(const std::vector<std::string>& texts) const {
        std::string inMap;
        std::string inTopic;
        for (std::size_t number = 0; number < texts.size(); ++number) {
            const auto filled = [&](std::string pattern) {
                pattern = replacedAll(std::move(pattern), "$", std::to_string(number));
                return replacedAll(std::move(pattern), "@", asValue(texts[number]));
            };
            inMap += filled(GetParam().inMap);
            inTopic += filled(GetParam().inTopic);
        }
        folder.write("odd.dita", topic("odd", "<body>" + inTopic + "</body>"));
        writeMap(inMap + reference("topicref", "odd.dita"));
    }
};

TEST_P(OddReferenceDangerTest, LeavesTheTopicBesideItWhole) {
    writeReferences(oddTexts());
    expectBesideWhole();
}

TEST_P(OddReferenceDangerTest, ToTheRootFolderEndsTheRunWhereAMapIsWanted) {
    const std::string name = GetParam().name;
    const bool mayBeAMap =
        name == "TopicReference" || name == "MapReference" || name == "KeyDefinition";
    if (!mayBeAMap) {
        writeReferences(rootFolderTexts());
        expectBesideWhole();
        return;
    }
    for (const std::string& text : rootFolderTexts()) {
        writeReferences({text});
        EXPECT_EQ(publish(), -42) << text.substr(0, 60);
        EXPECT_TRUE(console == cannotRead("/") || console == cannotRead("//") ||
                    console == cannotRead("///"))
            << console;
        expectOrder();
    }
}

INSTANTIATE_TEST_SUITE_P(By, OddReferenceDangerTest, testing::ValuesIn(kReferences),
                         [](const auto& reference) { return std::string(reference.param.name); });

/// A file's number in a name.
std::string numbered(std::size_t number) {
    return "odd" + std::to_string(number) + ".dita";
}

TEST_F(OddTextDangerTest, InATitleLeavesTheRestWhole) {
    const std::vector<std::string> texts = oddTexts();
    std::string references;
    for (std::size_t number = 0; number < texts.size(); ++number) {
        folder.write(numbered(number), "<topic id='odd' props=\"" + asValue(texts[number]) +
                                           "\"><title>" + escaped(texts[number]) +
                                           "</title></topic>");
        references += reference("topicref", numbered(number));
    }
    writeMap(references);
    expectBesideWhole();
    const std::string output = folder.read("out/book.dita");
    for (const std::string& text : texts) {
        if (text.find_first_of("\"<>&\t\n") == std::string::npos) {
            EXPECT_NE(output.find("<title>" + text + "</title>"), std::string::npos) << text;
        }
    }
}

TEST_F(OddTextDangerTest, InATitleThatNamesAComponentStaysInTheFolder) {
    const std::string before = outside();
    std::string heads;
    for (const std::vector<std::string>& texts : {oddTexts(), rootFolderTexts()}) {
        for (const std::string& text : texts) {
            heads += "<topichead navtitle=\"" + asValue(text) + "\"/>";
        }
    }
    writeMap(heads);
    EXPECT_EQ(status(publishFlatBook(flatBook())), 0);
    EXPECT_TRUE(folder.read("out/beside.qs").ends_with("<p>Beside it.</p></body></topic></dita>"));
    EXPECT_EQ(outside(), before);
    expectOrder();
}

bool isFileName(const std::string& text) {
    constexpr std::size_t kLongestName = 240;
    return text.find('/') == std::string::npos && text.size() <= kLongestName;
}

TEST_F(OddTextDangerTest, InAFileNameLeavesTheTopicBesideItWhole) {
    std::string references;
    for (const std::string& text : oddTexts()) {
        if (isFileName(text)) {
            folder.write("odd/" + text + ".dita", topic("odd"));
            folder.write("odd/" + text + ".ditamap", map(""));
            references += "<topicref href=\"odd/" + asValue(text) + ".dita\"/><mapref href=\"odd/" +
                          asValue(text) + ".ditamap\" format='ditamap'/>";
        }
    }
    writeMap(references);
    expectBesideWhole();
}

TEST_F(OddTextDangerTest, InTheNamesOfARequestIsServed) {
    for (const std::string& text : oddTexts()) {
        // A backslash separates the parts of a path.
        if (!isFileName(text) || text.find('\\') != std::string::npos) {
            continue;
        }
        boost::json::object params = composite();
        params["ditamap"] = folder.write("odd/" + text + ".ditamap", folder.read("root.ditamap"));
        folder.write("odd/beside.dita", folder.read("beside.dita"));
        params["output"] = folder.file("out/" + text + ".dita");
        params["ditaVal"] = folder.write("odd/" + text + ".ditaval", "<val/>");
        EXPECT_EQ(publish(params), 0) << text;
        EXPECT_EQ(console, "") << text;
        EXPECT_NE(folder.read("out/" + text + ".dita").find("<p>Beside it.</p>"), std::string::npos)
            << text;
        expectOrder();
    }
}

}  // namespace
}  // namespace marrowpress
