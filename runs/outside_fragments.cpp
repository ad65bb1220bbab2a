#include "runs/outside_fragments.h"

#include <libxml/xmlreader.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

#include "findings/catalogue.h"
#include "findings/regular_file.h"
#include "findings/shown_path.h"
#include "findings/wording.h"
#include "host/local_xml_input.h"

namespace marrowpress {
namespace {

constexpr const char* kLinkId = "MP208";
constexpr const char* kFragmentId = "MP204";

struct FreeReader {
    void operator()(xmlTextReader* reader) const noexcept { xmlFreeTextReader(reader); }
};

std::string attributeOf(xmlTextReader* reader, const char* name) {
    xmlChar* const value =
        xmlTextReaderGetAttribute(reader, reinterpret_cast<const xmlChar*>(name));
    std::string text = value ? reinterpret_cast<const char*>(value) : "";
    xmlFree(value);
    return text;
}

/// What a topic may hold, by the names that DITA has for it; a topic of another name holds a title
/// and a body as well.
bool mayBeTopic(std::string_view name, int depth) {
    return depth == 0 || name == "topic" || name == "concept" || name == "task" ||
           name == "reference" || name == "glossentry" || name == "glossgroup" ||
           name == "troubleshooting";
}

/// The topic that holds the element `id`, of ids as "topic/element"; empty when none does.
std::string topicOf(const std::set<std::string>& ids, const std::string& id) {
    const std::string end = "/" + id;
    const auto found = std::find_if(ids.begin(), ids.end(), [&end](const std::string& known) {
        return known.ends_with(end) && !known.starts_with("./");
    });
    return found == ids.end() ? std::string() : found->substr(0, found->size() - end.size());
}

}  // namespace

Finding OutsideFragments::lookedAt(Finding finding) {
    const std::size_t sign = finding.target.rfind('#');
    if (finding.id != kLinkId || sign == std::string::npos) {
        return finding;
    }
    const std::string path = finding.target.substr(0, sign);
    const std::string fragment = finding.target.substr(sign + 1);
    const Ids* const ids = idsIn(path);
    if (!ids || ids->contains(fragment)) {
        return finding;
    }
    const std::size_t slash = fragment.find('/');
    const std::string shown = shownPath(path, currentFolder_);
    finding.id = kFragmentId;
    const auto severity = severities_.find(kFragmentId);
    finding.severity =
        severity == severities_.end() ? *defaultSeverity(kFragmentId) : severity->second;
    finding.text = slash == std::string::npos
                       ? topicNotFoundText(shown, fragment)
                       : elementInTopicNotFoundText(shown, fragment.substr(0, slash),
                                                    fragment.substr(slash + 1));
    const std::string topic = slash == std::string::npos ? topicOf(*ids, fragment) : std::string();
    finding.hint = topic.empty() ? fragmentHint() : elementIdHint(topic, fragment);
    return finding;
}

/// Null for a file that cannot be read to its end.
const OutsideFragments::Ids* OutsideFragments::idsIn(const std::string& path) {
    const auto known = documents_.find(path);
    if (known != documents_.end()) {
        return known->second.empty() ? nullptr : &known->second;
    }
    Ids& ids = documents_[path];
    const std::optional<std::string> text = RegularFile(path).read();
    if (!text) {
        return nullptr;
    }
    restrictLibxmlToLocalFiles();
    const std::unique_ptr<xmlTextReader, FreeReader> reader(
        xmlReaderForMemory(text->data(), static_cast<int>(text->size()), nullptr, nullptr,
                           XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    std::vector<std::string> topics;  // by depth; empty for what is none
    int read = reader ? xmlTextReaderRead(reader.get()) : -1;
    for (; read == 1; read = xmlTextReaderRead(reader.get())) {
        if (xmlTextReaderNodeType(reader.get()) != XML_READER_TYPE_ELEMENT) {
            continue;
        }
        const int depth = xmlTextReaderDepth(reader.get());
        const std::string name =
            reinterpret_cast<const char*>(xmlTextReaderConstName(reader.get()));
        const std::string id = attributeOf(reader.get(), "id");
        topics.resize(static_cast<std::size_t>(depth), std::string());
        std::string topic;
        for (const std::string& outer : topics) {
            topic = outer.empty() ? topic : outer;
        }
        if (mayBeTopic(name, depth)) {
            topics.push_back(id);
            ids.insert(id);
        } else {
            topics.emplace_back();
            if (!id.empty()) {
                ids.insert(std::string(topic).append("/").append(id));
                ids.insert(std::string("./").append(id));
            }
        }
    }
    if (read != 0) {
        ids.clear();
    }
    return ids.empty() ? nullptr : &ids;
}

}  // namespace marrowpress
