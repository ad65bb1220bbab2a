#include "references/reference_resolution.h"
#include "support/text.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using std::string_view_literals::operator""sv;

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

struct PathCase {
    std::u16string_view text;
    std::u16string_view path;
};

constexpr PathCase kUriCases[] = {
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
    for (const PathCase& example : kUriCases) {
        EXPECT_EQ(uriToPath(example.text), example.path) << toUtf8(example.text);
    }
}

/// Against the document /p/q/a.dita.
constexpr PathCase kAbsoluteCases[] = {
    // Relative paths.
    {u"b.dita", u"/p/q/b.dita"},
    {u"./b.dita", u"/p/q/b.dita"},
    {u"sub/b.dita", u"/p/q/sub/b.dita"},
    {u"sub//b.dita", u"/p/q/sub/b.dita"},
    {u"sub/../b.dita", u"/p/q/b.dita"},
    {u"../b.dita", u"/p/b.dita"},
    {u"../../../../b.dita", u"/b.dita"},
    {u"sub/", u"/p/q/sub/"},
    {u".", u"/p/q/"},
    {u"sub\\b.dita", u"/p/q/sub/b.dita"},
    {u"..\\b.dita", u"/p/b.dita"},
    {u"a b.dita", u"/p/q/a b.dita"},
    {u"\u00E4\U0001D11E.dita", u"/p/q/\u00E4\U0001D11E.dita"},
    {u"sub/\u00E4\U0001D11E.dita", u"/p/q/sub/\u00E4\U0001D11E.dita"},
    {u"-dita-use-conref-target", u"/p/q/-dita-use-conref-target"},
    {u"C:b.dita", u"/p/q/C:b.dita"},
    // The document itself.
    {u"", u"/p/q/a.dita"},
    // External texts, before anything else.
    {u"http://host/x/../a%20b", u"http://host/x/../a%20b"},
    {u"https://host/a%2Fb", u"https://host/a%2Fb"},
    {u"mailto:a%20b@c", u"mailto:a%20b@c"},
    {u"mailto:a/b%20c", u"mailto:a/b%20c"},
    {u"http%3A//host/a%20b", u"http://host/a b"},
    {u"HTTP://host/a", u"/p/q/HTTP:/host/a"},
    // Absolute paths, unchanged and not normalised.
    {u"/x/../y//b.dita", u"/x/../y//b.dita"},
    {u"/x/a%20b.dita", u"/x/a%20b.dita"},
    {u"//host/share/b.dita", u"//host/share/b.dita"},
    {u"\\x\\..\\b.dita", u"\\x\\..\\b.dita"},
    {u"\\\\host\\share\\b.dita", u"\\\\host\\share\\b.dita"},
    {u"C:\\x\\..\\b%20.dita", u"C:\\x\\..\\b%20.dita"},
    {u"C:/x/../b.dita", u"C:/x/../b.dita"},
    {u"C:/x/b%20c.dita", u"C:/x/b c.dita"},
    {u"%2Fx/../y", u"/x/../y"},
    // File URLs.
    {u"file:///x/../a%20b.dita", u"/x/../a b.dita"},
    {u"file:/x/b.dita", u"/x/b.dita"},
    {u"file://host/x/b.dita", u"//host/x/b.dita"},
    {u"file:////host/x/b.dita", u"//host/x/b.dita"},
    {u"file:///C:/x/b.dita", u"C:/x/b.dita"},
    {u"file:sub/b.dita", u"/p/q/sub/b.dita"},
    {u"file:b%20c.dita", u"/p/q/b c.dita"},
    {u"file:", u"/p/q/a.dita"},
    {u"dctm://host/a%20b", u"/p/q/dctm:/host/a%20b"},
    // Percent escapes.
    {u"a%20b.dita", u"/p/q/a%20b.dita"},
    {u"a%2Fb.dita", u"/p/q/a%2Fb.dita"},
    {u"./a%20b.dita", u"/p/q/a b.dita"},
    {u"sub/a%20b.dita", u"/p/q/sub/a b.dita"},
    {u"sub/a%2Fb.dita", u"/p/q/sub/a/b.dita"},
    {u"sub/%2E%2E/b.dita", u"/p/q/b.dita"},
    {u"sub\\a%20b.dita", u"/p/q/sub/a%20b.dita"},
    {u"sub/%C3%A4.dita", u"/p/q/sub/\u00E4.dita"},
    {u"sub/%FF.dita", u"/p/q/???"},
    {u"sub/%C3", u"/p/q/???"},
    {u"sub/a%00b.dita", u"/p/q/sub/a"},
    {u"sub/%", u"/p/q/sub/%"},
    {u"sub/%2", u"/p/q/sub/%2"},
};

using ToAbsolutePathTest = XmlTest;

TEST_F(ToAbsolutePathTest, TakesAPathAgainstTheFileOfTheDocument) {
    const ParsedXml parsed("<topic/>", u"file:///p/q/a.dita");
    for (const PathCase& example : kAbsoluteCases) {
        EXPECT_EQ(toAbsolutePath(example.text, parsed.document()), example.path)
            << toUtf8(example.text);
    }
}

TEST_F(ToAbsolutePathTest, NormalisesTheDocumentsOwnPath) {
    const ParsedXml parsed("<topic/>", u"file:///p/x/..//q\\a.dita");
    EXPECT_EQ(toAbsolutePath(u"", parsed.document()), u"/p/q/a.dita");
    EXPECT_EQ(toAbsolutePath(u"../b.dita", parsed.document()), u"/p/b.dita");
}

TEST_F(ToAbsolutePathTest, DecodesNothingInTheDocumentsPath) {
    const ParsedXml parsed("<topic/>", u"file:///p%20q/a%20b.dita");
    EXPECT_EQ(toAbsolutePath(u"", parsed.document()), u"/p%20q/a%20b.dita");
    EXPECT_EQ(toAbsolutePath(u"sub/c%20d.dita", parsed.document()), u"/p%20q/sub/c d.dita");
}

TEST_F(ToAbsolutePathTest, TakesADocumentUriThatIsNoLocalFileForAPath) {
    // The engine puts "file://" in front of an absolute path, but not of these.
    const ParsedXml relative("<topic/>", u"p/x/../a.dita");
    EXPECT_EQ(toAbsolutePath(u"", relative.document()), u"p/a.dita");
    EXPECT_EQ(toAbsolutePath(u"b.dita", relative.document()), u"p/b.dita");
    const ParsedXml remote("<topic/>", u"http://host/x/../a.dita");
    EXPECT_EQ(toAbsolutePath(u"", remote.document()), u"http:/host/a.dita");
    EXPECT_EQ(toAbsolutePath(u"b.dita", remote.document()), u"http:/host/b.dita");
}

}  // namespace
}  // namespace marrowpress
