#include "dom/document_path.h"

#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using DocumentPathTest = XmlTest;

TEST_F(DocumentPathTest, IsThePathBehindTheScheme) {
    EXPECT_EQ(documentPath(ParsedXml("<p/>", u"file:///a/b.dita").document()), u"/a/b.dita");
}

TEST_F(DocumentPathTest, NothingInItIsEscaped) {
    EXPECT_EQ(documentPath(ParsedXml("<p/>", u"file:///a/b%20c d\u00E4.dita").document()),
              u"/a/b%20c d\u00E4.dita");
}

TEST_F(DocumentPathTest, IsEmptyForADocumentThatWasMadeInMemory) {
    const XercesPtr<xercesc::DOMDocument> made(
        xercesc::DOMImplementation::getImplementation()->createDocument());
    EXPECT_EQ(documentPath(*made), u"");
}

TEST_F(DocumentPathTest, IdsStandBehindIt) {
    const ParsedXml parsed("<p/>", u"file:///a/b.dita");
    EXPECT_EQ(pathWithIds(parsed.document(), u"t"), u"/a/b.dita#t");
    EXPECT_EQ(pathWithIds(parsed.document(), u"t", u"e"), u"/a/b.dita#t/e");
    EXPECT_EQ(pathWithIds(parsed.document(), u"", u"e"), u"/a/b.dita#/e");
    EXPECT_EQ(pathWithIds(parsed.document(), u""), u"/a/b.dita");
}

}  // namespace
}  // namespace marrowpress
