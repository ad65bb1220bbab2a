#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "support/paths.h"
#include "tests/support/failing_allocations.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

/// A question about a path, and whether it is answered as for the path that the test gives it.
struct PathQuestion {
    const char* name;
    std::u16string path;
    std::function<bool(std::u16string_view)> isAnswered;
};

TEST(PathsMemoryTest, WithoutMemoryForItAQuestionIsAnsweredWithNo) {
    const TemporaryFolder folder;
    folder.write("a file with a long name.dita", "");
    folder.write("a folder #1/a.dita", "");
    folder.write("back\\slash/a.dita", "");
    for (const PathQuestion& question : {
             PathQuestion{"isReplaceable", folder.file16("a file with a long name.dita"),
                          [](std::u16string_view path) { return isReplaceable(path); }},
             PathQuestion{"isIrregularFile", folder.path().u16string(),
                          [](std::u16string_view path) { return isIrregularFile(path); }},
             PathQuestion{
                 "partThatCutsReferences", folder.file16("a folder #1/a.dita"),
                 [](std::u16string_view path) { return !partThatCutsReferences(path).empty(); }},
             PathQuestion{
                 "partThatHadBackslash", folder.file16("back/slash/a.dita"),
                 [](std::u16string_view path) { return !partThatHadBackslash(path).empty(); }},
         }) {
        EXPECT_TRUE(question.isAnswered(question.path)) << question.name;
        const std::size_t faults = tryEachAllocation(true, [&](const AllocationFault& fault) {
            bool isAnswered = false;
            {
                const FailingAllocations failing(fault);
                isAnswered = question.isAnswered(question.path);
            }
            const bool hasFailed = FailingAllocations::count() >= fault.number;
            EXPECT_EQ(isAnswered, !hasFailed) << question.name << ' ' << fault.number;
        });
        EXPECT_GT(faults, 0U) << question.name;
    }
}

}  // namespace
}  // namespace marrowpress
