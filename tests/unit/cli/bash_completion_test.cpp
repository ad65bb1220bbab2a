#include "cli/bash_completion.h"

#include <gtest/gtest.h>

#include "tests/unit/cli/parsed_options.h"

namespace marrowpress {
namespace {

// What bash makes of the script is looked at by tests/cli/check_completion.py.

class BashCompletionTest : public testing::Test {
protected:
    bool has(const std::string& text) const { return script.find(text) != std::string::npos; }

    std::string script = parseAs<Information>({"completion", "bash"}).text;
};

TEST_F(BashCompletionTest, EachCommandIsOffered) {
    EXPECT_TRUE(
        has("_marrowpress_words 'publish watch check keys deps doctor batch explain host "
            "completion help version'\n"));
    EXPECT_TRUE(script.ends_with("\ncomplete -F _marrowpress marrowpress\n"));
}

TEST_F(BashCompletionTest, AnOptionOfFixedWordsOffersThem) {
    EXPECT_TRUE(has("        -f|--format) _marrowpress_words 'composite flatbook'; return ;;\n"));
    EXPECT_TRUE(has("        -f|--format) _marrowpress_words 'list json make'; return ;;\n"));
}

TEST_F(BashCompletionTest, FilesAreOfferedByTheirEnding) {
    for (const char* const line :
         {"--filter) _marrowpress_files ditaval;", "--each-filter) _marrowpress_files ditaval;",
          "--catalog) _marrowpress_files xml;", "--explain) _marrowpress_keys;",
          "--sarif) _marrowpress_files;", "\n        _marrowpress_files ditamap\n"}) {
        EXPECT_TRUE(has(line)) << line;
    }
}

TEST_F(BashCompletionTest, FlagsTakeNoValue) {
    EXPECT_FALSE(has("--print)"));
    EXPECT_TRUE(has(" --print "));
}

}  // namespace
}  // namespace marrowpress
