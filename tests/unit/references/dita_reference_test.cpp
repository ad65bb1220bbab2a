#include <filesystem>

#include "references/reference_resolution.h"
#include "support/scope_exit.h"
#include "support/text.h"
#include "tests/support/file_conditions.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

std::string notFound(const std::string& path) {
    return "Die Datei, auf die verwiesen wird, kann nicht gefunden werden: " + path + "\r\n";
}

/// The folder has a.dita, sub/b.dita and keys/k.dita; the document under test is map.ditamap in
/// the folder, and the key space document is in keys.
class DitaReferenceTest : public XmlTest {
protected:
    DitaReferenceTest() {
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
        const ParsedXml keySpace(
            "<!DOCTYPE map [<!ATTLIST keydef id ID #IMPLIED>]>"
            "<map><keydef id='k' href='k.dita#wrong' type='concept' format='pdf'/>"
            "<keydef id='k2'/></map>",
            uriOf("keys/space.ditamap"));
        return readDitaReference(*parse(xml).root(), &keySpace.document());
    }

    const std::vector<std::string>& console() const { return host.console(); }
};

using ResolveExistingPathTest = DitaReferenceTest;

TEST_F(ResolveExistingPathTest, GivesTheAbsolutePathOfAFile) {
    const ParsedXml parsed = parse("<map/>");
    EXPECT_EQ(resolveExistingPath(u"a.dita", parsed.document()), folder.file16("a.dita"));
    EXPECT_EQ(resolveExistingPath(u"sub/../a.dita", parsed.document()), folder.file16("a.dita"));
    EXPECT_EQ(resolveExistingPath(u"sub/b%20c.dita", parsed.document()),
              folder.file16("sub/b c.dita"));
    EXPECT_EQ(resolveExistingPath(folder.file16("a.dita"), parsed.document()),
              folder.file16("a.dita"));
    EXPECT_EQ(resolveExistingPath(u"", parsed.document()), folder.file16("map.ditamap"));
    EXPECT_TRUE(console().empty());
}

TEST_F(ResolveExistingPathTest, AFolderExistsToo) {
    const ParsedXml parsed = parse("<map/>");
    EXPECT_EQ(resolveExistingPath(u"sub", parsed.document()), folder.file16("sub"));
    EXPECT_TRUE(console().empty());
}

TEST_F(ResolveExistingPathTest, ReportsAMissingFileWithItsPath) {
    const ParsedXml parsed = parse("<map/>");
    EXPECT_EQ(resolveExistingPath(u"sub/../n\u00E4%20x.dita", parsed.document()), u"");
    EXPECT_EQ(console(), std::vector{notFound(folder.file("n\xC3\xA4 x.dita"))});
}

TEST_F(ResolveExistingPathTest, ReportsAMissingDocumentOfItsOwn) {
    const ParsedXml parsed("<map/>", uriOf("gone.ditamap"));
    EXPECT_EQ(resolveExistingPath(u"", parsed.document()), u"");
    EXPECT_EQ(console(), std::vector{notFound(folder.file("gone.ditamap"))});
}

TEST_F(ResolveExistingPathTest, LeavesExternalUrisAloneAndDoesNotLookForThem) {
    const ParsedXml parsed = parse("<map/>");
    for (const std::u16string_view uri :
         {u"http://host/none%20x.dita", u"https://host/none.dita", u"mailto:a%20b@c"}) {
        EXPECT_EQ(resolveExistingPath(uri, parsed.document()), uri);
    }
    EXPECT_TRUE(console().empty());
}

TEST_F(ResolveExistingPathTest, LooksForASchemeInOtherCaseAsForAFile) {
    const ParsedXml parsed = parse("<map/>");
    EXPECT_EQ(resolveExistingPath(u"HTTP://host/a.dita", parsed.document()), u"");
    EXPECT_EQ(console(), std::vector{notFound(folder.file("HTTP:/host/a.dita"))});
}

