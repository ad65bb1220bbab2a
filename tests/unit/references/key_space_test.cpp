#include "references/key_space.h"

#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

/// A key space that defines "a" and "b", and an element that refers.
class KeySpaceTest : public XmlTest {
protected:
    xercesc::DOMElement* find(std::u16string_view keyName) const {
        return keySpace.find(keyName, *parsed_.root());
    }
    xercesc::DOMElement& newDefinition() const {
        return *parsed_.document().createElement(u"keydef");
    }

private:
    const ParsedXml parsed_{
        "<!DOCTYPE map [<!ATTLIST keydef keys ID #IMPLIED>]>"
        "<map><keydef keys='a'/><keydef keys='b'/><topicref/></map>"};

protected:
    KeySpace keySpace{parsed_.document()};
};

TEST_F(KeySpaceTest, FindsADefinitionByItsExactName) {
    EXPECT_EQ(attribute(*find(u"a"), "keys"), "a");
    EXPECT_EQ(attribute(*find(u"b"), "keys"), "b");
    for (const std::u16string_view other : {u"", u"A", u"a ", u"a b", u"c", u"a/e"}) {
        EXPECT_EQ(find(other), nullptr);
        EXPECT_FALSE(keySpace.defines(other));
    }
    EXPECT_TRUE(keySpace.defines(u"a"));
}

TEST_F(KeySpaceTest, AnAddedDefinitionStandsBehindTheOthersAndHasTheNameAlone) {
    xercesc::DOMElement& definition = newDefinition();
    definition.setAttribute(u"keys", u"c d");
    keySpace.add(u"c", definition);
    EXPECT_EQ(find(u"c"), &definition);
    EXPECT_FALSE(keySpace.defines(u"d"));
    EXPECT_EQ(keySpace.document().getDocumentElement()->getLastElementChild(), &definition);
}

TEST_F(KeySpaceTest, ChainsAreUnresolvedAtFirstAndAfterEachChange) {
    EXPECT_FALSE(keySpace.areChainsResolved());
    keySpace.noteThatChainsAreResolved();
    EXPECT_TRUE(keySpace.areChainsResolved());
    keySpace.noteChange();
    EXPECT_FALSE(keySpace.areChainsResolved());
    keySpace.noteThatChainsAreResolved();
    keySpace.add(u"c", newDefinition());
    EXPECT_FALSE(keySpace.areChainsResolved());
}

}  // namespace
}  // namespace marrowpress
