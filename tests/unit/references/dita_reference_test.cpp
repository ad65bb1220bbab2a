#include "references/dita_reference.h"

#include "references/document_kind.h"
#include "references/key_space.h"
#include "tests/unit/references/reference_samples.h"

namespace marrowpress {
namespace {

using DitaReferenceTest = ReferenceSampleTest;

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
    EXPECT_EQ(console(), std::vector{referencedFileNotFound(folder.file("none.dita"))});
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
    EXPECT_EQ(console(), std::vector{referencedFileNotFound(folder.file("keys/a.dita"))});
}

TEST_F(DitaReferenceTest, AFileMissingFromBothBasesIsTwoMessages) {
    const DitaReference reference = readKeyed("<x keyref='k' href='none.dita#t'/>");
    EXPECT_EQ(reference.path, u"");
    EXPECT_EQ(reference.fragment, u"t");
    EXPECT_EQ(classifyReference(reference), DitaDocKind::DitaDocNone);
    EXPECT_EQ(console(), (std::vector{referencedFileNotFound(folder.file("keys/none.dita")),
                                      referencedFileNotFound(folder.file("none.dita"))}));
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
    EXPECT_EQ(console(), std::vector{referencedFileNotFound(folder.file("k.dita"))});
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