TEST_F(ResolveExistingPathTest, BadTextIsAPathThatDoesNotExist) {
    const ParsedXml parsed = parse("<map/>");
    EXPECT_EQ(resolveExistingPath(u"sub/%FF.dita", parsed.document()), u"");
    const std::u16string longName(300, u'n');
    EXPECT_EQ(resolveExistingPath(longName, parsed.document()), u"");
    EXPECT_EQ(resolveExistingPath(u"a.dita/b.dita", parsed.document()), u"");
    EXPECT_EQ(console(),
              (std::vector{notFound(folder.file("???")), notFound(folder.file(toUtf8(longName))),
                           notFound(folder.file("a.dita/b.dita"))}));
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
        EXPECT_THROW(resolveExistingPath(u"closed/a.dita", parsed.document()),
                     std::filesystem::filesystem_error);
    }
    EXPECT_TRUE(console().empty());
}

using ResolveHrefTest = DitaReferenceTest;

TEST_F(ResolveHrefTest, GivesPathAndTopicIdAndDropsTheElementId) {
    const ParsedXml parsed = parse("<map/>");
    const ResolvedHref resolved = resolveHref(u"sub/b.dita#t/e", parsed.document());
    EXPECT_EQ(resolved.path, folder.file16("sub/b.dita"));
    EXPECT_EQ(resolved.fragment, u"t");
}

TEST_F(ResolveHrefTest, AnEmptyPathIsTheDocumentItself) {
    const ParsedXml parsed = parse("<map/>");
    const ResolvedHref resolved = resolveHref(u"#t/e", parsed.document());
    EXPECT_EQ(resolved.path, folder.file16("map.ditamap"));
    EXPECT_EQ(resolved.fragment, u"t");
}

TEST_F(ResolveHrefTest, KeepsTheTopicIdOfAMissingFile) {
    const ParsedXml parsed = parse("<map/>");
    const ResolvedHref resolved = resolveHref(u"none.dita#t/e", parsed.document());
    EXPECT_EQ(resolved.path, u"");
    EXPECT_EQ(resolved.fragment, u"t");
    EXPECT_EQ(console(), std::vector{notFound(folder.file("none.dita"))});
}

TEST_F(ResolveHrefTest, CutsTheFragmentOfAnExternalUri) {
    const ParsedXml parsed = parse("<map/>");
    const ResolvedHref resolved = resolveHref(u"http://host/a%20b#t/e", parsed.document());
    EXPECT_EQ(resolved.path, u"http://host/a%20b");
    EXPECT_EQ(resolved.fragment, u"t");
}

TEST_F(DitaReferenceTest, ReadsTypeAndFormatAsWritten) {
    const DitaReference reference =
        read("<x href='a.dita#t/e' type=' Concept' format='DITA' scope='external'/>");
    EXPECT_EQ(reference.type, u" Concept");
    EXPECT_EQ(reference.format, u"DITA");
    EXPECT_EQ(reference.path, folder.file16("a.dita"));
    EXPECT_EQ(reference.fragment, u"t");
    EXPECT_TRUE(console().empty());
}

TEST_F(DitaReferenceTest, MissingAttributesAreEmpty) {
    const DitaReference reference = read("<x/>");
    EXPECT_EQ(reference.type, u"");
    EXPECT_EQ(reference.format, u"");
    EXPECT_EQ(reference.path, u"");
    EXPECT_EQ(reference.fragment, u"");
    EXPECT_TRUE(console().empty());
}

TEST_F(DitaReferenceTest, AnEmptyHrefIsNoReferenceToTheDocument) {
    EXPECT_EQ(read("<x href=''/>").path, u"");
    EXPECT_EQ(readKeyed("<x href='' keyref='k'/>").path, u"");
    EXPECT_TRUE(console().empty());
}

TEST_F(DitaReferenceTest, AMissingFileIsOneMessageAndNoPath) {
    const DitaReference reference = read("<x href='none.dita#t'/>");
    EXPECT_EQ(reference.path, u"");
    EXPECT_EQ(reference.fragment, u"t");
    EXPECT_EQ(classifyReference(reference), DitaDocKind::DitaDocNone);
    EXPECT_EQ(console(), std::vector{notFound(folder.file("none.dita"))});
}

