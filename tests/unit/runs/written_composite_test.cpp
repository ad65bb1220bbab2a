#include "runs/written_composite.h"

#include <gtest/gtest.h>

#include "tests/support/composite_doctype.h"
#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/texts.h"

namespace marrowpress {
namespace {

const std::string kBare = kCompositeDoctype.substr(kCompositeDoctype.find("<!"));

const std::string kTopic =
    "<dita><topic id=\"id0f8fad5b-d9cb-469f-a165-70867728950e\"><title/></topic></dita>";

class WrittenCompositeTest : public testing::Test {
protected:
    bool isComposite(const std::string& text) const {
        return isWrittenComposite(folder.write("m.dita", text));
    }

    TemporaryFolder folder;
};

TEST_F(WrittenCompositeTest, IsToldByItsStart) {
    for (const std::string& own :
         {kCompositeDoctype, kCompositeDoctype + kTopic, kBare + kTopic, kBare + "<dita/>",
          replacedAll(kBare, " \"ditabase.dtd\"", "") + kTopic,
          kCompositeDoctype + kTopic.substr(0, kTopic.size() - 7) + std::string(9000, 'x') +
              "</dita>"}) {
        EXPECT_TRUE(isComposite(own)) << own.substr(0, 300);
    }
}

TEST_F(WrittenCompositeTest, MayBeAComponentWithConditions) {
    const std::string state = R"(<?Qs BoolCondExpr "X" State 1?>)";
    EXPECT_TRUE(isComposite(kCompositeDoctype + state + kTopic));
    EXPECT_TRUE(isComposite(kCompositeDoctype + state + "<dita/>"));
    std::string many;
    for (int number = 0; number < 1000; ++number) {
        many += "<?Qs Condition Name" + std::to_string(number) + " 1 y show z?>";
    }
    EXPECT_TRUE(isComposite(kCompositeDoctype + many + state + kTopic));
    EXPECT_FALSE(isComposite(kCompositeDoctype + "<?other x?>" + kTopic));
    EXPECT_FALSE(isComposite(kCompositeDoctype + "<?Qs BoolCondExpr" + kTopic));
}

TEST_F(WrittenCompositeTest, IsNothingElse) {
    const std::string cutOff = kTopic.substr(0, kTopic.find("\"><title/>"));
    for (const std::string& other :
         {std::string("old"), std::string("\n"), std::string(1, '\0'), kTopic,
          std::string("<dita/>"), kCompositeDoctype + "<dita></dita>",
          kCompositeDoctype + "<dita/><!-- note -->",
          kCompositeDoctype + "<dita><topic id=\"one\"/></dita>",
          replacedAll(kCompositeDoctype, "Composite", "Topic") + kTopic,
          kCompositeDoctype + replacedAll(kTopic, "-4", "-1"),
          kCompositeDoctype + replacedAll(kTopic, "-a", "-c"),
          kCompositeDoctype + replacedAll(kTopic, "0f", "0F"),
          kCompositeDoctype + replacedAll(kTopic, "0e\"", "0e1\""), kCompositeDoctype + cutOff,
          replacedAll(kBare, "ditabase.dtd", std::string(300000, 'x')) + kTopic}) {
        EXPECT_FALSE(isComposite(other)) << other.substr(0, 300);
    }
}

TEST_F(WrittenCompositeTest, MayBeEmpty) {
    EXPECT_TRUE(isComposite(""));
    const std::string path = folder.file("m.dita");
    std::filesystem::permissions(path, std::filesystem::perms::none);
    std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
    const WithoutRights noRights;
    EXPECT_TRUE(isWrittenComposite(path));
}

TEST_F(WrittenCompositeTest, IsNoneThatCannotBeRead) {
    EXPECT_FALSE(isWrittenComposite(folder.file("none.dita")));
    EXPECT_FALSE(isWrittenComposite(folder.path()));
    EXPECT_FALSE(isWrittenComposite("/dev/null"));
    const std::string path = folder.write("m.dita", kCompositeDoctype + kTopic);
    std::filesystem::permissions(path, std::filesystem::perms::none);
    std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
    const WithoutRights noRights;
    EXPECT_FALSE(isWrittenComposite(path));
}

}  // namespace
}  // namespace marrowpress
