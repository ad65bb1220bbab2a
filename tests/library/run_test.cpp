#include <algorithm>
#include <boost/json/parse.hpp>
#include <filesystem>

#include "tests/library/library_fixture.h"

namespace marrowpress {
namespace {

using Lines = std::vector<std::string>;

/// Neither document names a DTD, and a reference leads to nothing.
const Lines kFound{"MP201 m.ditamap:1", "MP111 m.ditamap:4", "MP201 t.dita:1"};

class RunTest : public LibraryTest {
protected:
    /// Null for a file that is none.
    static const mp_dependency* findDependency(const ResultPtr& result, const std::string& path) {
        for (std::size_t index = 0; index < mp_result_dependency_count(result.get()); ++index) {
            const mp_dependency* const file = mp_result_dependency(result.get(), index);
            if (file->file == path) {
                return file;
            }
        }
        return nullptr;
    }
};

TEST_F(RunTest, PublishesAndSaysWhatItMet) {
    const ResultPtr result = run(composite());
    EXPECT_EQ(mp_result_code(result.get()), MP_OK);
    EXPECT_EQ(mp_result_status(result.get()), 0);
    EXPECT_STREQ(mp_result_error(result.get()), "");
    ASSERT_EQ(mp_result_output_count(result.get()), 1U);
    EXPECT_EQ(mp_result_output(result.get(), 0), folder.file("out.dita"));
    EXPECT_TRUE(folder.exists("out.dita"));
    ASSERT_EQ(findings(result), kFound);
    const mp_finding& finding = *mp_result_finding(result.get(), 1);
    EXPECT_EQ(finding.column, 1U);
    EXPECT_STREQ(finding.severity, "error");
    EXPECT_EQ(boost::json::parse(finding.json).at("id"), "MP111");
    EXPECT_EQ(mp_result_dependency_count(result.get()), 0U);
    EXPECT_EQ(mp_result_key_count(result.get()), 0U);
}

TEST_F(RunTest, TheAnswerIsThatOfTheModule) {
    const ResultPtr result = run(flatBook());
    ASSERT_EQ(mp_result_value_count(result.get()), 5U);
    EXPECT_EQ(mp_result_value(result.get(), 0)->type, 1U);
    EXPECT_EQ(mp_result_value(result.get(), 0)->integer, 0);
    const mp_value& components = *mp_result_value(result.get(), 4);
    // Two references to one source are one file.
    ASSERT_EQ(components.count, 2U);
    ASSERT_EQ(mp_result_output_count(result.get()), 1U);
    EXPECT_EQ(components.texts[0], folder.file("t.qs"));
    EXPECT_EQ(mp_result_output(result.get(), 0), folder.file("t.qs"));
    EXPECT_TRUE(folder.exists("t.qs"));
    EXPECT_EQ(mp_result_value(result.get(), 5), nullptr);
}

TEST_F(RunTest, DependenciesAndKeysAreThereWhereTheyAreWanted) {
    options.flags = MP_DEPENDENCIES | MP_KEYS;
    const ResultPtr result = run(composite());
    EXPECT_EQ(dependencies(result), (Lines{"m.ditamap map reference read", "t.dita topic read",
                                           "none.dita topic absent"}));
    const mp_dependency* const topic = findDependency(result, folder.file("t.dita"));
    ASSERT_NE(topic, nullptr);
    EXPECT_EQ(topic->from, folder.file("m.ditamap"));
    EXPECT_EQ(boost::json::parse(topic->json).at("file"), topic->file);
    ASSERT_EQ(mp_result_key_count(result.get()), 1U);
    EXPECT_EQ(boost::json::parse(mp_result_key(result.get(), 0)).at("key"), "k");
}

TEST_F(RunTest, ASecondRunListsTheSameFiles) {
    options.flags = MP_DEPENDENCIES;
    const std::size_t count = mp_result_dependency_count(run(composite()).get());
    EXPECT_EQ(mp_result_dependency_count(run(composite()).get()), count);
    EXPECT_EQ(mp_result_dependency_count(spawn(composite()).get()), count);
}

TEST_F(RunTest, ATrialLeavesNothing) {
    for (const std::uint32_t flag : {MP_CHECK, MP_SURVEY}) {
        options.flags = flag;
        for (const std::string& request : {composite(), flatBook()}) {
            const ResultPtr result = run(request);
            EXPECT_EQ(mp_result_status(result.get()), 0);
            EXPECT_EQ(mp_result_output_count(result.get()), 0U);
            EXPECT_EQ(findings(result), kFound);
        }
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
}

TEST_F(RunTest, ARequestThatIsRefusedHasAnAnswerAndAReason) {
    for (const char* const request :
         {"", "no JSON", "{}", R"({"type":"PublishComp","params":{}})"}) {
        const ResultPtr result = run(request);
        EXPECT_EQ(mp_result_code(result.get()), MP_OK) << request;
        EXPECT_EQ(mp_result_status(result.get()), -43) << request;
        EXPECT_STRNE(mp_result_error(result.get()), "") << request;
        EXPECT_EQ(mp_result_output_count(result.get()), 0U) << request;
    }
}

TEST_F(RunTest, ARunThatFailsIsAFindingToo) {
    folder.write("m.ditamap", "<map>");
    const ResultPtr result = run(composite());
    EXPECT_EQ(mp_result_status(result.get()), -42);
    EXPECT_STRNE(mp_result_error(result.get()), "");
    EXPECT_NE(mp_result_finding_count(result.get()), 0U);
    EXPECT_FALSE(folder.exists("out.dita"));
}

TEST_F(RunTest, FindingsGoToTheCallbackAndHaveALanguage) {
    Lines texts;
    options.finding_user = &texts;
    options.on_finding = [](void* user, const mp_finding* finding) {
        static_cast<Lines*>(user)->emplace_back(finding->text);
    };
    for (const int language : {MP_LANGUAGE_ENGLISH, MP_LANGUAGE_GERMAN}) {
        options.language = language;
        run(composite());
    }
    ASSERT_EQ(texts.size(), 2 * kFound.size());
    EXPECT_NE(texts[1].find("none.dita` "), std::string::npos) << texts[1];
    EXPECT_NE(texts[1], texts[1 + kFound.size()]);
}

TEST_F(RunTest, ProgressLinesHaveNoEnd) {
    Lines lines;
    onProgress([&](const char* line) { lines.emplace_back(line); });
    run(composite());
    EXPECT_FALSE(lines.empty());
    for (const std::string& line : lines) {
        EXPECT_EQ(line.find_first_of("\r\n"), std::string::npos);
    }
}

TEST_F(RunTest, WithoutFindingsTheResultIsTheSame) {
    options.flags = MP_NO_FINDINGS;
    const ResultPtr result = run(composite());
    EXPECT_EQ(mp_result_status(result.get()), 0);
    EXPECT_EQ(mp_result_output_count(result.get()), 1U);
    EXPECT_EQ(mp_result_finding_count(result.get()), 0U);
}

/// A document whose DTD the caller has.
class EntityTest : public RunTest {
protected:
    EntityTest() {
        folder.write("own.dtd",
                     "<!ELEMENT topic (title)><!ELEMENT title (#PCDATA)>"
                     "<!ATTLIST topic id ID #REQUIRED class CDATA '- topic/topic '>");
        folder.write("t.dita",
                     "<!DOCTYPE topic PUBLIC \"own\" \"none.dtd\">\n"
                     "<topic id=\"t\"><title>T</title></topic>");
        path_ = folder.file("own.dtd");
        options.entity_user = this;
        options.resolve_entity = [](void* user, const char* id, char* path, std::size_t size) {
            return static_cast<EntityTest*>(user)->resolve(id, path, size);
        };
    }

    Lines asked;

private:
    int resolve(const char* id, char* path, std::size_t size) {
        asked.emplace_back(id);
        path_.copy(path, size - 1);
        path[std::min(size - 1, path_.size())] = '\0';
        return asked.back() == "own" ? 1 : 0;
    }

    std::string path_;
};

TEST_F(EntityTest, TheCallerIsAskedBeforeTheCatalogs) {
    options.flags = MP_DEPENDENCIES;
    for (const LibraryFunction function : {mp_run, mp_spawn}) {
        asked.clear();
        const ResultPtr result = call(function, composite());
        EXPECT_TRUE(std::find(asked.begin(), asked.end(), "own") != asked.end());
        EXPECT_EQ(dependencies(result).size(), 3U);
        EXPECT_NE(findDependency(result, folder.file("own.dtd")), nullptr) << "the DTD is found";
    }
}

TEST_F(RunTest, OpenDocumentsThatAreUsedAreInTheAnswer) {
    mp_document document{7, 1, nullptr};
    const std::string path = folder.file("t.dita");
    document.path = path.c_str();
    options.document_user = &document;
    options.open_document = [](void* user, std::size_t index, mp_document* given) {
        *given = *static_cast<mp_document*>(user);
        return index == 0 ? 1 : 0;
    };
    for (const LibraryFunction function : {mp_run, mp_spawn}) {
        const ResultPtr result = call(function, composite());
        ASSERT_EQ(mp_result_value_count(result.get()), 4U);
        ASSERT_EQ(mp_result_value(result.get(), 1)->count, 1U);
        EXPECT_EQ(mp_result_value(result.get(), 1)->texts[0], path);
        EXPECT_EQ(mp_result_value(result.get(), 2)->integers[0], 7);
    }
}

}  // namespace
}  // namespace marrowpress
