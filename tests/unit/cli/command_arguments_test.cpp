#include "cli/command_arguments.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

enum class Shade { kDark, kLight };

/// Arguments of each kind.
class CommandArgumentsTest : public testing::Test {
protected:
    CommandArgumentsTest() {
        arguments_.addText("NAME", name_, "A name", "TEXT").required();
        arguments_.addText("-t,--text", text_, "A text", "TEXT");
        arguments_.addList("--each", each_, "Texts", "TEXT");
        arguments_.addList(
            "--odd",
            [](const std::string& value) {
                return value.size() % 2 == 1 ? std::nullopt
                                             : std::optional<std::string>("is even: " + value);
            },
            "Texts of odd length", "TEXT");
        arguments_.addFlag("-f,--flag", flag_, "A flag");
        arguments_.addChoice("--shade", "shade", shade_,
                             Choices<Shade>{{"dark", Shade::kDark}, {"light", Shade::kLight}},
                             "A shade", "SHADE");
    }

    /// The fault of the arguments; "" when there is none.
    std::string parse(const std::vector<std::string>& texts) {
        try {
            app_.parse(std::vector<std::string>(texts.rbegin(), texts.rend()));
        } catch (const CLI::ParseError& error) {
            return arguments_.describe(error, texts);
        }
        return arguments_.take().value_or("");
    }

    CLI::App app_;
    CommandArguments arguments_{app_};
    std::string name_ = "usual";
    std::optional<std::string> text_;
    std::vector<std::string> each_;
    bool flag_ = false;
    Shade shade_ = Shade::kLight;
};

TEST_F(CommandArgumentsTest, FillTheirTargets) {
    EXPECT_EQ(parse({"n", "-t", "x", "--each", "a", "--each=b", "-f", "--shade", "dark"}), "");
    EXPECT_EQ(name_, "n");
    EXPECT_EQ(text_, "x");
    EXPECT_EQ(each_, (std::vector<std::string>{"a", "b"}));
    EXPECT_TRUE(flag_);
    EXPECT_EQ(shade_, Shade::kDark);
}

TEST_F(CommandArgumentsTest, LeaveTheTargetsOfWhatIsNotGiven) {
    EXPECT_EQ(parse({"n"}), "");
    EXPECT_EQ(text_, std::nullopt);
    EXPECT_TRUE(each_.empty());
    EXPECT_FALSE(flag_);
    EXPECT_EQ(shade_, Shade::kLight);
}

TEST_F(CommandArgumentsTest, TakeWhatLooksLikeAnOptionForAValue) {
    EXPECT_EQ(parse({"n", "-t", "--flag", "--each", "-"}), "");
    EXPECT_EQ(text_, "--flag");
    EXPECT_EQ(each_, std::vector<std::string>{"-"});
    EXPECT_FALSE(flag_);
}

TEST_F(CommandArgumentsTest, TakeEachValueAsItStands) {
    EXPECT_EQ(parse({"[a,b]", "-t", "[c,d]", "--each", "e,f", "--each", " g "}), "");
    EXPECT_EQ(name_, "[a,b]");
    EXPECT_EQ(text_, "[c,d]");
    EXPECT_EQ(each_, (std::vector<std::string>{"e,f", " g "}));
}

TEST_F(CommandArgumentsTest, TellWhatIsWrong) {
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{}, "NAME is required"},
        {{"n", "m"}, "there is no place for the argument `m`"},
        {{"n", "--"}, ""},
        {{"n", "--teext=x"}, "unknown option `--teext`; did you mean `--text`?"},
        {{"--teext", "x"}, "unknown option `--teext`; did you mean `--text`?"},
        {{"n", "-F"}, "unknown option `-F`; did you mean `-f`?"},
        {{"n", "--unheard-of"}, "unknown option `--unheard-of`"},
        {{"n", "--text"}, "--text: its value is missing"},
        {{"n", "-ft"}, "-ft: its value is missing"},
        {{"n", "--flag=no"}, "--flag: takes no value"},
        {{"n", "-t", "a", "--text", "b"}, "--text: is given more than once"},
        {{"n", "--text", ""}, "--text: is empty"},
        {{"n", "--each", "a", "--each", ""}, "--each: is empty"},
        {{"n", "--odd", "abc", "--odd", "ab"}, "--odd: is even: ab"},
        {{"n", "--shade", "drak"}, "--shade: unknown shade `drak`; did you mean `dark`?"},
        {{"n", "--shade", "grey"}, "--shade: unknown shade `grey`; known: dark, light"},
        {{"n", "--shade", "dark", "--shade", "dark"}, "--shade: is given more than once"},
    };
    for (const auto& [texts, fault] : cases) {
        EXPECT_EQ(parse(texts), fault);
    }
}

TEST(UnknownValueTextTest, NamesTheNearestOrAll) {
    EXPECT_EQ(unknownValueText("format", "compsite", {"composite", "flatbook"}),
              "unknown format `compsite`; did you mean `composite`?");
    EXPECT_EQ(unknownValueText("format", "pdf", {"composite", "flatbook"}),
              "unknown format `pdf`; known: composite, flatbook");
}

}  // namespace
}  // namespace marrowpress
