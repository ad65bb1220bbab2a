#include <algorithm>
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/parser.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>
#include <string_view>
#include <utility>

#include "cli/batch/job_lines.h"
#include "cli/batch/project_file.h"

namespace marrowpress {
namespace {

namespace json = boost::json;

std::size_t lineAt(std::string_view text, std::size_t position) {
    const std::string_view before = text.substr(0, position);
    return 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
}

json::object parsedProject(const std::string& text, const std::string& file) {
    json::parser parser;
    boost::system::error_code error;
    const std::size_t end = parser.write_some(text, error);
    const bool isAllRead = text.find_first_not_of(" \t\r\n", end) == std::string::npos;
    if (error || !isAllRead) {
        throw JobFileError(file, lineAt(text, end), "this is not well-formed JSON");
    }
    json::value value = parser.release();
    if (!value.is_object()) {
        throw JobFileError(file, 1, "this is no JSON object");
    }
    return std::move(value.get_object());
}

/// Reads what a text was parsed to. The parser tells no lines: that of a text is where it stands
/// first.
class JsonProject {
public:
    JsonProject(const std::string& text, const std::string& file) : text_(text), file_(file) {}

    Project read() const {
        const json::object root = parsedProject(text_, file_);
        Project project;
        forEach(root, "includes", [&](const json::value& include) {
            project.includes.push_back(pathOf("includes", include));
        });
        forEach(root, "contexts", [&](const json::value& context) {
            project.contexts.push_back(contextOf(objectOf("contexts", context)));
        });
        forEach(root, "publications", [&](const json::value& publication) {
            project.publications.push_back(publicationOf(objectOf("publications", publication)));
        });
        forEach(root, "deliverables", [&](const json::value& deliverable) {
            project.deliverables.push_back(
                deliverableOf(objectOf("deliverables", deliverable), project.deliverables.size()));
        });
        return project;
    }

private:
    [[noreturn]] void refuse(std::string_view name, const char* what) const {
        throw JobFileError(file_, lineOf(name), '"' + std::string(name) + "\" " + what);
    }

    std::size_t lineOf(std::string_view value) const {
        const std::size_t position = text_.find(json::serialize(json::value(value)));
        return position == std::string::npos ? 1 : lineAt(text_, position);
    }

    /// The line of the deliverable of that number, as far as its name tells.
    ProjectText textIn(const json::object& object, std::string_view name) const {
        const json::value* const member = object.if_contains(name);
        if (!member) {
            return {};
        }
        if (!member->is_string()) {
            refuse(name, "is no string");
        }
        return {std::string(member->get_string()), lineOf(member->get_string())};
    }

    const json::object& objectOf(std::string_view name, const json::value& value) const {
        if (!value.is_object()) {
            refuse(name, "is no object");
        }
        return value.get_object();
    }

    /// Calls `take` with each item of a list, which may be missing.
    template <typename Take>
    void forEach(const json::object& object, std::string_view name, Take take) const {
        const json::value* const member = object.if_contains(name);
        if (!member) {
            return;
        }
        if (!member->is_array()) {
            refuse(name, "is no array");
        }
        for (const json::value& item : member->get_array()) {
            take(item);
        }
    }

    /// A path as such, or in an object as "href".
    ProjectText pathOf(std::string_view name, const json::value& value) const {
        if (value.is_string()) {
            return {std::string(value.get_string()), lineOf(value.get_string())};
        }
        return textIn(objectOf(name, value), "href");
    }

    std::vector<ProjectText> ditavalsOf(const json::object& object) const {
        std::vector<ProjectText> ditavals;
        if (const json::value* const profiles = object.if_contains("profiles")) {
            forEach(objectOf("profiles", *profiles), "ditavals", [&](const json::value& ditaval) {
                ditavals.push_back(pathOf("ditavals", ditaval));
            });
        }
        return ditavals;
    }

    ProjectContext contextOf(const json::object& object) const {
        ProjectContext context;
        context.id = textIn(object, "id").text;
        context.idref = textIn(object, "idref");
        if (const json::value* const input = object.if_contains("input")) {
            context.inputs.push_back(pathOf("input", *input));
        }
        forEach(object, "inputs", [&](const json::value& input) {
            context.inputs.push_back(pathOf("inputs", input));
        });
        context.ditavals = ditavalsOf(object);
        context.file = file_;
        context.line = lineOf(context.id);
        return context;
    }

    ProjectPublication publicationOf(const json::object& object) const {
        ProjectPublication publication;
        publication.id = textIn(object, "id").text;
        publication.idref = textIn(object, "idref");
        publication.transtype = textIn(object, "transtype").text;
        forEach(object, "params", [&](const json::value& item) {
            const json::object& param = objectOf("params", item);
            ProjectParam read{textIn(param, "name").text, {}};
            for (const char* const name : {"path", "href", "value"}) {
                if (param.contains(name)) {
                    read.value = textIn(param, name);
                }
            }
            publication.params.push_back(std::move(read));
        });
        publication.ditavals = ditavalsOf(object);
        publication.file = file_;
        publication.line = lineOf(publication.id);
        return publication;
    }

    ProjectDeliverable deliverableOf(const json::object& object, std::size_t number) const {
        ProjectDeliverable deliverable;
        const ProjectText id = textIn(object, "id");
        deliverable.id = id.text;
        if (const json::value* const context = object.if_contains("context")) {
            deliverable.context = contextOf(objectOf("context", *context));
        }
        if (const json::value* const publication = object.if_contains("publication")) {
            deliverable.publication = publicationOf(objectOf("publication", *publication));
        }
        if (const json::value* const output = object.if_contains("output")) {
            deliverable.output = pathOf("output", *output).text;
        }
        deliverable.file = file_;
        deliverable.line = id.text.empty() ? lineOfDeliverable(number) : id.line;
        return deliverable;
    }

    /// Each deliverable has one publication, as a rule; of its own file it is the same number.
    std::size_t lineOfDeliverable(std::size_t number) const {
        std::size_t position = text_.find("\"deliverables\"");
        for (std::size_t found = 0; position != std::string::npos && found <= number; ++found) {
            position = text_.find("\"publication\"", position + 1);
        }
        return position == std::string::npos ? lineOf("deliverables") : lineAt(text_, position);
    }

    const std::string& text_;
    const std::string& file_;
};

}  // namespace

Project parseJsonProject(const std::string& text, const std::string& file) {
    return JsonProject(text, file).read();
}

}  // namespace marrowpress
