#include "references/ditamap_ref_node_filter.h"
#include "dom/element_walker.h"
#include "references/key_space.h"
#include "tests/unit/references/filter_answers.h"

namespace marrowpress {
namespace {

struct MapReferenceCase {
    const char* name;
    const char* xml;
    const char* answer;
    std::size_t messages = 0;
};

constexpr MapReferenceCase kMapReferenceCases[] = {
    {"Map", "<x href='m.ditamap'/>", "accept"},
    {"MapWithFragment", "<x href='m.ditamap#id'/>", "accept"},
    {"MapBeyondTheNetwork", "<x href='https://h/m.ditamap'/>", "accept"},
    {"Topic", "<x href='t.dita'/>", "skip"},
    {"TopicWithFormat", "<x href='t.dita' format='ditamap'/>", "skip"},
    {"UnknownXml", "<x href='u.xml'/>", "accept"},
    {"XmlMap", "<x href='u.xml' format='ditamap'/>", "accept"},
    {"XmlTopic", "<x href='u.xml' type='concept'/>", "skip"},
    {"OtherFile", "<x href='p.png'/>", "skip"},
    {"NoHref", "<mapref/>", "skip"},
    {"EmptyHref", "<mapref href='' format='ditamap'/>", "skip"},
    {"MissingMap", "<x href='none.ditamap'/>", "skip", 1},
    {"ConrefIsNoReference", "<x conref='m.ditamap'/>", "skip"},
};

/// A folder with one file of each kind.
class DitamapRefNodeFilterTest : public XmlTest {
protected:
    DitamapRefNodeFilterTest() {
        for (const char* name : {"m.ditamap", "t.dita", "u.xml", "p.png", "keys/only.ditamap"}) {
            folder.write(name, "x");
        }
    }

    std::u16string uriOf(std::string_view name) const { return u"file://" + folder.file16(name); }
};

class DitamapRefNodeFilterCaseTest : public DitamapRefNodeFilterTest,
                                     public testing::WithParamInterface<MapReferenceCase> {};

TEST_P(DitamapRefNodeFilterCaseTest, AnswersWithoutAContext) {
    const ParsedXml parsed(GetParam().xml, uriOf("root.ditamap"));
    EXPECT_EQ(answerAbout(DitamapRefNodeFilter(), parsed.root()), GetParam().answer);
    EXPECT_EQ(host.console().size(), GetParam().messages);
}

INSTANTIATE_TEST_SUITE_P(, DitamapRefNodeFilterCaseTest, testing::ValuesIn(kMapReferenceCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(DitamapRefNodeFilterTest, ResolvesKeyedReferencesInItsContext) {
    const ParsedXml keys(
        "<!DOCTYPE map [<!ATTLIST keydef id ID #IMPLIED>]><map><keydef id='k'/></map>",
        uriOf("keys/space.ditamap"));
    const KeySpace keySpace(keys.document());
    const ParsedXml parsed("<x keyref='k' href='only.ditamap'/>", uriOf("root.ditamap"));
    DitamapRefNodeFilter filter;
    EXPECT_EQ(answerAbout(filter, parsed.root()), "skip");
    filter.setContext(&keySpace);
    EXPECT_EQ(answerAbout(filter, parsed.root()), "accept");
    filter.setContext(nullptr);
    EXPECT_EQ(answerAbout(filter, parsed.root()), "skip");
}

TEST_F(DitamapRefNodeFilterTest, NothingBelowAnExcludedElementIsFound) {
    excludeMarkedElements();
    const ParsedXml parsed(
        "<map><x id='a' href='m.ditamap' excluded='yes'><x id='b' href='m.ditamap'/></x>"
        "<x id='c' href='t.dita'><x id='d' href='m.ditamap'/></x></map>",
        uriOf("root.ditamap"));
    EXPECT_EQ(idsOf(collectElements(parsed.root(), DitamapRefNodeFilter())), "d");
}

}  // namespace
}  // namespace marrowpress
