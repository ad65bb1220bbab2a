#include "references/reference_paths.h"

#include <filesystem>

#include "support/scope_exit.h"
#include "support/text.h"
#include "tests/support/file_conditions.h"
#include "tests/unit/references/reference_samples.h"

namespace marrowpress {
namespace {

struct ReferencePathCase {
    std::u16string_view text;
    std::u16string_view path;
};

/// Against the document /p/q/a.dita.
constexpr ReferencePathCase kReferencePathCases[] = {
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
    for (const ReferencePathCase& example : kReferencePathCases) {
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

using ResolveExistingPathTest = ReferenceSampleTest;

TEST_F(ResolveExistingPathTest, GivesTheAbsolutePathOfAFile) {
    const ParsedXml parsed = parse("<map/>");
    EXPECT_EQ(resolveExistingPath(u"a.dita", parsed.document(), nullptr), folder.file16("a.dita"));
    EXPECT_EQ(resolveExistingPath(u"sub/../a.dita", parsed.document(), nullptr),
              folder.file16("a.dita"));
    EXPECT_EQ(resolveExistingPath(u"sub/b%20c.dita", parsed.document(), nullptr),
              folder.file16("sub/b c.dita"));
    EXPECT_EQ(resolveExistingPath(folder.file16("a.dita"), parsed.document(), nullptr),
              folder.file16("a.dita"));
    EXPECT_EQ(resolveExistingPath(u"", parsed.document(), nullptr), folder.file16("map.ditamap"));
    EXPECT_TRUE(console().empty());
}

TEST_F(ResolveExistingPathTest, AFolderExistsToo) {
    const ParsedXml parsed = parse("<map/>");
    EXPECT_EQ(resolveExistingPath(u"sub", parsed.document(), nullptr), folder.file16("sub"));
    EXPECT_TRUE(console().empty());
}

TEST_F(ResolveExistingPathTest, ReportsAMissingFileWithItsPath) {
    const ParsedXml parsed = parse("<map/>");
    EXPECT_EQ(resolveExistingPath(u"sub/../n\u00E4%20x.dita", parsed.document(), nullptr), u"");
    EXPECT_EQ(console(), std::vector{referencedFileNotFound(folder.file("n\xC3\xA4 x.dita"))});
}

TEST_F(ResolveExistingPathTest, ReportsAMissingDocumentOfItsOwn) {
    const ParsedXml parsed("<map/>", uriOf("gone.ditamap"));
    EXPECT_EQ(resolveExistingPath(u"", parsed.document(), nullptr), u"");
    EXPECT_EQ(console(), std::vector{referencedFileNotFound(folder.file("gone.ditamap"))});
}

TEST_F(ResolveExistingPathTest, LeavesExternalUrisAloneAndDoesNotLookForThem) {
    const ParsedXml parsed = parse("<map/>");
    for (const std::u16string_view uri :
         {u"http://host/none%20x.dita", u"https://host/none.dita", u"mailto:a%20b@c"}) {
        EXPECT_EQ(resolveExistingPath(uri, parsed.document(), nullptr), uri);
    }
    EXPECT_TRUE(console().empty());
}

TEST_F(ResolveExistingPathTest, LooksForASchemeInOtherCaseAsForAFile) {
    const ParsedXml parsed = parse("<map/>");
    EXPECT_EQ(resolveExistingPath(u"HTTP://host/a.dita", parsed.document(), nullptr), u"");
    EXPECT_EQ(console(), std::vector{referencedFileNotFound(folder.file("HTTP:/host/a.dita"))});
}

TEST_F(ResolveExistingPathTest, BadTextIsAPathThatDoesNotExist) {
    const ParsedXml parsed = parse("<map/>");
    EXPECT_EQ(resolveExistingPath(u"sub/%FF.dita", parsed.document(), nullptr), u"");
    const std::u16string longName(300, u'n');
    EXPECT_EQ(resolveExistingPath(longName, parsed.document(), nullptr), u"");
    EXPECT_EQ(resolveExistingPath(u"a.dita/b.dita", parsed.document(), nullptr), u"");
    EXPECT_EQ(console(), (std::vector{referencedFileNotFound(folder.file("???")),
                                      referencedFileNotFound(folder.file(toUtf8(longName))),
                                      referencedFileNotFound(folder.file("a.dita/b.dita"))}));
}

TEST_F(ResolveExistingPathTest, PassesOnWhatTheFileSystemRefuses) {
    folder.write("closed/a.dita", "x");
    const std::filesystem::path closed = folder.path() / "closed";
    std::filesystem::permissions(closed, std::filesystem::perms::none);
    const ScopeExit reopen(
        [&] { std::filesystem::permissions(closed, std::filesystem::perms::owner_all); });
    const ParsedXml parsed = parse("<map/>");
    {
        const WithoutRights nobody;
        EXPECT_THROW(resolveExistingPath(u"closed/a.dita", parsed.document(), nullptr),
                     std::filesystem::filesystem_error);
    }
    EXPECT_TRUE(console().empty());
}

using ResolveHrefTest = ReferenceSampleTest;

TEST_F(ResolveHrefTest, GivesPathAndTopicIdAndDropsTheElementId) {
    const ParsedXml parsed = parse("<map/>");
    const ResolvedHref resolved = resolveHref(u"sub/b.dita#t/e", parsed.document(), nullptr);
    EXPECT_EQ(resolved.path, folder.file16("sub/b.dita"));
    EXPECT_EQ(resolved.fragment, u"t");
}

TEST_F(ResolveHrefTest, AnEmptyPathIsTheDocumentItself) {
    const ParsedXml parsed = parse("<map/>");
    const ResolvedHref resolved = resolveHref(u"#t/e", parsed.document(), nullptr);
    EXPECT_EQ(resolved.path, folder.file16("map.ditamap"));
    EXPECT_EQ(resolved.fragment, u"t");
}

TEST_F(ResolveHrefTest, KeepsTheTopicIdOfAMissingFile) {
    const ParsedXml parsed = parse("<map/>");
    const ResolvedHref resolved = resolveHref(u"none.dita#t/e", parsed.document(), nullptr);
    EXPECT_EQ(resolved.path, u"");
    EXPECT_EQ(resolved.fragment, u"t");
    EXPECT_EQ(console(), std::vector{referencedFileNotFound(folder.file("none.dita"))});
}

TEST_F(ResolveHrefTest, CutsTheFragmentOfAnExternalUri) {
    const ParsedXml parsed = parse("<map/>");
    const ResolvedHref resolved = resolveHref(u"http://host/a%20b#t/e", parsed.document(), nullptr);
    EXPECT_EQ(resolved.path, u"http://host/a%20b");
    EXPECT_EQ(resolved.fragment, u"t");
}

}  // namespace
}  // namespace marrowpress
