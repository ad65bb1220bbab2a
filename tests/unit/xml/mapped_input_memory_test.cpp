#include <gtest/gtest.h>

#include "tests/support/failing_allocations.h"
#include "tests/support/xml_text.h"
#include "xml/mapped_input.h"

namespace marrowpress {
namespace {

using SourceFileMemoryTest = XmlTest;

TEST_F(SourceFileMemoryTest, AFileThatCannotBeLookedForIsNotThere) {
    folder.write("a file with a long name.xml", "<a/>");
    const MemMapLocalFileInputSource source(folder.file16("a file with a long name.xml").c_str());
    EXPECT_TRUE(sourceFileExists(source));
    for (const bool isLasting : {false, true}) {
        const std::size_t faults = tryEachAllocation(isLasting, [&](const AllocationFault& fault) {
            bool isThere = false;
            {
                const FailingAllocations failing(fault);
                isThere = sourceFileExists(source);
            }
            const bool hasFailed = FailingAllocations::count() >= fault.number;
            EXPECT_EQ(isThere, !hasFailed) << fault.number;
        });
        EXPECT_GT(faults, 0U);
    }
}

}  // namespace
}  // namespace marrowpress
