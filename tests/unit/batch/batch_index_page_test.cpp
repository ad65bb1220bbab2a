#include "cli/batch/batch_index_page.h"

#include <gtest/gtest.h>

#include "findings/language.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

TEST(BatchIndexPageTest, HasARowForEachJobAndALinkWhereThereIsAPage) {
    chooseLanguage(Language::kEnglish);
    const TemporaryFolder folder;
    folder.write("pages/a.html", "");
    const ResultFolder results(folder.file("results"), [](const std::string&) {});
    RunResult result;
    result.id = "a";
    result.state = ResultState::kClean;
    result.exit = 0;
    results.put(result);
    Plan plan;
    for (const char* const id : {"a", "<b>"}) {
        plan.jobs.emplace_back();
        plan.jobs.back().id = id;
    }
    const std::string page = batchIndexPage(plan, {0, 1}, results, folder.file("pages"));
    chooseLanguage(Language::kGerman);
    EXPECT_NE(page.find("<h1>2 jobs</h1>"), std::string::npos) << page;
    EXPECT_NE(page.find(R"(<td><a href="./a.html">a</a></td><td>clean</td>)"), std::string::npos);
    EXPECT_NE(page.find("<td>&lt;b&gt;</td><td>not run</td>"), std::string::npos) << page;
    EXPECT_EQ(page.find("<script"), std::string::npos);
    EXPECT_EQ(page.find("http:"), std::string::npos) << "it loads nothing";
}

}  // namespace
}  // namespace marrowpress
