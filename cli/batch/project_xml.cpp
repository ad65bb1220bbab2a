#include <libxml/parser.h>
#include <libxml/tree.h>

#include <functional>
#include <string_view>
#include <utility>

#include "cli/batch/job_lines.h"
#include "cli/batch/project_file.h"
#include "host/libxml_handles.h"
#include "host/local_xml_input.h"

namespace marrowpress {
namespace {

constexpr std::string_view kNamespace = "https://www.dita-ot.org/project";

struct FreeParser {
    void operator()(xmlParserCtxt* parser) const noexcept { xmlFreeParserCtxt(parser); }
};

std::string attribute(const xmlNode& node, const char* name) {
    const LibxmlText value(xmlGetNoNsProp(&node, asXml(name)));
    return std::string(asText(value.get()));
}

ProjectText textOfAttribute(const xmlNode& node, const char* name) {
    return {attribute(node, name), static_cast<std::size_t>(xmlGetLineNo(&node))};
}

/// Calls `take` with each child element of that name.
void forEachChild(const xmlNode& node, std::string_view name,
                  const std::function<void(const xmlNode&)>& take) {
    for (const xmlNode* child = node.children; child; child = child->next) {
        if (child->type == XML_ELEMENT_NODE && asText(child->name) == name) {
            take(*child);
        }
    }
}

std::vector<ProjectText> ditavalsOf(const xmlNode& node) {
    std::vector<ProjectText> ditavals;
    forEachChild(node, "profile", [&](const xmlNode& profile) {
        forEachChild(profile, "ditaval", [&](const xmlNode& ditaval) {
            ditavals.push_back(textOfAttribute(ditaval, "href"));
        });
    });
    return ditavals;
}

/// What contexts, publications and deliverables have in common.
template <typename Part>
Part partOf(const xmlNode& node, const std::string& file) {
    Part part;
    part.id = attribute(node, "id");
    part.file = file;
    part.line = static_cast<std::size_t>(xmlGetLineNo(&node));
    return part;
}

ProjectContext contextOf(const xmlNode& node, const std::string& file) {
    auto context = partOf<ProjectContext>(node, file);
    context.idref = textOfAttribute(node, "idref");
    forEachChild(node, "input", [&](const xmlNode& input) {
        context.inputs.push_back(textOfAttribute(input, "href"));
    });
    context.ditavals = ditavalsOf(node);
    return context;
}

ProjectPublication publicationOf(const xmlNode& node, const std::string& file) {
    auto publication = partOf<ProjectPublication>(node, file);
    publication.idref = textOfAttribute(node, "idref");
    publication.transtype = attribute(node, "transtype");
    forEachChild(node, "param", [&](const xmlNode& param) {
        ProjectParam read{attribute(param, "name"), {}};
        for (const char* const name : {"path", "href", "value"}) {
            if (xmlHasProp(&param, asXml(name))) {
                read.value = textOfAttribute(param, name);
            }
        }
        publication.params.push_back(std::move(read));
    });
    publication.ditavals = ditavalsOf(node);
    return publication;
}

ProjectDeliverable deliverableOf(const xmlNode& node, const std::string& file) {
    auto deliverable = partOf<ProjectDeliverable>(node, file);
    forEachChild(node, "context",
                 [&](const xmlNode& context) { deliverable.context = contextOf(context, file); });
    forEachChild(node, "publication", [&](const xmlNode& publication) {
        deliverable.publication = publicationOf(publication, file);
    });
    forEachChild(node, "output",
                 [&](const xmlNode& output) { deliverable.output = attribute(output, "href"); });
    return deliverable;
}

std::string sentenceOf(const xmlError* error) {
    std::string text(error && error->message ? error->message : "it cannot be parsed");
    while (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    return "this is not well-formed XML: " + text;
}

LibxmlDocument parsed(const std::string& text, const std::string& file) {
    restrictLibxmlToLocalFiles();
    const std::unique_ptr<xmlParserCtxt, FreeParser> parser(xmlNewParserCtxt());
    // No DTD is loaded and no entity put in the place of its reference.
    LibxmlDocument document(parser
                                ? xmlCtxtReadMemory(parser.get(), text.data(),
                                                    static_cast<int>(text.size()), nullptr, nullptr,
                                                    XML_PARSE_NONET | XML_PARSE_NOERROR |
                                                        XML_PARSE_NOWARNING | XML_PARSE_BIG_LINES)
                                : nullptr);
    if (!document) {
        const xmlError* const error = parser ? xmlCtxtGetLastError(parser.get()) : nullptr;
        throw JobFileError(file,
                           error && error->line > 0 ? static_cast<std::size_t>(error->line) : 1,
                           sentenceOf(error));
    }
    return document;
}

}  // namespace

Project parseXmlProject(const std::string& text, const std::string& file) {
    const LibxmlDocument document = parsed(text, file);
    const xmlNode* const root = xmlDocGetRootElement(document.get());
    if (!root || asText(root->name) != "project" || !root->ns ||
        asText(root->ns->href) != kNamespace) {
        throw JobFileError(
            file, 1,
            "this is no project file: its root is to be `project` in the namespace " +
                std::string(kNamespace));
    }
    Project project;
    forEachChild(*root, "include", [&](const xmlNode& include) {
        project.includes.push_back(textOfAttribute(include, "href"));
    });
    forEachChild(*root, "context", [&](const xmlNode& context) {
        project.contexts.push_back(contextOf(context, file));
    });
    forEachChild(*root, "publication", [&](const xmlNode& publication) {
        project.publications.push_back(publicationOf(publication, file));
    });
    forEachChild(*root, "deliverable", [&](const xmlNode& deliverable) {
        project.deliverables.push_back(deliverableOf(deliverable, file));
    });
    return project;
}

}  // namespace marrowpress
