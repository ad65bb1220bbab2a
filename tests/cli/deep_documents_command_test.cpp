#include <gtest/gtest.h>

#include "tests/cli/command_fixture.h"
#include "tests/support/texts.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

/// Documents of very many levels, and a stack that is an eighth of the usual one.
class DeepDocumentsCommandTest : public CommandTest {
protected:
    DeepDocumentsCommandTest() {
        setting.stack = 1 << 20;
        folder_.write("p.ditaval", "<val/>");
        folder_.write("dtd/topic.dtd",
                      replacedAll(folder_.read("dtd/topic.dtd"), "<!ELEMENT ph (#PCDATA)>",
                                  "<!ELEMENT ph (#PCDATA|ph)*>"));
        folder_.write("dtd/map.dtd",
                      folder_.read("dtd/map.dtd") + "<!ATTLIST topicref format CDATA #IMPLIED>");
    }

    /// `count` elements, each in the one before.
    static std::string nested(const std::string& tag, std::size_t count) {
        std::string starts;
        std::string ends;
        for (std::size_t level = 0; level < count; ++level) {
            starts += "<" + tag + ">";
            ends += "</" + tag + ">";
        }
        return starts + ends;
    }

    /// Publishes in both formats and checks: each is to end with `code`, and no signal.
    void expectCode(int code, const char* what) const {
        const Texts more{"--catalog", "catalog.xml", "--filter", "p.ditaval"};
        for (Texts arguments :
             {Texts{"publish", "docs/m.ditamap", "-f", "composite", "-o", "out/m.dita"},
              Texts{"publish", "docs/m.ditamap", "-f", "flatbook", "-o", "out", "--one-location"},
              Texts{"check", "docs/m.ditamap"}}) {
            arguments.insert(arguments.end(), more.begin(), more.end());
            const CommandResult result = run(arguments, setting);
            EXPECT_EQ(result.code, code) << what << " " << arguments.front() << result.err;
        }
    }

    CommandSetting setting;
};

// One level is the root's, another one that of the output.
constexpr std::size_t kDeepest = 4990;
constexpr std::size_t kTooDeep = 10'000;

TEST_F(DeepDocumentsCommandTest, UpToTheLimitArePublished) {
    writeMap("<topicref href='a.dita'/>" + nested("topicref", kDeepest));
    expectCode(0, "map");
    writeMap("<topicref href='a.dita'/>");
    writeTopic("a", nestedElements(kDeepest));
    expectCode(0, "topic");
    writeTopic("a", "<ph conref='b.dita#b/p'/>");
    writeTopic("b", "<ph id='p'>" + nestedElements(kDeepest - 10) + "</ph>");
    expectCode(0, "content reference");
    folder_.write("p.ditaval", "<val>" + nested("prop", 200) + "</val>");
    writeTopic("a", "Text of a");
    expectCode(0, "profile");
}

TEST_F(DeepDocumentsCommandTest, BeyondTheLimitAreToldAndEndNoProcess) {
    writeTopic("a", nestedElements(kTooDeep));
    expectCode(3, "topic");
    writeTopic("a", "<ph conref='b.dita#b/p'/>");
    writeTopic("b", "<ph id='p'>" + nestedElements(kTooDeep) + "</ph>");
    expectCode(3, "content reference");
    folder_.write("p.ditaval", "<val>" + nested("prop", kTooDeep) + "</val>");
    expectCode(2, "profile");
    folder_.write("p.ditaval", "<val/>");
    folder_.write("docs/n.ditamap", "<map>" + nested("topicref", kTooDeep) + "</map>");
    writeMap("<topicref href='n.ditamap' format='ditamap'/>");
    expectCode(1, "nested map");
    writeMap(nested("topicref", kTooDeep));
    expectCode(1, "map");
}

}  // namespace
}  // namespace marrowpress
