#include "references/multimedia_node_filters.h"

#include "dom/element_walker.h"
#include "tests/unit/references/filter_answers.h"

namespace marrowpress {
namespace {

using enum MultimediaNodeType;

struct MultimediaCase {
    const char* name;
    const char* xml;
    MultimediaNodeType refType;
    MultimediaNodeType keyrefType;
};

constexpr MultimediaCase kMultimediaCases[] = {
    {"ObjectWithData", "<object data='a'/>", MultimediaNodeObject, MultimediaNodeNone},
    {"ObjectWithDatakeyref", "<object datakeyref='k'/>", MultimediaNodeNone, MultimediaNodeObject},
    {"ObjectWithBoth", "<object data='a' datakeyref='k'/>", MultimediaNodeObject,
     MultimediaNodeObject},
    {"ObjectWithEmptyValues", "<object data='' datakeyref=''/>", MultimediaNodeNone,
     MultimediaNodeNone},
    {"ObjectWithNothing", "<object/>", MultimediaNodeNone, MultimediaNodeNone},
    {"ObjectWithTheAttributesOfAParam", "<object name='src' value='a' keyref='k'/>",
     MultimediaNodeNone, MultimediaNodeNone},
    {"ObjectByClass", "<x class='- topic/object ' data='a' datakeyref='k'/>", MultimediaNodeObject,
     MultimediaNodeObject},
    {"ObjectBySpecialisedClass", "<x class='+ topic/object x-d/video ' data='a' datakeyref='k'/>",
     MultimediaNodeObject, MultimediaNodeObject},
    {"ObjectClassThatGoesOn", "<x class='- topic/objects ' data='a' datakeyref='k'/>",
     MultimediaNodeNone, MultimediaNodeNone},
    {"ObjectNameWithOtherClass", "<object class='- topic/ph ' data='a' datakeyref='k'/>",
     MultimediaNodeNone, MultimediaNodeNone},
    {"ObjectInUpperCase", "<OBJECT data='a' datakeyref='k'/>", MultimediaNodeNone,
     MultimediaNodeNone},
    {"ParamNamedSrc", "<param name='src' value='a'/>", MultimediaNodeParam, MultimediaNodeNone},
    {"ParamNamedPoster", "<param name='poster' value='a'/>", MultimediaNodeParam,
     MultimediaNodeNone},
    {"ParamNamedSrcInUpperCase", "<param name='SRC' value='a'/>", MultimediaNodeNone,
     MultimediaNodeNone},
    {"ParamNamedPosterInOtherCase", "<param name='Poster' value='a'/>", MultimediaNodeNone,
     MultimediaNodeNone},
    {"ParamNamedLonger", "<param name='srcset' value='a'/>", MultimediaNodeNone,
     MultimediaNodeNone},
    {"ParamNamedOtherwise", "<param name='width' value='a'/>", MultimediaNodeNone,
     MultimediaNodeNone},
    {"ParamWithoutName", "<param value='a'/>", MultimediaNodeNone, MultimediaNodeNone},
    {"ParamWithEmptyValue", "<param name='src' value=''/>", MultimediaNodeNone, MultimediaNodeNone},
    {"ParamWithoutValue", "<param name='poster'/>", MultimediaNodeNone, MultimediaNodeNone},
    {"ParamWithTheAttributesOfAnObject", "<param data='a' datakeyref='k'/>", MultimediaNodeNone,
     MultimediaNodeNone},
    {"ParamWithKeyref", "<param keyref='k'/>", MultimediaNodeNone, MultimediaNodeParam},
    {"ParamWithKeyrefAndAnyName", "<param name='width' keyref='k'/>", MultimediaNodeNone,
     MultimediaNodeParam},
    {"ParamWithKeyrefNamedSrc", "<param name='src' keyref='k'/>", MultimediaNodeNone,
     MultimediaNodeParam},
    {"ParamWithBoth", "<param name='src' value='a' keyref='k'/>", MultimediaNodeParam,
     MultimediaNodeParam},
    {"ParamWithEmptyKeyref", "<param name='src' keyref=''/>", MultimediaNodeNone,
     MultimediaNodeNone},
    {"ParamByClass", "<x class='- topic/param ' name='src' value='a' keyref='k'/>",
     MultimediaNodeParam, MultimediaNodeParam},
    {"ParamClassThatGoesOn", "<x class='- topic/params ' name='src' value='a' keyref='k'/>",
     MultimediaNodeNone, MultimediaNodeNone},
    {"ParamNameWithOtherClass", "<param class='- topic/ph ' name='src' value='a' keyref='k'/>",
     MultimediaNodeNone, MultimediaNodeNone},
    {"ParamNameWithObjectClass", "<param class='- topic/object ' name='src' value='a' keyref='k'/>",
     MultimediaNodeNone, MultimediaNodeNone},
    {"OtherElement", "<image data='a' datakeyref='k' name='src' value='a' keyref='k'/>",
     MultimediaNodeNone, MultimediaNodeNone},
};

std::string expectedAnswer(MultimediaNodeType type) {
    return type == MultimediaNodeNone ? "skip" : "accept";
}

class MultimediaNodeFilterTest : public XmlTest,
                                 public testing::WithParamInterface<MultimediaCase> {};

TEST_P(MultimediaNodeFilterTest, TellsTheTypeByTheDirectReference) {
    const ParsedXml parsed(GetParam().xml);
    const MultimediaRefAttrContainingNodeFilter filter;
    EXPECT_EQ(filter.getType(parsed.root()), GetParam().refType);
    EXPECT_EQ(answerAbout(filter, parsed.root()), expectedAnswer(GetParam().refType));
}

TEST_P(MultimediaNodeFilterTest, TellsTheTypeByTheKey) {
    const ParsedXml parsed(GetParam().xml);
    const MultimediaKeyrefAttrContainingNodeFilter filter;
    EXPECT_EQ(filter.getType(parsed.root()), GetParam().keyrefType);
    EXPECT_EQ(answerAbout(filter, parsed.root()), expectedAnswer(GetParam().keyrefType));
}

INSTANTIATE_TEST_SUITE_P(, MultimediaNodeFilterTest, testing::ValuesIn(kMultimediaCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

using MultimediaNodeTypeTest = XmlTest;

TEST_F(MultimediaNodeTypeTest, HasFixedNumbers) {
    EXPECT_EQ(static_cast<int>(MultimediaNodeNone), -1);
    EXPECT_EQ(static_cast<int>(MultimediaNodeObject), 0);
    EXPECT_EQ(static_cast<int>(MultimediaNodeParam), 1);
    EXPECT_EQ(static_cast<int>(MultimediaNodeRejected), 2);
}

TEST_F(MultimediaNodeTypeTest, IsRejectedForWhatIsNoElement) {
    const ParsedXml parsed("<object data='a'>text</object>");
    const MultimediaRefAttrContainingNodeFilter byReference;
    const MultimediaKeyrefAttrContainingNodeFilter byKey;
    for (const xercesc::DOMNode* const node :
         {static_cast<const xercesc::DOMNode*>(nullptr),
          static_cast<const xercesc::DOMNode*>(parsed.root()->getFirstChild()),
          static_cast<const xercesc::DOMNode*>(&parsed.document()),
          static_cast<const xercesc::DOMNode*>(parsed.root()->getAttributeNode(u"data"))}) {
        EXPECT_EQ(byReference.getType(node), MultimediaNodeRejected);
        EXPECT_EQ(byKey.getType(node), MultimediaNodeRejected);
    }
}

TEST_F(MultimediaNodeTypeTest, WalksVisitWhatStandsBelowASkippedElement) {
    const ParsedXml parsed(
        "<object id='o'><param id='a' name='src' value=''><param id='b' name='src' value='v'/>"
        "</param><param id='c' name='width' value='1'><object id='d' data='x'/></param></object>");
    EXPECT_EQ(idsOf(collectElements(parsed.root(), MultimediaRefAttrContainingNodeFilter())),
              "b d");
}

}  // namespace
}  // namespace marrowpress
