#include "support/work_counts.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/publication.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

constexpr const char* kComposite =
    R"({"type":"PublishComp","params":{"ditamap":"$CASE/root.ditamap","output":"$CASE/new.dita",)"
    R"("ditaVal":"","keyspaceDocDtd":"map.dtd","compositeDocDtd":"ditabase.dtd","usePrint":false}})";
constexpr const char* kFlatBook =
    R"({"type":"PublishFlatBook","params":{"ditamap":"$CASE/root.ditamap","outputDir":"$CASE/out",)"
    R"("generateQSComponentsAtOneLoc":true,)"
    R"("ditaVal":"","keyspaceDocDtd":"map.dtd","compositeDocDtd":"ditabase.dtd","usePrint":false}})";

/// A publication with DITA's own DTDs.
class CountedPublication {
public:
    explicit CountedPublication(const std::string& request = kComposite) {
        folder_.write("real-dtds", "");
        folder_.write("request.json", request);
    }

    void addTopic(const std::string& name, const std::string& content) {
        references_ += "<topicref href=\"" + name + ".dita\"/>";
        addFile(name, content);
    }

    /// A topic that the map doesn't refer to.
    void addFile(const std::string& name, const std::string& content) {
        folder_.write("input/" + name + ".dita",
                      "<!DOCTYPE topic PUBLIC \"-//OASIS//DTD DITA Topic//EN\" \"topic.dtd\">"
                      "<topic id=\"" +
                          name + "\"><title>" + name + "</title>" + content + "</topic>");
    }

    void addKey(const std::string& name) {
        references_ += "<keydef keys=\"" + name +
                       "\"><topicmeta><keywords><keyword>Text</keyword></keywords></topicmeta>"
                       "</keydef>";
    }

    /// What it takes to publish it, which is to give so many outputs and no report line.
    WorkCounts publish(std::size_t outputs = 1) {
        folder_.write("input/root.ditamap",
                      "<!DOCTYPE map PUBLIC \"-//OASIS//DTD DITA Map//EN\" \"map.dtd\"><map>" +
                          references_ + "</map>");
        WorkCounts::total() = {};
        const Publication publication = PublicationCase(folder_.path().string()).publishInProcess();
        EXPECT_EQ(publication.console, "");
        EXPECT_EQ(publication.files.size(), outputs);
        return WorkCounts::total();
    }

private:
    TemporaryFolder folder_;
    std::string references_;
};

std::string repeated(const std::string& text, int count) {
    std::string repetitions;
    for (int index = 0; index < count; ++index) {
        repetitions += text;
    }
    return repetitions;
}

std::size_t scansOf(const std::string& request, int valid, int invalid) {
    CountedPublication publication(request);
    for (int index = 0; index < valid + invalid; ++index) {
        publication.addTopic("t" + std::to_string(index),
                             index < valid ? "" : "<title>another</title>");
    }
    return publication
        .publish(request == kComposite ? 1U : static_cast<std::size_t>(valid + invalid))
        .dtdScans;
}

// Of the map, of the topics and of the output: a map's is that of the key space, too.
TEST(DtdScansTest, ACompositeTakesOneOfEachDtd) {
    EXPECT_EQ(scansOf(kComposite, 1, 0), 3U);
    EXPECT_EQ(scansOf(kComposite, 10, 0), 3U);
}

TEST(DtdScansTest, AnInvalidTopicTakesNone) {
    EXPECT_EQ(scansOf(kComposite, 1, 1), 3U);
    EXPECT_EQ(scansOf(kComposite, 1, 8), 3U);
    EXPECT_EQ(scansOf(kComposite, 0, 2), 3U);
}

TEST(DtdScansTest, AFurtherComponentTakesNone) {
    EXPECT_EQ(scansOf(kFlatBook, 1, 0), 3U);
    EXPECT_EQ(scansOf(kFlatBook, 9, 0), 3U);
}

/// The counts of a publication of one topic with so many paragraphs.
WorkCounts countsOfParagraphs(const std::string& paragraph, int count) {
    CountedPublication publication;
    publication.addFile("library", "<body><p id=\"p0\"/><p id=\"p1\">x</p></body>");
    publication.addKey("key");
    publication.addTopic("topic", "<body>" + repeated(paragraph, count) + "</body>");
    return publication.publish();
}

/// What one further paragraph takes, of a count.
double each(std::size_t WorkCounts::*count, const std::string& paragraph) {
    constexpr int kFew = 10;
    constexpr int kMany = 110;
    const std::size_t few = countsOfParagraphs(paragraph, kFew).*count;
    const std::size_t many = countsOfParagraphs(paragraph, kMany).*count;
    return static_cast<double>(many - few) / (kMany - kFew);
}

