#include "support/hrefs.h"

#include <gtest/gtest.h>

#include "support/text.h"

namespace marrowpress {
namespace {

using namespace std::string_view_literals;

struct ExternalCase {
    std::u16string_view text;
    bool isExternal;
};

constexpr ExternalCase kExternalCases[] = {
    {u"http://host/a", true},
    {u"https://host/a", true},
    {u"mailto:a@b", true},
    {u"http://", true},
    {u"https://", true},
    {u"mailto:", true},
    {u"", false},
    {u"h", false},
    {u"http:/", false},
    {u"http:/host", false},
    {u"https:/", false},
    {u"mailto", false},
    {u"HTTP://host", false},
    {u"Https://host", false},
    {u"MAILTO:a@b", false},
    {u"httpS://host", false},
    {u" http://host", false},
    {u"ftp://host", false},
    {u"file:///p/a", false},
    {u"a/http://host", false},
    {u"#http://host", false},
    {u"http//host/a.dita", false},
};

TEST(IsExternalUriTest, ComparesTheSchemeExactly) {
    for (const ExternalCase& example : kExternalCases) {
        EXPECT_EQ(isExternalUri(example.text), example.isExternal) << toUtf8(example.text);
    }
}

struct SplitCase {
    std::u16string_view href;
    std::u16string_view path;
    std::u16string_view topicId;
    std::u16string_view elementId;
    std::u16string_view joined;
};

constexpr SplitCase kSplitCases[] = {
    {u"a.dita#t/e", u"a.dita", u"t", u"e", u"a.dita#t"},
    {u"a.dita#t", u"a.dita", u"t", u"", u"a.dita#t"},
    {u"#t/e/f", u"", u"t", u"e/f", u"#t"},
    {u"a.dita", u"a.dita", u"", u"", u"a.dita"},
    {u"a#b#c/d", u"a#b", u"c", u"d", u"a#b#c"},
    {u"", u"", u"", u"", u""},
    {u"#", u"", u"", u"", u""},
    {u"a.dita#", u"a.dita", u"", u"", u"a.dita"},
    {u"a.dita#/e", u"a.dita", u"", u"e", u"a.dita"},
    {u"a.dita#/", u"a.dita", u"", u"", u"a.dita"},
    {u"a.dita#t/", u"a.dita", u"t", u"", u"a.dita#t"},
    {u"a.dita#t//e", u"a.dita", u"t", u"/e", u"a.dita#t"},
    {u"sub/a.dita#t", u"sub/a.dita", u"t", u"", u"sub/a.dita#t"},
    {u"sub/a.dita", u"sub/a.dita", u"", u"", u"sub/a.dita"},
    {u"a##t", u"a#", u"t", u"", u"a##t"},
    {u"a#b/c#", u"a#b/c", u"", u"", u"a#b/c"},
    {u"a.dita#./e", u"a.dita", u".", u"e", u"a.dita#."},
    {u"a.dita#t e", u"a.dita", u"t e", u"", u"a.dita#t e"},
    {u"http://h/p?q#f/g", u"http://h/p?q", u"f", u"g", u"http://h/p?q#f"},
    {u"a\\b#t\\e", u"a\\b", u"t\\e", u"", u"a\\b#t\\e"},
};

TEST(SplitHrefTest, SplitsAtTheLastHashAndTheFirstSlashBehindIt) {
    for (const SplitCase& example : kSplitCases) {
        const HrefParts parts = splitHref(example.href);
        EXPECT_EQ(parts.path, example.path) << toUtf8(example.href);
        EXPECT_EQ(parts.topicId, example.topicId) << toUtf8(example.href);
        EXPECT_EQ(parts.elementId, example.elementId) << toUtf8(example.href);
    }
}

TEST(SplitHrefTest, GivesViewsIntoItsText) {
    const std::u16string href = u"a.dita#t/e";
    const HrefParts parts = splitHref(href);
    EXPECT_EQ(parts.path.data(), href.data());
    EXPECT_EQ(parts.topicId.data(), href.data() + 7);
    EXPECT_EQ(parts.elementId.data(), href.data() + 9);
}

TEST(JoinHrefTest, LeavesOutTheElementIdAndAnEmptyTopicId) {
    for (const SplitCase& example : kSplitCases) {
        EXPECT_EQ(joinHref(splitHref(example.href)), example.joined) << toUtf8(example.href);
    }
    EXPECT_EQ(joinHref({u"", u"", u"e"}), u"");
    EXPECT_EQ(joinHref({u"p", u"", u"e"}), u"p");
}

struct FormCase {
    std::string_view text;
    bool isUrlForm;
};

constexpr FormCase kFormCases[] = {
    // Plain names.
    {"", false},
    {"a", true},
    {"a.dita", true},
    {"a%20b.dita", true},
    {"\xC3\xA4.dita", true},
    {"a\tb.dita", true},
    // A blank, a colon, a backslash or a slash makes a name a path or a URL.
    {"a b.dita", false},
    {"a:b", false},
    {"a\\b.dita", false},
    {"\\a.dita", false},
    {" ", false},
    // The first slash tells.
    {"a/b.dita", true},
    {"./b.dita", true},
    {"../b.dita", true},
    {"a/", true},
    {"a b/c", true},
    {"a\\b/c", true},
    {"C:/a", true},
    {"http://host/a", true},
    {"dctm://host/a", true},
    {"/", false},
    {"/a", false},
    {"/a/b.dita", false},
    {"//host/a", false},
    {"C:\\a\\b", false},
    {"\\\\host\\a", false},
    // The scheme.
    {"file:", true},
    {"file:a", true},
    {"file:a b", true},
    {"file:\\a\\b", true},
    {"file:/a", true},
    {"file://a", true},
    {"file:///a", true},
    {"FILE:a", false},
    {"File:\\a", false},
    {"mailto:a@b", false},
    {"/file:a", false},
};

TEST(IsUrlFormPathTest, TellsByTheSeparatorsAndTheScheme) {
    for (const FormCase& example : kFormCases) {
        EXPECT_EQ(isUrlFormPath(example.text), example.isUrlForm) << example.text;
    }
}

struct NativeCase {
    std::string_view text;
    std::string_view path;
};

constexpr NativeCase kNativeCases[] = {
    // The slashes behind the scheme, without a drive.
    {"file:", ""},
    {"file:a/b", "a/b"},
    {"file:/a/b", "/a/b"},
    {"file://a/b", "//a/b"},
    {"file:///a/b", "/a/b"},
    {"file:////a/b", "//a/b"},
    {"file://///a/b", "//a/b"},
    {"file:///", "/"},
    {"file://", "//"},
    // With a drive: a colon anywhere behind the scheme.
    {"file:C:/a", "C:/a"},
    {"file:/C:/a", "C:/a"},
    {"file://C:/a", "C:/a"},
    {"file:///C:/a", "C:/a"},
    {"file:////C:/a", "/C:/a"},
    {"file://///C:/a", "//C:/a"},
    {"file:///a/b:c", "a/b:c"},
    {"file:///C%3A/a", "/C:/a"},
    // What stands behind the scheme is decoded, with and without a slash.
    {"file:a%20b", "a b"},
    {"file:///a%20b/c%C3%A4", "/a b/c\xC3\xA4"},
    {"file:///C:/a%20b", "C:/a b"},
    {"file:a\\b", "a\\b"},
    // Kept as they are.
    {"", ""},
    {"a.dita", "a.dita"},
    {"a%20b.dita", "a%20b.dita"},
    {"a%2Fb.dita", "a%2Fb.dita"},
    {"a\\b%20c", "a\\b%20c"},
    {"dctm://host/a%20b", "dctm://host/a%20b"},
    {"FILE:a%20b", "FILE:a%20b"},
    // Decoded.
    {"a/b.dita", "a/b.dita"},
    {"a/b%20c.dita", "a/b c.dita"},
    {"a%20b/c", "a b/c"},
    {"dctm:/a%20b", "dctm:/a b"},
    {"DCTM://a%20b", "DCTM://a b"},
    {"FILE:///a%20b", "FILE:///a b"},
    {"http://host/a%20b", "http://host/a b"},
    {"a/%41%4a%4A%aF", "a/AJJ\xAF"},
    {"a/b%2Fc%2fd", "a/b/c/d"},
    {"a/b%5Cc", "a/b\\c"},
    {"a/%2541", "a/%41"},
    {"a/b%23c", "a/b#c"},
    {"a/b+c", "a/b+c"},
    {"a/%C3%A4", "a/\xC3\xA4"},
    {"a/%00b"sv, "a/\0b"sv},
    {"a/%7F%80%FF", "a/\x7F\x80\xFF"},
    {"a/b%20", "a/b "},
    // Escapes that are cut short stay.
    {"a/%", "a/%"},
    {"a/%4", "a/%4"},
    {"a/b%20%2", "a/b %2"},
    {"a/%30%31%39%40%4a%4F%5f%7E%6B%6c%6D%6e", "a/019@JO_~klmn"},
};

TEST(UrlFormToNativePathTest, UndoesSchemeAndEscapes) {
    for (const NativeCase& example : kNativeCases) {
        EXPECT_EQ(urlFormToNativePath(example.text), example.path) << example.text;
    }
}

TEST(UrlFormToNativePathTest, TakesAnyTwoCharactersForDigits) {
    for (const std::string escape : {"%zz", "%g0", "%0g", "%--", "%  ", "%%4", "%\xC3\xA4"}) {
        const std::string path = urlFormToNativePath("a/" + escape + "end");
        ASSERT_EQ(path.size(), 6U) << escape;
        EXPECT_EQ(path.substr(0, 2), "a/") << escape;
        EXPECT_EQ(path.substr(3), "end") << escape;
    }
}

struct UriPathCase {
    std::u16string_view text;
    std::u16string_view path;
};

constexpr UriPathCase kUriCases[] = {
    {u"file:///p/a.dita", u"/p/a.dita"},
    {u"file:///", u"/"},
    {u"file:///p/../q//./a.dita", u"/q/a.dita"},
    {u"file:///p\\q\\a.dita", u"/p/q/a.dita"},
    {u"file:///p/a%20b.dita", u"/p/a%20b.dita"},
    {u"file:///p/a b.dita", u"/p/a b.dita"},
    {u"file:///p/\u00E4.dita", u"/p/\u00E4.dita"},
    {u"", u""},
    {u"/p/../a.dita", u"/p/../a.dita"},
    {u"a.dita", u"a.dita"},
    {u"file://host/../a.dita", u"file://host/../a.dita"},
    {u"file:/p/../a.dita", u"file:/p/../a.dita"},
    {u"FILE:///p/../a.dita", u"FILE:///p/../a.dita"},
    {u"http://host/../a.dita", u"http://host/../a.dita"},
};

TEST(UriToPathTest, CutsTheSchemeOfLocalFilesAndNormalisesThese) {
    for (const UriPathCase& example : kUriCases) {
        EXPECT_EQ(uriToPath(example.text), example.path) << toUtf8(example.text);
    }
}

}  // namespace
}  // namespace marrowpress
