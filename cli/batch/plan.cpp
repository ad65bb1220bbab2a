#include "cli/batch/plan.h"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value_from.hpp>
#include <boost/json/value_to.hpp>
#include <filesystem>
#include <sstream>
#include <utility>

#include "cli/batch/job_lines.h"
#include "cli/publish_paths.h"
#include "cli/publish_request.h"
#include "findings/severity.h"
#include "results/file_digest.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

constexpr std::string_view kBegin = R"({"plan":)";

constexpr std::pair<const char*, Language> kLanguages[] = {{"de", Language::kGerman},
                                                           {"en", Language::kEnglish}};

template <typename Value, std::size_t Count>
const char* wordOf(const std::pair<const char*, Value> (&words)[Count], Value value) {
    for (const auto& [word, known] : words) {
        if (known == value) {
            return word;
        }
    }
    return words[0].first;
}

template <typename Value, std::size_t Count>
Value valueOf(const std::pair<const char*, Value> (&words)[Count], std::string_view name,
              const json::value& member) {
    for (const auto& [word, value] : words) {
        if (member.is_string() && member.get_string() == word) {
            return value;
        }
    }
    throw PlanError('"' + std::string(name) + "\" has an unknown value");
}

/// The head without the digest.
json::object headOf(const Plan& plan) {
    json::object severities;
    for (const auto& [id, severity] : plan.diagnostics.severities) {
        severities[id] = severityName(severity);
    }
    return {{"plan", kPlanVersion},
            {"command", plan.isCheck ? "check" : "publish"},
            {"catalogs", json::value_from(plan.catalogs)},
            {"findings", plan.diagnostics.format != DiagnosticsFormat::kNone},
            {"failOn", wordOf(plan.diagnostics.failOn)},
            {"severities", std::move(severities)},
            {"language", wordOf(kLanguages, plan.diagnostics.language)},
            {"jobs", plan.jobs.size()}};
}

std::string linesOf(const std::vector<Job>& jobs) {
    std::string lines;
    for (const Job& job : jobs) {
        lines += jobLine(job);
    }
    return lines;
}

Job withAbsolutePaths(Job job) {
    const PublishPaths paths = resolvePublishPaths(job.options);
    job.options.map = paths.map.string();
    if (!job.options.output.empty()) {
        job.options.output = paths.output.string();
    }
    for (std::size_t index = 0; index < paths.filters.size(); ++index) {
        job.options.filters[index] = paths.filters[index].string();
    }
    return job;
}

const json::value& memberIn(const json::object& object, std::string_view name) {
    const json::value* const member = object.if_contains(name);
    if (!member) {
        throw PlanError('"' + std::string(name) + "\" is missing");
    }
    return *member;
}

void readHead(const json::object& head, Plan& plan) {
    plan.isCheck = memberIn(head, "command").as_string() == "check";
    plan.catalogs = json::value_to<std::vector<std::string>>(memberIn(head, "catalogs"));
    plan.diagnostics.format =
        memberIn(head, "findings").as_bool() ? DiagnosticsFormat::kHuman : DiagnosticsFormat::kNone;
    plan.diagnostics.failOn = valueOf(kFailOnWords, "failOn", memberIn(head, "failOn"));
    plan.diagnostics.language = valueOf(kLanguages, "language", memberIn(head, "language"));
    for (const auto& member : memberIn(head, "severities").as_object()) {
        const auto severity = severityOf(std::string(member.value().as_string()));
        if (!severity) {
            throw PlanError("\"severities\" has an unknown value");
        }
        plan.diagnostics.severities[member.key()] = *severity;
    }
    plan.digest = std::string(memberIn(head, "digest").as_string());
}

json::object parsedHead(const std::string& line) {
    boost::system::error_code error;
    const json::value value = json::parse(line, error);
    if (error || !value.is_object() || !value.get_object().contains("plan")) {
        throw PlanError("this is no plan");
    }
    if (value.get_object().at("plan") != json::value(kPlanVersion)) {
        throw PlanError("this is a plan of another version");
    }
    return value.get_object();
}

}  // namespace

std::string jobLine(const Job& job) {
    const PublishOptions& options = job.options;
    const PublishPaths paths = resolvePublishPaths(options);
    const bool isOneFilter = paths.filters.size() == 1;
    json::object line{
        {"id", job.id},
        {"request",
         json::parse(buildRequest(
             options, paths, isOneFilter ? std::optional(paths.filters.front()) : std::nullopt))},
        {"tags", json::value_from(job.tags)}};
    if (paths.filters.size() > 1) {
        json::array filters;
        for (const fs::path& filter : paths.filters) {
            filters.emplace_back(filter.string());
        }
        line["filters"] = std::move(filters);
    }
    if (!job.transtype.empty()) {
        line["transtype"] = job.transtype;
    }
    return json::serialize(line) + "\n";
}

Plan makePlan(std::vector<Job> jobs, bool isCheck, const std::vector<std::string>& catalogs,
              const DiagnosticsOptions& diagnostics) {
    Plan plan;
    plan.isCheck = isCheck;
    for (const std::string& catalog : catalogs) {
        plan.catalogs.push_back(catalog.starts_with("file:") ? catalog
                                                             : fs::absolute(catalog).string());
    }
    plan.diagnostics = diagnostics;
    if (plan.diagnostics.language == Language::kAuto) {
        plan.diagnostics.language = environmentLanguage();
    }
    for (Job& job : jobs) {
        plan.jobs.push_back(withAbsolutePaths(std::move(job)));
    }
    plan.digest = sha256Of(json::serialize(headOf(plan)) + "\n" + linesOf(plan.jobs));
    return plan;
}

std::string planText(const Plan& plan) {
    json::object head = headOf(plan);
    head["digest"] = plan.digest;
    return json::serialize(head) + "\n" + linesOf(plan.jobs);
}

bool isPlan(std::string_view text) {
    return text.starts_with(kBegin);
}

Plan parsePlan(const std::string& text, const std::string& file) {
    const std::size_t end = text.find('\n');
    Plan plan;
    try {
        const json::object head = parsedHead(text.substr(0, end));
        readHead(head, plan);
        std::istringstream lines(end == std::string::npos ? std::string() : text.substr(end + 1));
        plan.jobs = readJobLines(lines, file, /*firstLine=*/2);
        if (sha256Of(json::serialize(headOf(plan)) + "\n" + linesOf(plan.jobs)) != plan.digest) {
            throw PlanError("the plan was changed, or is cut off");
        }
    } catch (const PlanError& fault) {
        throw PlanError(file + ": " + fault.what());
    } catch (const JobFileError& fault) {
        throw PlanError(fault.what());
    } catch (const std::exception& fault) {
        throw PlanError(file + ": this is no plan: " + fault.what());
    }
    return plan;
}

}  // namespace marrowpress
