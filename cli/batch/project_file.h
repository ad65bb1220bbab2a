#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace marrowpress {

/// A value in a project file, and its line.
struct ProjectText {
    std::string text;
    std::size_t line = 0;
};

/// What is to be published. Paths stand as they are written: seen from the file that has them.
struct ProjectContext {
    std::string id;
    ProjectText idref;  ///< Another context that this one adds to; empty for none.
    std::vector<ProjectText> inputs;
    std::vector<ProjectText> ditavals;
    std::string file;  ///< That it stands in.
    std::size_t line = 0;
};

struct ProjectParam {
    std::string name;
    ProjectText value;  ///< Of `value`, `href` or `path`.
};

/// As what something is to be published.
struct ProjectPublication {
    std::string id;
    ProjectText idref;  ///< As that of a context.
    std::string transtype;
    std::vector<ProjectParam> params;
    std::vector<ProjectText> ditavals;
    std::string file;
    std::size_t line = 0;
};

struct ProjectDeliverable {
    std::string id;
    std::optional<ProjectContext> context;
    std::optional<ProjectPublication> publication;
    std::string output;  ///< Seen from the folder of all outputs.
    std::string file;
    std::size_t line = 0;
};

/// A DITA-OT project file, in XML or JSON, or several that include each other as one.
struct Project {
    std::vector<ProjectText> includes;
    std::vector<ProjectContext> contexts;
    std::vector<ProjectPublication> publications;
    std::vector<ProjectDeliverable> deliverables;
    std::vector<std::string> files;  ///< That it was read from, absolute; none while it is parsed.
};

/// @param file  Names it in faults, and in what is read.
/// @throws JobFileError
Project parseXmlProject(const std::string& text, const std::string& file);
Project parseJsonProject(const std::string& text, const std::string& file);

}  // namespace marrowpress
