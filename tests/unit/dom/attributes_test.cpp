#include "dom/attributes.h"

#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using AttributesTest = XmlTest;

TEST_F(AttributesTest, GiveTheirValue) {
    const ParsedXml parsed("<!DOCTYPE p [<!ATTLIST p d CDATA 'default'>]><p a='1 2' n='&#228;'/>");
    EXPECT_EQ(attributeView(*parsed.root(), u"a"), u"1 2");
    EXPECT_EQ(attributeView(*parsed.root(), u"n"), u"\u00E4");
    EXPECT_EQ(attributeOf(*parsed.root(), u"d"), u"default");
}

TEST_F(AttributesTest, ReadAsEmptyWhenTheyAreMissing) {
    const ParsedXml parsed("<p a='' A='x'/>");
    EXPECT_EQ(attributeView(*parsed.root(), u"none"), u"");
    EXPECT_EQ(attributeOf(*parsed.root(), u"none"), u"");
    EXPECT_EQ(attributeOf(*parsed.root(), u"a"), u"");
}

TEST_F(AttributesTest, TheNearestOneIsTheFirstWithAValueOnTheWayUp) {
    const ParsedXml parsed("<p a='far'><q a='near'><r a='' id='r'/></q><s id='s'/></p>");
    EXPECT_EQ(nearestAttribute(*parsed.byId("r"), u"a"), u"near");
    EXPECT_EQ(nearestAttribute(*parsed.byId("r"), u"id"), u"r");
    EXPECT_EQ(nearestAttribute(*parsed.byId("s"), u"a"), u"far");
    EXPECT_EQ(nearestAttribute(*parsed.byId("s"), u"none"), u"");
}

TEST_F(AttributesTest, ACopyOutlivesItsAttribute) {
    const ParsedXml parsed("<p a='old'/>");
    const std::u16string copy = attributeOf(*parsed.root(), u"a");
    parsed.root()->setAttribute(u"a", u"a longer one than before");
    EXPECT_EQ(copy, u"old");
}

TEST_F(AttributesTest, GetsAnotherValueWhateverItHad) {
    const ParsedXml parsed("<p a='old' b='' c='1 &#228; 2'/>");
    for (const XMLCh* const name : {u"a", u"b", u"c", u"none"}) {
        for (const std::u16string value : {u"x", u"a longer one than before", u"", u"<&\""}) {
            setAttribute(*parsed.root(), name, value);
            EXPECT_EQ(attributeView(*parsed.root(), name), value);
        }
    }
    EXPECT_EQ(printed(*parsed.root()),
              R"(<p a="&lt;&amp;&quot;" b="&lt;&amp;&quot;" c="&lt;&amp;&quot;" )"
              R"(none="&lt;&amp;&quot;"/>)");
}

// Only what is specified is written.
TEST_F(AttributesTest, ADefaultThatIsSetIsSpecifiedFromThenOn) {
    const ParsedXml parsed("<!DOCTYPE p [<!ATTLIST p d CDATA 'default'>]><p/>");
    setAttribute(*parsed.root(), u"d", u"default");
    EXPECT_EQ(printed(*parsed.root()), R"(<p d="default"/>)");
}

TEST_F(AttributesTest, AnIdIsFoundByWhatItIsSetTo) {
    const ParsedXml parsed("<!DOCTYPE p [<!ATTLIST p i ID #IMPLIED>]><p i='old'/>");
    setAttribute(*parsed.root(), u"i", u"new");
    EXPECT_EQ(parsed.document().getElementById(u"new"), parsed.root());
    EXPECT_EQ(parsed.document().getElementById(u"old"), nullptr);
}

}  // namespace
}  // namespace marrowpress
