#include "cli/standard_output_composite.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace marrowpress {
namespace {

struct Copied {
    bool isWhole = false;
    std::string out;
    std::string err;
};

Copied copied(const StandardOutputComposite& composite) {
    std::ostringstream out;
    std::ostringstream err;
    const bool isWhole = composite.copyTo({out, err});
    return {isWhole, out.str(), err.str()};
}

TEST(StandardOutputCompositeTest, CopiesWhatWasWritten) {
    const StandardOutputComposite composite;
    for (const std::string& text :
         {std::string(), std::string("<dita/>\n"), std::string(1000000, 'x') + '\0' + "\xFF\r\n"}) {
        std::ofstream(composite.path(), std::ios::binary) << text;
        const Copied copy = copied(composite);
        EXPECT_TRUE(copy.isWhole);
        EXPECT_EQ(copy.out, text);
        EXPECT_EQ(copy.err, "");
    }
}

TEST(StandardOutputCompositeTest, StandsAloneInItsFolderAndGoesWithIt) {
    std::filesystem::path folder;
    {
        const StandardOutputComposite composite;
        folder = composite.path().parent_path();
        EXPECT_TRUE(std::filesystem::is_empty(folder));
    }
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST(StandardOutputCompositeTest, FailsWhenThereIsNothingToCopy) {
    const Copied copy = copied(StandardOutputComposite());
    EXPECT_FALSE(copy.isWhole);
    EXPECT_EQ(copy.err, "");
}

TEST(StandardOutputCompositeTest, FailsWhenItCannotBeWritten) {
    const StandardOutputComposite composite;
    std::ofstream(composite.path()) << "<dita/>";
    std::ofstream full("/dev/full");
    std::ostringstream err;
    EXPECT_FALSE(composite.copyTo({full, err}));
    EXPECT_EQ(err.str(), "");
}

}  // namespace
}  // namespace marrowpress
