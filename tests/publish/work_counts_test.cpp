#include "support/work_counts.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/publication.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

/// Publications of topics with DITA's own DTDs.
class DtdScansTest : public testing::Test {
protected:
    /// How many DTDs are scanned for a map of `valid` topics and `invalid` ones behind them.
    static std::size_t scansOf(const std::string& request, int valid, int invalid) {
        const TemporaryFolder folder;
        folder.write("real-dtds", "");
        folder.write("request.json", request);
        std::string references;
        for (int index = 0; index < valid + invalid; ++index) {
            const std::string name = "t" + std::to_string(index);
            references += "<topicref href=\"" + name + ".dita\"/>";
            folder.write("input/" + name + ".dita",
                         "<!DOCTYPE topic PUBLIC \"-//OASIS//DTD DITA Topic//EN\" \"topic.dtd\">"
                         "<topic id=\"" +
                             name + "\"><title>" + name + "</title>" +
                             (index < valid ? "" : "<title>another</title>") + "</topic>");
        }
        folder.write("input/root.ditamap",
                     "<!DOCTYPE map PUBLIC \"-//OASIS//DTD DITA Map//EN\" \"map.dtd\"><map>" +
                         references + "</map>");
        const std::size_t before = WorkCounts::total().dtdScans;
        const Publication publication = PublicationCase(folder.path().string()).publishInProcess();
        EXPECT_EQ(publication.console, "");
        EXPECT_EQ(publication.files.size(),
                  request == kComposite ? 1U : static_cast<std::size_t>(valid + invalid));
        return WorkCounts::total().dtdScans - before;
    }

    static inline const std::string kRest =
        R"("ditaVal":"","keyspaceDocDtd":"map.dtd","compositeDocDtd":"ditabase.dtd","usePrint":false}})";
    static inline const std::string kComposite =
        R"({"type":"PublishComp","params":{"ditamap":"$CASE/root.ditamap","output":"$CASE/new.dita",)" +
        kRest;
    static inline const std::string kFlatBook =
        R"({"type":"PublishFlatBook","params":{"ditamap":"$CASE/root.ditamap","outputDir":"$CASE/out",)"
        R"("generateQSComponentsAtOneLoc":true,)" +
        kRest;
};

// Of the map, of the topics and of the output: a map's is that of the key space, too.
TEST_F(DtdScansTest, ACompositeTakesOneOfEachDtd) {
    EXPECT_EQ(scansOf(kComposite, 1, 0), 3U);
    EXPECT_EQ(scansOf(kComposite, 9, 0), 3U);
}

TEST_F(DtdScansTest, AnInvalidTopicTakesNone) {
    EXPECT_EQ(scansOf(kComposite, 1, 1), 3U);
    EXPECT_EQ(scansOf(kComposite, 1, 8), 3U);
    EXPECT_EQ(scansOf(kComposite, 0, 2), 3U);
}

TEST_F(DtdScansTest, AFurtherComponentTakesNone) {
    EXPECT_EQ(scansOf(kFlatBook, 1, 0), 3U);
    EXPECT_EQ(scansOf(kFlatBook, 9, 0), 3U);
}

}  // namespace
}  // namespace marrowpress
