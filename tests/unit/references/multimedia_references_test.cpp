#include "references/multimedia_references.h"

#include <array>

#include "references/direct_references.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

struct HandlerCase {
    const char* name;
    MultimediaNodeType type;
    const char* afterSetting;
    const char* withoutRef;
    const char* withoutKeyref;
};

constexpr HandlerCase kHandlerCases[] = {
    {"Object", MultimediaNodeType::MultimediaNodeObject,
     R"(<x data="r" datakeyref="k" keyref="3" name="4" value="2"/>)",
     R"(<x datakeyref="k" keyref="3" name="4" value="2"/>)",
     R"(<x keyref="3" name="4" value="2"/>)"},
    {"Param", MultimediaNodeType::MultimediaNodeParam,
     R"(<x data="0" datakeyref="1" keyref="k" name="4" value="r"/>)",
     R"(<x data="0" datakeyref="1" keyref="k" name="4"/>)",
     R"(<x data="0" datakeyref="1" name="4"/>)"},
};

class MultimediaNodeHandlerTest : public XmlTest, public testing::WithParamInterface<HandlerCase> {
protected:
    const MultimediaNodeHandler& handler_ = multimediaNodeHandler(GetParam().type);
    const ParsedXml parsed_{"<x data='0' datakeyref='1' value='2' keyref='3' name='4'/>"};
    DOMElement& element_ = *parsed_.root();
};

TEST_P(MultimediaNodeHandlerTest, ServesItsType) {
    EXPECT_EQ(handler_.type(), GetParam().type);
}

TEST_P(MultimediaNodeHandlerTest, ReadsItsAttributes) {
    const bool isObject = GetParam().type == MultimediaNodeType::MultimediaNodeObject;
    EXPECT_EQ(handler_.getRefValue(element_), isObject ? u"0" : u"2");
    EXPECT_EQ(handler_.getKeyrefValue(element_), isObject ? u"1" : u"3");
}

TEST_P(MultimediaNodeHandlerTest, SetsAndRemovesItsAttributes) {
    handler_.setRefValue(element_, u"r");
    handler_.setKeyrefValue(element_, u"k");
    EXPECT_EQ(printed(element_), GetParam().afterSetting);
    handler_.removeRefAttr(element_);
    EXPECT_EQ(printed(element_), GetParam().withoutRef);
    handler_.removeKeyrefAttr(element_);
    EXPECT_EQ(printed(element_), GetParam().withoutKeyref);
    EXPECT_EQ(handler_.getRefValue(element_), u"");
    EXPECT_EQ(handler_.getKeyrefValue(element_), u"");
}

TEST_P(MultimediaNodeHandlerTest, RemovingWhatIsMissingChangesNothing) {
    const ParsedXml parsed("<x/>");
    handler_.removeRefAttr(*parsed.root());
    handler_.removeKeyrefAttr(*parsed.root());
    EXPECT_EQ(printed(*parsed.root()), "<x/>");
}

