#include "cli/streams.h"

#include <gtest/gtest.h>

#include <sstream>

namespace marrowpress {
namespace {

class StreamsTest : public testing::Test {
protected:
    std::ostringstream out;
    std::ostringstream err;
    const Streams streams{out, err};
};

TEST_F(StreamsTest, AResultIsWrittenAsItIs) {
    EXPECT_TRUE(writeResult(streams, "a\r\nb"));
    EXPECT_TRUE(writeResult(streams, ""));
    EXPECT_EQ(out.str(), "a\r\nb");
    EXPECT_EQ(err.str(), "");
}

TEST_F(StreamsTest, AResultThatCannotBeWrittenIsAFailure) {
    out.setstate(std::ios::badbit);
    EXPECT_FALSE(writeOutput(streams, "a"));
    EXPECT_EQ(err.str(), "");
    EXPECT_FALSE(writeResult(streams, "a"));
    EXPECT_EQ(err.str(), "marrowpress: cannot write to standard output\n");
}

TEST_F(StreamsTest, LinesEndOnce) {
    for (const char* line : {"a", "a\n", "a\r\n", "a\r\n\r\n"}) {
        err.str("");
        showReport(err, line);
        showProgress(err, line);
        EXPECT_EQ(err.str(), "a\n> a\n");
    }
    err.str("");
    showReport(err, "");
    showReport(err, "a\nb %s\n");
    EXPECT_EQ(err.str(), "\na\nb %s\n");
}

}  // namespace
}  // namespace marrowpress
