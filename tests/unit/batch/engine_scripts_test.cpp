#include "cli/batch/engine_scripts.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

class EngineScriptsTest : public testing::Test {
protected:
    EngineScriptsTest() {
        for (const char* const id : {"a b", "c$d"}) {
            plan_.jobs.emplace_back();
            plan_.jobs.back().id = id;
            plan_.jobs.back().options.map = "/n/docs/m.ditamap";
            plan_.jobs.back().options.output = "/n/out/m.dita";
        }
    }

    std::string scriptFor(Engine engine) const {
        return engineScript(
            {engine, plan_, "/bin/marrowpress", "/n/night/plan.jsonl", "/n/night/results", "", {}});
    }

    bool has(Engine engine, const std::string& text) const {
        const std::string script = scriptFor(engine);
        EXPECT_NE(script.find(text), std::string::npos) << script;
        return script.find(text) != std::string::npos;
    }

    Plan plan_;
};

TEST_F(EngineScriptsTest, APlanIsMadeAgainForEachFileOfItsProject) {
    const auto scriptWith = [this](Engine engine) {
        return engineScript({engine,
                             plan_,
                             "/bin/marrowpress",
                             "/n/plan.jsonl",
                             "/n/results",
                             "make-plan",
                             {"/n/project.xml", "/n/common.xml"}});
    };
    const std::string ninja = scriptWith(Engine::kNinja);
    EXPECT_NE(ninja.find("build /n/plan.jsonl: plan /n/project.xml /n/common.xml\n"),
              std::string::npos)
        << ninja;
    EXPECT_NE(ninja.find("build /n/common.xml: phony\n"), std::string::npos);
    const std::string make = scriptWith(Engine::kMake);
    EXPECT_NE(make.find("/n/plan.jsonl.made: /n/project.xml /n/common.xml\n"), std::string::npos)
        << make;
    EXPECT_NE(make.find("\n/n/common.xml:\n"), std::string::npos);
}

TEST_F(EngineScriptsTest, AWordForTheShellIsQuotedWhereItHasTo) {
    EXPECT_EQ(shellWord("/a/b-c_1.json"), "/a/b-c_1.json");
    EXPECT_EQ(shellWord("a b"), "'a b'");
    EXPECT_EQ(shellWord("$x"), "'$x'");
    EXPECT_EQ(shellWord("it's"), "'it'\\''s'");
    EXPECT_EQ(shellWord(""), "''");
}

TEST_F(EngineScriptsTest, NinjaAndMakeHaveARuleForEachResult) {
    EXPECT_TRUE(
        has(Engine::kNinja, "build /n/night/results/a$ b.json: job | /n/night/plan.jsonl\n"));
    EXPECT_TRUE(has(Engine::kNinja, "/n/night/results/c$$d.json: job"));
    EXPECT_TRUE(has(Engine::kNinja, "--index 1 --depfile '/n/night/results/c$$d.json.d'"));
    EXPECT_TRUE(has(Engine::kMake,
                    "all: /n/night/results/a\\ b.json\n"
                    "/n/night/results/a\\ b.json: /n/night/plan.jsonl\n"));
    EXPECT_TRUE(has(Engine::kMake, "-include /n/night/results/a\\ b.json.d\n"));
    EXPECT_TRUE(has(Engine::kMake, "--index 1 --depfile '/n/night/results/c$$d.json.d'"));
}

TEST_F(EngineScriptsTest, ThoseThatMakeThePlanHaveARuleForIt) {
    EngineScript script{Engine::kNinja, plan_,     "/m",        "/r/plan.jsonl",
                        "/r",           "make it", {"/p x.xml"}};
    EXPECT_NE(engineScript(script).find("build /r/plan.jsonl: plan /p$ x.xml\n"),
              std::string::npos);
    script.engine = Engine::kMake;
    EXPECT_NE(engineScript(script).find("/r/plan.jsonl.made: /p\\ x.xml\n\tmake it\n"
                                        "\ttouch /r/plan.jsonl.made\n"
                                        "/p\\ x.xml:\n\ninclude /r/plan.jsonl.made\n"),
              std::string::npos);
    EXPECT_EQ(scriptFor(Engine::kNinja).find("rule plan"), std::string::npos);
}

TEST_F(EngineScriptsTest, APathThatAnEngineCannotNameIsFound) {
    const struct {
        Engine engine;
        const char* id;
        bool isFound;
    } cases[] = {{Engine::kNinja, "a %=$#:\\[]()", false},
                 {Engine::kNinja, "don't", true},
                 {Engine::kNinja, "a;b", true},
                 {Engine::kNinja, "a|b", true},
                 {Engine::kMake, "don't *?$#:\\", false},
                 {Engine::kMake, "a%b", true},
                 {Engine::kMake, "a=b", true},
                 {Engine::kMake, "a;b", true},
                 {Engine::kMake, "a|b", true},
                 {Engine::kSlurm, "%=;|'", false}};
    for (const auto& given : cases) {
        plan_.jobs.back().id = given.id;
        const EngineScript script{given.engine, plan_, "/m", "/r/plan.jsonl", "/r", "", {}};
        const std::optional<std::string> found = findUnnameable(script);
        EXPECT_EQ(found.has_value(), given.isFound) << given.id;
        EXPECT_EQ(found.value_or("/r/" + std::string(given.id) + ".json"),
                  "/r/" + std::string(given.id) + ".json");
    }
}