INSTANTIATE_TEST_SUITE_P(, MultimediaNodeHandlerTest, testing::ValuesIn(kHandlerCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST(MultimediaNodeHandlerLifeTest, OutlivesTheSession) {
    const RecordingHost host;
    std::array<const MultimediaNodeHandler*, 2> seen{};
    for (const MultimediaNodeHandler*& handler : seen) {
        const XmlSession session;
        handler = &multimediaNodeHandler(MultimediaNodeType::MultimediaNodeParam);
    }
    EXPECT_EQ(seen[0], seen[1]);
}

struct MediaCase {
    const char* name;
    const char* written;
    const char* normalized;
};

/// In the file /p/a.dita.
constexpr MediaCase kMediaCases[] = {
    {"Object", R"(<object data="m.swf"/>)", R"(<object data="/p/m.swf"/>)"},
    {"ObjectByClass", R"(<x class="- topic/object " data="m.swf"/>)",
     R"(<x class="- topic/object " data="/p/m.swf"/>)"},
    {"ObjectWithKey", R"(<object data="m.swf" datakeyref="k"/>)",
     R"(<object data="/p/m.swf" datakeyref="k"/>)"},
    {"ObjectWithKeyAlone", R"(<object datakeyref="k"/>)", R"(<object datakeyref="k"/>)"},
    {"ObjectWithEmptyData", R"(<object data=""/>)", R"(<object data=""/>)"},
    {"Fragment", R"(<object data="m.swf#t/e"/>)", R"(<object data="/p/m.swf#t/e"/>)"},
    {"SameFile", R"(<object data="#t/e"/>)", R"(<object data="/p/a.dita#t/e"/>)"},
    {"External", R"(<object data="http://host/m%20.swf#f"/>)",
     R"(<object data="http://host/m%20.swf#f"/>)"},
    {"Absolute", R"(<object data="/m/../m.swf"/>)", R"(<object data="/m/../m.swf"/>)"},
    {"OtherAttributesOfAnObject", R"(<object codebase="c" usemap="#m" data="../m.swf"/>)",
     R"(<object codebase="c" data="/m.swf" usemap="#m"/>)"},
    {"ParamSrc", R"(<param name="src" value="v.mp4"/>)", R"(<param name="src" value="/p/v.mp4"/>)"},
    {"ParamPoster", R"(<param name="poster" value="sub/v%20w.png"/>)",
     R"(<param name="poster" value="/p/sub/v w.png"/>)"},
    {"ParamByClass", R"(<x class="- topic/param " name="src" value="v.mp4"/>)",
     R"(<x class="- topic/param " name="src" value="/p/v.mp4"/>)"},
    {"ParamWithKey", R"(<param keyref="k" name="src" value="v.mp4"/>)",
     R"(<param keyref="k" name="src" value="/p/v.mp4"/>)"},
    {"ParamWithKeyAndOtherName", R"(<param keyref="k" name="width" value="v"/>)",
     R"(<param keyref="k" name="width" value="v"/>)"},
    {"ParamOfOtherName", R"(<param name="width" value="100"/>)",
     R"(<param name="width" value="100"/>)"},
    {"ParamNamedInUpperCase", R"(<param name="SRC" value="v.mp4"/>)",
     R"(<param name="SRC" value="v.mp4"/>)"},
    {"ParamsOfAnObject",
     R"(<object data="m"><param name="src" value="v"/><param name="width" value="1"/>)"
     R"(<param name="poster" value="w"/></object>)",
     R"(<object data="/p/m"><param name="src" value="/p/v"/><param name="width" value="1"/>)"
     R"(<param name="poster" value="/p/w"/></object>)"},
    {"BelowAParamWithEmptyValue",
     R"(<param name="src" value=""><param name="src" value="v"/></param>)",
     R"(<param name="src" value=""><param name="src" value="/p/v"/></param>)"},
    {"BelowAnObjectWithoutData", R"(<object><object data="m"/></object>)",
     R"(<object><object data="/p/m"/></object>)"},
    {"OtherElement", R"(<image data="m" name="src" value="v"/>)",
     R"(<image data="m" name="src" value="v"/>)"},
};

class MultimediaReferencesTest : public XmlTest, public testing::WithParamInterface<MediaCase> {};

TEST_P(MultimediaReferencesTest, BecomeAbsoluteAndStaySo) {
    const ParsedXml parsed(GetParam().written, u"file:///p/a.dita");
    TopicIdMap topics;
    ReferenceNormalizer().normalizeSubtree(parsed.root(), parsed.document(), topics);
    EXPECT_EQ(printed(*parsed.root()), GetParam().normalized);
    topics.add(u"/p/a.dita#t", u"#X");
    topics.add(u"/p/m.swf#t", u"#Y");
    ReferenceUpdater().rewriteReferences(parsed.root(), topics);
    EXPECT_EQ(printed(*parsed.root()), GetParam().normalized);
    EXPECT_TRUE(host.console().empty()) << "media files are not looked for";
}

INSTANTIATE_TEST_SUITE_P(, MultimediaReferencesTest, testing::ValuesIn(kMediaCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

}  // namespace
}  // namespace marrowpress