TEST_F(DitaReferenceTest, AnExternalUriIsTakenByItsCharacters) {
    const DitaReference reference = read("<x href='http://host/a.dita' scope='external'/>");
    EXPECT_EQ(reference.path, u"http://host/a.dita");
    EXPECT_EQ(classifyReference(reference), DitaDocKind::DitaDocTopic);
    EXPECT_TRUE(console().empty());
}

TEST_F(DitaReferenceTest, ADefinedKeyMakesTheHrefRelativeToTheKeySpace) {
    const DitaReference reference = readKeyed("<x keyref='k' href='both.dita#t/e'/>");
    EXPECT_EQ(reference.path, folder.file16("keys/both.dita"));
    EXPECT_EQ(reference.fragment, u"t");
    EXPECT_TRUE(console().empty());
}

TEST_F(DitaReferenceTest, NothingIsReadFromTheDefinition) {
    const DitaReference reference = readKeyed("<x keyref='k'/>");
    EXPECT_EQ(reference.type, u"");
    EXPECT_EQ(reference.format, u"");
    EXPECT_EQ(reference.path, u"");
    EXPECT_EQ(reference.fragment, u"");
    EXPECT_EQ(readKeyed("<x keyref='k2' href='k.dita'/>").path, folder.file16("keys/k.dita"));
    EXPECT_TRUE(console().empty());
}

TEST_F(DitaReferenceTest, FallsBackOnTheOwnDocumentWhenTheKeySpaceHasNoSuchFile) {
    const DitaReference reference = readKeyed("<x keyref='k' href='a.dita#t'/>");
    EXPECT_EQ(reference.path, folder.file16("a.dita"));
    EXPECT_EQ(reference.fragment, u"t");
    EXPECT_EQ(console(), std::vector{notFound(folder.file("keys/a.dita"))});
}

TEST_F(DitaReferenceTest, AFileMissingFromBothBasesIsTwoMessages) {
    const DitaReference reference = readKeyed("<x keyref='k' href='none.dita#t'/>");
    EXPECT_EQ(reference.path, u"");
    EXPECT_EQ(reference.fragment, u"t");
    EXPECT_EQ(classifyReference(reference), DitaDocKind::DitaDocNone);
    EXPECT_EQ(console(), (std::vector{notFound(folder.file("keys/none.dita")),
                                      notFound(folder.file("none.dita"))}));
}

TEST_F(DitaReferenceTest, AnUndefinedKeyIsPassedOver) {
    EXPECT_EQ(readKeyed("<x keyref='other' href='both.dita'/>").path, folder.file16("both.dita"));
    EXPECT_EQ(readKeyed("<x keyref='K' href='both.dita'/>").path, folder.file16("both.dita"));
    EXPECT_EQ(readKeyed("<x keyref='' href='both.dita'/>").path, folder.file16("both.dita"));
    EXPECT_TRUE(console().empty());
}

TEST_F(DitaReferenceTest, AKeyrefWithASlashIsLookedUpWhole) {
    EXPECT_EQ(readKeyed("<x keyref='k/e' href='both.dita'/>").path, folder.file16("both.dita"));
    EXPECT_TRUE(console().empty());
}

TEST_F(DitaReferenceTest, WithoutAKeySpaceTheKeyCountsForNothing) {
    EXPECT_EQ(read("<x keyref='k' href='both.dita'/>").path, folder.file16("both.dita"));
    EXPECT_EQ(read("<x keyref='k' href='k.dita'/>").path, u"");
    EXPECT_EQ(console(), std::vector{notFound(folder.file("k.dita"))});
}

TEST_F(DitaReferenceTest, TheOwnDocumentIsThatOfTheElement) {
    const ParsedXml target("<map/>", uriOf("sub/other.ditamap"));
    const ParsedXml source = parse("<x href='b.dita'/>");
    const auto* const imported =
        dynamic_cast<const xercesc::DOMElement*>(target.document().importNode(source.root(), true));
    ASSERT_NE(imported, nullptr);
    EXPECT_EQ(readDitaReference(*imported, nullptr).path, folder.file16("sub/b.dita"));
}

}  // namespace
}  // namespace marrowpress
