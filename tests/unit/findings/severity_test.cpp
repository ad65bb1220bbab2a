#include "findings/severity.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(SeverityNameTest, IsReadBack) {
    EXPECT_EQ(severityName(Severity::kError), "error");
    EXPECT_EQ(severityName(Severity::kWarning), "warning");
    EXPECT_EQ(severityName(Severity::kNote), "note");
    for (const Severity severity : {Severity::kError, Severity::kWarning, Severity::kNote}) {
        EXPECT_EQ(severityOf(severityName(severity)), severity);
    }
}

TEST(SeverityOfTest, NoOtherNameIsOne) {
    for (const char* const name : {"", "Error", "errors", "off", "fatal", " error"}) {
        EXPECT_FALSE(severityOf(name)) << name;
    }
}

}  // namespace
}  // namespace marrowpress