TEST_F(EngineScriptsTest, APlanOrAFolderCannotBeNamedEither) {
    const std::string odd[] = {"/r\nx", "/r\\", "/r&"};
    for (const std::string& path : odd) {
        EXPECT_EQ(findUnnameable({Engine::kMake, plan_, "/m", path, "/r", "", {}}), path);
    }
    EXPECT_EQ(findUnnameable({Engine::kParallel, plan_, "/m", "/p", "/r{1}", "", {}}), "/r{1}");
    for (const Engine engine : {Engine::kParallel, Engine::kSlurm, Engine::kKubernetes}) {
        EXPECT_EQ(findUnnameable({engine, plan_, "/m", "/p", odd[0], "", {}}), odd[0]);
        EXPECT_EQ(findUnnameable({engine, plan_, "/m", odd[1], odd[2], "", {}}), std::nullopt);
    }
}

TEST_F(EngineScriptsTest, TheOthersTakeEachIndexOnce) {
    EXPECT_TRUE(has(Engine::kParallel, "seq 0 1 | exec parallel"));
    EXPECT_TRUE(has(Engine::kParallel, "--index {}"));
    EXPECT_TRUE(has(Engine::kSlurm, "#SBATCH --array=0-1\n"));
    EXPECT_TRUE(has(Engine::kSlurm, "--index env\n"));
    EXPECT_TRUE(has(Engine::kKubernetes, "  completions: 2\n"));
    EXPECT_TRUE(has(Engine::kKubernetes, R"("--index", "env")"));
    EXPECT_TRUE(has(Engine::kKubernetes, "path: \"/n\"\n")) << "what all files are in";
    EXPECT_TRUE(has(Engine::kGithub, "        part: [1, 2]\n"));
    EXPECT_TRUE(has(Engine::kGithub, "--shard ${{ matrix.part }}/2"));
}

TEST_F(EngineScriptsTest, KubernetesMountsAFolderWithoutAColonAndTakesDollarsAsTheyAre) {
    plan_.jobs.back().options.filters = {"/n/p.ditaval"};
    const std::string script = engineScript(
        {Engine::kKubernetes, plan_, "/m", "/n/a: b/$(HOME).jsonl", "/n/a: b/$$", "", {}});
    EXPECT_NE(script.find("mountPath: \"/n\"\n"), std::string::npos) << script;
    EXPECT_NE(script.find(R"("/n/a: b/$$(HOME).jsonl", "--results", "/n/a: b/$$$$")"),
              std::string::npos)
        << script;
    plan_.jobs.front().options.filters = {"/etc/p.ditaval"};
    EXPECT_TRUE(has(Engine::kKubernetes, "path: \"/\"\n")) << "filters are read, too";
    plan_.jobs.front().options.filters = {};
    for (Job& job : plan_.jobs) {
        job.options.map = "/n: o/m.ditamap";
        job.options.output = "/n: o/out/m.dita";
        job.options.filters = {};
    }
    EXPECT_NE(engineScript({Engine::kKubernetes, plan_, "/m", "/n: o/p", "/n: o/r", "", {}})
                  .find("mountPath: \"/\"\n"),
              std::string::npos);
}

TEST_F(EngineScriptsTest, AMatrixIsNoLargerThanItMayBe) {
    plan_.jobs.resize(1000);
    EXPECT_TRUE(has(Engine::kGithub, ", 255, 256]\n"));
    EXPECT_TRUE(has(Engine::kGithub, "--shard ${{ matrix.part }}/256"));
}

TEST_F(EngineScriptsTest, JobsRunInTheFolderInWhichTheScriptWasMade) {
    const auto scriptIn = [this](Engine engine) {
        return engineScript({engine, plan_, "/m", "/p", "/r", "", {}, "/n/a b"});
    };
    for (const Engine engine : {Engine::kNinja, Engine::kMake, Engine::kParallel, Engine::kSlurm}) {
        EXPECT_NE(scriptIn(engine).find("cd '/n/a b' && "), std::string::npos);
    }
    EXPECT_NE(scriptIn(Engine::kKubernetes).find("workingDir: \"/n/a b\"\n"), std::string::npos);
    EXPECT_NE(scriptIn(Engine::kGithub).find("working-directory: \"/n/a b\"\n"), std::string::npos);
}

TEST_F(EngineScriptsTest, EachSaysHowItEndsInAMerge) {
    for (const Engine engine : {Engine::kNinja, Engine::kMake, Engine::kParallel, Engine::kSlurm,
                                Engine::kKubernetes, Engine::kGithub}) {
        EXPECT_TRUE(has(engine, "batch merge /n/night/results --plan /n/night/plan.jsonl\n"));
    }
}

}  // namespace
}  // namespace marrowpress
