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

}  // namespace
}  // namespace marrowpress
