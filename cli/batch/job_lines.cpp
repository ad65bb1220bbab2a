#include "cli/batch/job_lines.h"

#include <algorithm>
#include <array>
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <string_view>

namespace marrowpress {
namespace {

namespace json = boost::json;

constexpr std::array<std::string_view, 5> kMembers{"id", "request", "tags", "filters", "transtype"};

/// What is wrong with a line, without its place.
class LineFault : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

[[noreturn]] void refuse(std::string_view name, const char* what) {
    throw LineFault('"' + std::string(name) + "\" " + what);
}

const json::value& memberOf(const json::object& object, std::string_view name) {
    const json::value* const member = object.if_contains(name);
    if (!member) {
        refuse(name, "is missing");
    }
    return *member;
}

std::string textOf(const json::object& object, std::string_view name) {
    const json::value& member = memberOf(object, name);
    if (!member.is_string()) {
        refuse(name, "is no string");
    }
    std::string text(member.get_string());
    if (text.find('\0') != std::string::npos) {
        refuse(name, "holds a character of the number 0");
    }
    return text;
}

bool flagOf(const json::object& object, std::string_view name) {
    const json::value& member = memberOf(object, name);
    if (!member.is_bool()) {
        refuse(name, "is neither true nor false");
    }
    return member.get_bool();
}

/// The texts of an array; none without it.
std::vector<std::string> textsOf(const json::object& object, std::string_view name) {
    std::vector<std::string> texts;
    const json::value* const member = object.if_contains(name);
    if (!member) {
        return texts;
    }
    if (!member->is_array()) {
        refuse(name, "is no array");
    }
    for (const json::value& item : member->get_array()) {
        if (!item.is_string()) {
            refuse(name, "is no array of strings");
        }
        texts.emplace_back(item.get_string());
    }
    return texts;
}

const json::object& objectOf(const json::object& object, std::string_view name) {
    const json::value& member = memberOf(object, name);
    if (!member.is_object()) {
        refuse(name, "is no object");
    }
    return member.get_object();
}

void takeFormat(const json::object& request, const json::object& params, PublishOptions& options) {
    const std::string type = textOf(request, "type");
    if (type.starts_with("PublishComp")) {
        options.format = OutputFormat::kComposite;
        options.output = textOf(params, "output");
    } else if (type.starts_with("PublishFlatBook")) {
        options.format = OutputFormat::kFlatBook;
        options.output = textOf(params, "outputDir");
        options.isAtOneLocation = flagOf(params, "generateQSComponentsAtOneLoc");
    } else {
        refuse("type", "is neither PublishComp nor PublishFlatBook");
    }
}

PublishOptions optionsOf(const json::object& request) {
    const json::object& params = objectOf(request, "params");
    PublishOptions options;
    takeFormat(request, params, options);
    options.map = textOf(params, "ditamap");
    const std::string filter = textOf(params, "ditaVal");
    if (!filter.empty()) {
        options.filters.push_back(filter);
    }
    options.keySpaceDtd = textOf(params, "keyspaceDocDtd");
    options.compositeDtd = textOf(params, "compositeDocDtd");
    options.isForPrint = flagOf(params, "usePrint");
    return options;
}

Job jobOf(const json::object& line) {
    for (const auto& member : line) {
        if (std::find(kMembers.begin(), kMembers.end(), member.key()) == kMembers.end()) {
            refuse(member.key(), "is an unknown member");
        }
    }
    Job job;
    job.id = textOf(line, "id");
    job.tags = textsOf(line, "tags");
    job.options = optionsOf(objectOf(line, "request"));
    if (line.contains("filters")) {
        job.options.filters = textsOf(line, "filters");
    }
    if (line.contains("transtype")) {
        job.transtype = textOf(line, "transtype");
    }
    return job;
}

Job parsedJob(const std::string& line) {
    boost::system::error_code error;
    const json::value value = json::parse(line, error);
    if (error) {
        throw LineFault("this is no JSON");
    }
    if (!value.is_object()) {
        throw LineFault("this is no JSON object");
    }
    return jobOf(value.get_object());
}

}  // namespace

std::vector<Job> readJobLines(std::istream& in, const std::string& file, std::size_t firstLine) {
    std::vector<Job> jobs;
    std::string text;
    for (std::size_t line = firstLine; std::getline(in, text); ++line) {
        if (text.find_first_not_of(" \t\r") == std::string::npos) {
            continue;
        }
        try {
            jobs.push_back(parsedJob(text));
        } catch (const LineFault& fault) {
            throw JobFileError(file, line, fault.what());
        }
        jobs.back().file = file;
        jobs.back().line = line;
    }
    return jobs;
}

}  // namespace marrowpress
