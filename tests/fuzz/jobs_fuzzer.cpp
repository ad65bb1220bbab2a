#include "cli/batch/job_file.h"
#include "cli/batch/plan.h"
#include "tests/fuzz/fuzzing.h"

namespace {

using marrowpress::Plan;
using marrowpress::require;

/// What a project file may include; it is the first of these itself.
constexpr const char* kNames[] = {"project.xml", "a.xml", "b.json"};

void checkPlan(const Plan& plan) {
    const std::string text = marrowpress::planText(plan);
    require(marrowpress::isPlan(text), "a plan begins as plans do", text);
    const Plan again = marrowpress::parsePlan(text, "plan.jsonl");
    require(marrowpress::planText(again) == text, "a plan is read as it was written", text);
    require(again.digest == plan.digest, "a plan that was not changed has its digest", text);
}

void checkFile(const std::string& text, const std::string& path) {
    try {
        marrowpress::JobFileSetting setting;
        setting.text = text;
        setting.path = path;
        setting.shown = "project.xml";
        checkPlan(marrowpress::makePlan(marrowpress::readJobFile(setting), false, {}, {}));
    } catch (const marrowpress::JobFileError& fault) {
        require(std::string_view(fault.what()).find(": ") != std::string_view::npos,
                "a fault is told of a file", fault.what());
    }
}

void checkAsPlan(const std::string& text) {
    try {
        checkPlan(marrowpress::parsePlan(text, "plan.jsonl"));
    } catch (const marrowpress::PlanError&) {
        // It is none, or was changed.
    }
}

}  // namespace

/// The input is a file of jobs, or a plan, and two files that the first may include.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const marrowpress::TemporaryFolder folder;
    std::vector<std::string> files =
        marrowpress::cutIntoFiles(marrowpress::inputText(data, size), std::size(kNames));
    files.resize(std::size(kNames));
    for (std::size_t index = 0; index < files.size(); ++index) {
        folder.write(kNames[index], files[index]);
    }
    checkFile(files.front(), folder.file(kNames[0]));
    checkAsPlan(files.front());
    return 0;
}
