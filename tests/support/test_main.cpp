#include <gtest/gtest.h>

#include <iostream>
#include <string>
#include <string_view>

namespace {

/// A filter for the tests whose source file's path ends with `path`; empty when there are none.
std::string filterForSource(std::string_view path) {
    std::string filter;
    const testing::UnitTest& program = *testing::UnitTest::GetInstance();
    for (int i = 0; i < program.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *program.GetTestSuite(i);
        const std::string suiteName = std::string(suite.name()) + '.';
        std::string tests;
        bool isWhole = true;
        for (int j = 0; j < suite.total_test_count(); ++j) {
            const testing::TestInfo& test = *suite.GetTestInfo(j);
            if (std::string_view(test.file()).ends_with(path)) {
                tests += suiteName + test.name() + ':';
            } else {
                isWhole = false;
            }
        }
        // GoogleTest shows the filter, so it is kept short.
        filter += isWhole ? suiteName + "*:" : tests;
    }
    return filter;
}

}  // namespace

/// Runs all tests of the program, or with `--tests-in=PATH` those of one source file. A filter of
/// GoogleTest's own goes before that: a death test starts the program once more with its name.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    constexpr std::string_view kTestsIn = "--tests-in=";
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (!argument.starts_with(kTestsIn)) {
            std::cerr << argv[0] << ": unknown argument " << argument << '\n';
            return 2;
        }
        const std::string_view path = argument.substr(kTestsIn.size());
        const std::string filter = filterForSource(path);
        if (filter.empty()) {
            std::cerr << argv[0] << ": there are no tests in " << path << '\n';
            return 2;
        }
        if (GTEST_FLAG_GET(filter) == "*") {
            GTEST_FLAG_SET(filter, filter);
        }
    }
    return RUN_ALL_TESTS();
}
