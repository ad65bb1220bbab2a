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

}  // namespace
}  // namespace marrowpress
