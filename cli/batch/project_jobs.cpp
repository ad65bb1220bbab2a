#include "cli/batch/project_jobs.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

#include "cli/batch/job_lines.h"
#include "cli/batch/project_file.h"
#include "host/file_text.h"
#include "host/local_xml_input.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void refuse(const std::string& file, std::size_t line, const std::string& sentence) {
    throw JobFileError(file, line, sentence);
}

/// The path that a reference names, seen from the folder of `file`.
fs::path pathFrom(const std::string& file, const std::string& reference) {
    if (const std::optional<std::string> named = fileUriToPath(reference)) {
        return *named;
    }
    const fs::path folder = fs::absolute(file).parent_path();
    fs::path path = (folder / reference).lexically_normal();
    std::error_code ignored;
    if (!fs::exists(path, ignored) && reference.find('%') != std::string::npos) {
        // A reference is a URI: with percent escapes where a path has the characters themselves.
        const std::string uri = "file://" + folder.string() + "/" + reference;
        if (const std::optional<std::string> unescaped = fileUriToPath(uri)) {
            path = fs::path(*unescaped).lexically_normal();
        }
    }
    return path;
}

/// The project as one, from all files that include each other.
class ProjectLoader {
public:
    Project load(const std::string& text, const std::string& path, const std::string& shown) {
        add(text, path, shown);
        return std::move(whole_);
    }

private:
    void add(const std::string& text, const std::string& path, const std::string& shown) {
        chain_.push_back(fs::absolute(path).lexically_normal());
        whole_.files.push_back(chain_.back().string());
        const std::size_t begin = text.find_first_not_of(" \t\r\n");
        const bool isXml = begin != std::string::npos && text[begin] == '<';
        Project project = isXml ? parseXmlProject(text, shown) : parseJsonProject(text, shown);
        for (const ProjectText& include : project.includes) {
            addIncluded(include, path, shown);
        }
        const auto take = [](auto& all, auto& more) {
            all.insert(all.end(), std::make_move_iterator(more.begin()),
                       std::make_move_iterator(more.end()));
        };
        take(whole_.contexts, project.contexts);
        take(whole_.publications, project.publications);
        take(whole_.deliverables, project.deliverables);
        chain_.pop_back();
    }

    void addIncluded(const ProjectText& include, const std::string& path,
                     const std::string& shown) {
        const fs::path included = pathFrom(path, include.text);
        if (std::find(chain_.begin(), chain_.end(), included) != chain_.end()) {
            refuse(shown, include.line, "`" + include.text + "` is included in a circle");
        }
        if (!seen_.insert(included).second) {
            return;
        }
        std::string text;
        try {
            text = readFile(included.string());
        } catch (const std::system_error& fault) {
            refuse(shown, include.line, "include: " + std::string(fault.what()));
        }
        add(text, included.string(), included.string());
    }

    Project whole_;
    std::vector<fs::path> chain_;  ///< The files that are being read.
    std::set<fs::path> seen_;
};

/// The part that an idref names.
template <typename Part>
const Part& referenced(const std::vector<Part>& parts, const Part& from, const char* kind) {
    const auto found = std::find_if(parts.begin(), parts.end(), [&from](const Part& part) {
        return part.id == from.idref.text;
    });
    if (found == parts.end()) {
        refuse(from.file, from.idref.line,
               "there is no " + std::string(kind) + " `" + from.idref.text + "`");
    }
    return *found;
}

/// A path with the file from which it counts.
struct PlacedPath {
    std::string file;
    ProjectText path;
};

struct WholeContext {
    std::vector<PlacedPath> inputs;
    std::vector<PlacedPath> ditavals;
};

struct WholePublication {
    std::string transtype;
    std::map<std::string, std::pair<std::string, ProjectText>> params;  ///< With their files.
    std::vector<PlacedPath> ditavals;
};

class JobMaker {
public:
    JobMaker(const Project& project, const ProjectSetting& setting)
        : project_(project), setting_(setting) {}

    std::vector<Job> jobs() const {
        std::vector<Job> jobs;
        std::size_t number = 0;
        for (const ProjectDeliverable& deliverable : project_.deliverables) {
            addJobs(deliverable, ++number, jobs);
        }
        return jobs;
    }

private:
    void addJobs(const ProjectDeliverable& deliverable, std::size_t number,
                 std::vector<Job>& jobs) const {
        const auto missing = [&deliverable](const char* what) {
            refuse(deliverable.file, deliverable.line,
                   "the deliverable" + (deliverable.id.empty() ? "" : " `" + deliverable.id + "`") +
                       " has no " + what);
        };
        if (!deliverable.context) {
            missing("context");
        }
        if (!deliverable.publication) {
            missing("publication");
        }
        const WholeContext context = wholeContext(*deliverable.context, 0);
        const WholePublication publication = wholePublication(*deliverable.publication, 0);
        if (context.inputs.empty()) {
            missing("input");
        }
        if (publication.transtype.empty()) {
            missing("transtype");
        }
        const std::string id = deliverable.id.empty() ? fs::path(setting_.shown).stem().string() +
                                                            "-" + std::to_string(number)
                                                      : deliverable.id;
        for (const PlacedPath& input : context.inputs) {
            Job job = jobOf(deliverable, input, publication);
            job.id = context.inputs.size() == 1
                         ? id
                         : id + "-" + fs::path(job.options.map).stem().string();
            job.options.filters = filtersOf(context, publication);
            jobs.push_back(std::move(job));
        }
    }

