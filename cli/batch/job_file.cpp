#include "cli/batch/job_file.h"

#include <algorithm>
#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <map>
#include <sstream>
#include <string_view>

#include "cli/batch/project_jobs.h"
#include "findings/letter_case.h"
#include "host/utf8.h"

namespace marrowpress {
namespace {

namespace json = boost::json;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Whether the first line that is not blank is an object by itself, and no project.
bool areJobLines(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    const std::string_view rest = std::string_view(text).substr(begin);
    boost::system::error_code error;
    const json::value value = json::parse(rest.substr(0, rest.find('\n')), error);
    if (error || !value.is_object()) {
        return false;
    }
    const json::object& object = value.get_object();
    return std::none_of(object.begin(), object.end(), [](const json::key_value_pair& member) {
        return member.key() == "deliverables" || member.key() == "includes" ||
               member.key() == "contexts" || member.key() == "publications";
    });
}

/// What is wrong with a job's id, which is to be a file's name; empty when nothing is.
std::string idFault(const std::string& id) {
    constexpr std::size_t kMostBytes = 200;
    const bool hasControl = std::any_of(id.begin(), id.end(), [](unsigned char character) {
        return character < ' ' || character == 0x7F;
    });
    if (id.empty() || id.front() == '.' || id.find('/') != std::string::npos || hasControl) {
        return "is no file name";
    }
    if (id.size() > kMostBytes) {
        return "is longer than " + std::to_string(kMostBytes) + " bytes";
    }
    return isValidUtf8(id) ? "" : "is no UTF-8";
}

std::string placeText(const Job& job) {
    return job.file + ":" + std::to_string(job.line);
}

/// @throws JobFileError
void checkIds(const std::vector<Job>& jobs) {
    std::map<std::string, const Job*> first;
    for (const Job& job : jobs) {
        if (const std::string fault = idFault(job.id); !fault.empty()) {
            throw JobFileError(job.file, job.line, "the id `" + job.id + "` " + fault);
        }
        const auto [known, isNew] = first.emplace(foldedCase(job.id), &job);
        if (isNew) {
            continue;
        }
        const Job& other = *known->second;
        throw JobFileError(
            job.file, job.line,
            other.id == job.id
                ? "two jobs have the id `" + job.id + "`; the other one is at " + placeText(other)
                : "the ids `" + job.id + "` and `" + other.id + "` (" + placeText(other) +
                      ") differ in letter case only");
    }
}

std::vector<Job> jobsIn(const JobFileSetting& setting, const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string::npos) {
        return {};
    }
    if (text[begin] != '<' && text[begin] != '{') {
        throw JobFileError(setting.shown + ": project files are read as XML or JSON");
    }
    if (text[begin] == '{' && areJobLines(text)) {
        std::istringstream lines(text);
        return readJobLines(lines, setting.shown);
    }
    return readProject(
        {text, setting.path, setting.shown, setting.outputFolder.value_or("."), setting.formats});
}

}  // namespace

std::vector<Job> readJobFile(const JobFileSetting& setting) {
    const bool hasMark = setting.text.starts_with(kByteOrderMark);
    std::vector<Job> jobs =
        jobsIn(setting, hasMark ? setting.text.substr(kByteOrderMark.size()) : setting.text);
    checkIds(jobs);
    return jobs;
}

bool canBePublished(const Job& job, const std::map<std::string, std::string>& formats) {
    return job.transtype.empty() || job.transtype == "composite" || job.transtype == "flatbook" ||
           formats.contains(job.transtype);
}

}  // namespace marrowpress