// Three passes over the copy of a topic; in the output a look at what there is, key references,
// content references by key, references, content references.
TEST(WalkStepsTest, AnElementOfACompositeTakesEight) {
    EXPECT_EQ(each(&WorkCounts::walkSteps, "<p>x</p>"), 8);
}

TEST(WalkStepsTest, AKeyReferenceTakesAsMany) {
    EXPECT_EQ(each(&WorkCounts::walkSteps, "<ph keyref=\"key\"/>"), 8);
}

TEST(FileQuestionsTest, ATopicTakesOneForKeysOneForTheOutputAndOneForItsDtd) {
    const auto questionsOf = [](int topics) {
        CountedPublication publication;
        for (int index = 0; index < topics; ++index) {
            publication.addTopic("t" + std::to_string(index), "");
        }
        return publication.publish().fileQuestions;
    };
    EXPECT_EQ(questionsOf(11) - questionsOf(1), 10U * 3U);
}

TEST(FileQuestionsTest, AContentReferenceIntoAFileThatIsReadTakesNone) {
    EXPECT_EQ(each(&WorkCounts::fileQuestions, "<p conref=\"library.dita#library/p1\"/>"), 0);
}

TEST(ResolverCallsTest, AContentReferenceIntoAFileThatIsReadTakesNone) {
    const std::string conref = "<p conref=\"library.dita#library/p1\"/>";
    EXPECT_GT(countsOfParagraphs(conref, 1).resolverCalls, 0U);
    EXPECT_EQ(each(&WorkCounts::resolverCalls, conref), 0);
}

TEST(ChainWalksTest, AContentReferenceTakesNone) {
    const std::string conref = "<p conref=\"library.dita#library/p1\"/>";
    EXPECT_GT(countsOfParagraphs(conref, 1).chainWalks, 0U);
    EXPECT_EQ(each(&WorkCounts::chainWalks, conref), 0);
}

TEST(SearchStepsTest, AnIdIsFoundAsFastInALargeLibrary) {
    const auto stepsOf = [](int ids, int conrefs) {
        CountedPublication publication;
        std::string paragraphs;
        for (int index = 0; index < ids; ++index) {
            paragraphs += "<p id=\"p" + std::to_string(index) + "\">x</p>";
        }
        publication.addFile("library", "<body>" + paragraphs + "</body>");
        const std::string last = std::to_string(ids - 1);
        publication.addTopic(
            "topic", "<body>" +
                         repeated("<p conref=\"library.dita#library/p" + last + "\"/>", conrefs) +
                         "</body>");
        return publication.publish().searchSteps;
    };
    for (const int ids : {50, 5000}) {
        const std::size_t ofSome = stepsOf(ids, 10);
        EXPECT_EQ(stepsOf(ids, 100), ofSome) << ids;
        EXPECT_GE(ofSome, static_cast<std::size_t>(ids)) << ids;
        EXPECT_LE(ofSome, 3U * static_cast<std::size_t>(ids) + 20U) << ids;
    }
}

/// The counts of a publication of so many topics, each with references to others.
WorkCounts countsOfTopics(int topics) {
    CountedPublication publication;
    publication.addFile("library", "<body><p id=\"p1\">x</p></body>");
    publication.addKey("key");
    for (int index = 0; index < topics; ++index) {
        publication.addTopic("t" + std::to_string(index),
                             "<body><p><ph keyref=\"key\"/><xref href=\"t0.dita#t0\">x</xref></p>"
                             "<p conref=\"library.dita#library/p1\"/></body>");
    }
    return publication.publish();
}

// Tenfold the topics are tenfold the work.
TEST(GrowthTest, EachCountGrowsWithTheNumberOfTopics) {
    const WorkCounts few = countsOfTopics(8);
    const WorkCounts some = countsOfTopics(80);
    const WorkCounts many = countsOfTopics(800);
    const std::vector<std::pair<const char*, std::size_t WorkCounts::*>> counts{
        {"documents", &WorkCounts::documents},    {"tries", &WorkCounts::tries},
        {"DTD scans", &WorkCounts::dtdScans},     {"resolver calls", &WorkCounts::resolverCalls},
        {"walk steps", &WorkCounts::walkSteps},   {"search steps", &WorkCounts::searchSteps},
        {"chain walks", &WorkCounts::chainWalks}, {"file questions", &WorkCounts::fileQuestions},
    };
    for (const auto& [name, count] : counts) {
        EXPECT_GT(few.*count, 0U) << name;
        const auto first = static_cast<double>(some.*count - few.*count);
        const auto second = static_cast<double>(many.*count - few.*count);
        EXPECT_LE(second, first * std::pow(10, 1.05)) << name;
    }
}

}  // namespace
}  // namespace marrowpress