    Job jobOf(const ProjectDeliverable& deliverable, const PlacedPath& input,
              const WholePublication& publication) const {
        Job job;
        job.transtype = publication.transtype;
        job.file = deliverable.file;
        job.line = deliverable.line;
        job.options.map = existing(input, "input");
        const auto format = setting_.formats.find(publication.transtype);
        const std::string name =
            format == setting_.formats.end() ? publication.transtype : format->second;
        if (name == "flatbook") {
            job.options.format = OutputFormat::kFlatBook;
        }
        std::string stem = fs::path(job.options.map).stem().string();
        takeParams(publication, job.options, stem);
        const fs::path folder =
            (fs::absolute(setting_.outputFolder) / deliverable.output).lexically_normal();
        job.options.output =
            (isFlatBook(job.options) ? folder : folder / (stem + ".dita")).string();
        return job;
    }

    static void takeParams(const WholePublication& publication, PublishOptions& options,
                           std::string& stem) {
        for (const auto& [name, placed] : publication.params) {
            const auto& [file, value] = placed;
            if (name == "print" || name == "one-location") {
                if (value.text != "yes" && value.text != "no") {
                    refuse(
                        file, value.line,
                        "the parameter `" + name + "` is yes or no, and not `" + value.text + "`");
                }
                (name == "print" ? options.isForPrint : options.isAtOneLocation) =
                    value.text == "yes";
            } else if (name == "composite-dtd") {
                options.compositeDtd = value.text;
            } else if (name == "keyspace-dtd") {
                options.keySpaceDtd = value.text;
            } else if (name == "outputFile.base") {
                stem = value.text;
            }
        }
    }

    /// Those of the context first.
    static std::vector<std::string> filtersOf(const WholeContext& context,
                                              const WholePublication& publication) {
        std::vector<std::string> filters;
        for (const std::vector<PlacedPath>* const ditavals :
             {&context.ditavals, &publication.ditavals}) {
            for (const PlacedPath& ditaval : *ditavals) {
                filters.push_back(existing(ditaval, "ditaval"));
            }
        }
        return filters;
    }

    static std::string existing(const PlacedPath& placed, const char* kind) {
        const fs::path path = pathFrom(placed.file, placed.path.text);
        std::error_code ignored;
        if (!fs::is_regular_file(path, ignored)) {
            refuse(placed.file, placed.path.line,
                   std::string(kind) + ": there is no file " + path.string());
        }
        return path.string();
    }

    static std::vector<PlacedPath> placed(const std::vector<ProjectText>& paths,
                                          const std::string& file) {
        std::vector<PlacedPath> all;
        all.reserve(paths.size());
        for (const ProjectText& path : paths) {
            all.push_back({file, path});
        }
        return all;
    }

    /// No chain of references is longer than there are parts, unless it is a circle.
    template <typename Part>
    void checkDepth(const Part& part, std::size_t depth, std::size_t count) const {
        if (depth > count) {
            refuse(part.file, part.idref.line,
                   "`" + part.idref.text + "` refers to itself in a circle");
        }
    }

    WholeContext wholeContext(const ProjectContext& context, std::size_t depth) const {
        checkDepth(context, depth, project_.contexts.size());
        WholeContext whole;
        if (!context.idref.text.empty()) {
            whole = wholeContext(referenced(project_.contexts, context, "context"), depth + 1);
        }
        if (!context.inputs.empty()) {
            whole.inputs = placed(context.inputs, context.file);
        }
        for (PlacedPath& ditaval : placed(context.ditavals, context.file)) {
            whole.ditavals.push_back(std::move(ditaval));
        }
        return whole;
    }

    WholePublication wholePublication(const ProjectPublication& publication,
                                      std::size_t depth) const {
        checkDepth(publication, depth, project_.publications.size());
        WholePublication whole;
        if (!publication.idref.text.empty()) {
            whole = wholePublication(referenced(project_.publications, publication, "publication"),
                                     depth + 1);
        }
        if (!publication.transtype.empty()) {
            whole.transtype = publication.transtype;
        }
        for (const ProjectParam& param : publication.params) {
            whole.params.insert_or_assign(param.name, std::pair(publication.file, param.value));
        }
        for (PlacedPath& ditaval : placed(publication.ditavals, publication.file)) {
            whole.ditavals.push_back(std::move(ditaval));
        }
        return whole;
    }

    const Project& project_;
    const ProjectSetting& setting_;
};

}  // namespace

std::vector<Job> readProject(const ProjectSetting& setting) {
    const Project project = ProjectLoader().load(setting.text, setting.path, setting.shown);
    std::vector<Job> jobs = JobMaker(project, setting).jobs();
    for (Job& job : jobs) {
        job.sources = project.files;
    }
    return jobs;
}

}  // namespace marrowpress
