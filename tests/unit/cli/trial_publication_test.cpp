#include "cli/trial_publication.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

std::string dtdOf(const Trial& trial, const std::string& publicId) {
    const auto found =
        std::find_if(trial.types.begin(), trial.types.end(),
                     [&publicId](const TriedType& type) { return type.publicId == publicId; });
    return found == trial.types.end() ? "no such type" : found->dtd;
}

TEST(TrialPublicationTest, ATypeHasTheDtdThatTheCatalogKnows) {
    const TemporaryFolder folder;
    const std::string dtd =
        folder.write("concept.dtd", "<!ELEMENT concept ANY><!ELEMENT title ANY>");
    const std::string catalog = folder.write(
        "c.xml", R"(<catalog xmlns="urn:oasis:names:tc:entity:xmlns:xml:catalog"><public )"
                 R"(publicId="-//OASIS//DTD DITA Concept//EN" uri="concept.dtd"/><public )"
                 R"(publicId="-//OASIS//DTD DITA Task//EN" uri="none.dtd"/></catalog>)");
    const Trial trial = tryPublication({catalog});
    EXPECT_EQ(dtdOf(trial, "-//OASIS//DTD DITA Concept//EN"), dtd);
    EXPECT_EQ(dtdOf(trial, "-//OASIS//DTD DITA Task//EN"), "");
    EXPECT_EQ(dtdOf(trial, "-//OASIS//DTD DITA Learning BookMap//EN"), "");
}

TEST(TrialPublicationTest, EachUsualEncodingCanBeRead) {
    const TemporaryFolder folder;
    const Trial trial = tryPublication({folder.file("none.xml")});
    EXPECT_GE(trial.encodings.size(), 14U);
    for (const TriedEncoding& encoding : trial.encodings) {
        EXPECT_TRUE(encoding.canBeRead) << encoding.name;
    }
}

}  // namespace
}  // namespace marrowpress
