#include "cli/written_composite.h"

#include <gtest/gtest.h>

#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/texts.h"

namespace marrowpress {
namespace {

/// What stands in front of the root in everything that the module writes as a composite.
const std::string kDoctype =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)"
    R"(<!DOCTYPE dita PUBLIC "-//OASIS//DTD DITA Composite//EN" "ditabase.dtd">)";

const std::string kBare = kDoctype.substr(kDoctype.find("<!"));

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
         {kDoctype, kDoctype + kTopic, kBare + kTopic, kBare + "<dita/>",
          replacedAll(kBare, " \"ditabase.dtd\"", "") + kTopic,
          kDoctype + kTopic.substr(0, kTopic.size() - 7) + std::string(9000, 'x') + "</dita>"}) {
        EXPECT_TRUE(isComposite(own)) << own.substr(0, 300);
    }
}

TEST_F(WrittenCompositeTest, MayBeAComponentWithConditions) {
    const std::string state = R"(<?Qs BoolCondExpr "X" State 1?>)";
    EXPECT_TRUE(isComposite(kDoctype + state + kTopic));
    EXPECT_TRUE(isComposite(kDoctype + state + "<dita/>"));
    std::string many;
    for (int number = 0; number < 1000; ++number) {
        many += "<?Qs Condition Name" + std::to_string(number) + " 1 y show z?>";
    }
    EXPECT_TRUE(isComposite(kDoctype + many + state + kTopic));
    EXPECT_FALSE(isComposite(kDoctype + "<?other x?>" + kTopic));
    EXPECT_FALSE(isComposite(kDoctype + "<?Qs BoolCondExpr" + kTopic));
}

TEST_F(WrittenCompositeTest, IsNothingElse) {
    const std::string cutOff = kTopic.substr(0, kTopic.find("\"><title/>"));
    for (const std::string& other :
         {std::string("old"), std::string("\n"), std::string(1, '\0'), kTopic,
          std::string("<dita/>"), kDoctype + "<dita></dita>", kDoctype + "<dita/><!-- note -->",
          kDoctype + "<dita><topic id=\"one\"/></dita>",
          replacedAll(kDoctype, "Composite", "Topic") + kTopic,
          kDoctype + replacedAll(kTopic, "-4", "-1"), kDoctype + replacedAll(kTopic, "-a", "-c"),
          kDoctype + replacedAll(kTopic, "0f", "0F"),
          kDoctype + replacedAll(kTopic, "0e\"", "0e1\""), kDoctype + cutOff,
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
    const std::string path = folder.write("m.dita", kDoctype + kTopic);
    std::filesystem::permissions(path, std::filesystem::perms::none);
    std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
    const WithoutRights noRights;
    EXPECT_FALSE(isWrittenComposite(path));
}

}  // namespace
}  // namespace marrowpress
