#include "tests/support/observed_run.h"

#include <filesystem>

#include "marrowpress/output_names.h"
#include "tests/support/texts.h"

namespace marrowpress {
namespace {

constexpr std::string_view kTopicPublicId = "-//OASIS//DTD DITA Topic//EN";

/// What every element has.
constexpr std::string_view kCommonAttributes =
    "<!ENTITY % common \"conref CDATA #IMPLIED conrefend CDATA #IMPLIED conkeyref CDATA #IMPLIED"
    " conaction CDATA #IMPLIED audience CDATA #IMPLIED product CDATA #IMPLIED"
    " keyref CDATA #IMPLIED\">"
    "<!ENTITY % link \"href CDATA #IMPLIED format CDATA #IMPLIED scope CDATA #IMPLIED"
    " type CDATA #IMPLIED\">";

std::string elementDeclaration(std::string_view name, std::string_view classValue,
                               std::string_view attributes) {
    const std::string tag(name);
    return "<!ELEMENT " + tag + " ANY><!ATTLIST " + tag + " %common; class CDATA '" +
           std::string(classValue) + "' " + std::string(attributes) + ">";
}

std::string mapDtd() {
    constexpr std::string_view kReference =
        "%link; id CDATA #IMPLIED keys CDATA #IMPLIED keyscope CDATA #IMPLIED"
        " navtitle CDATA #IMPLIED print CDATA #IMPLIED copy-to CDATA #IMPLIED"
        " chunk CDATA #IMPLIED";
    const std::string topicref =
        std::string(kReference) + " processing-role (normal|resource-only) #IMPLIED";
    std::string text(kCommonAttributes);
    text += elementDeclaration("map", "- map/map ",
                               "id ID #IMPLIED title CDATA #IMPLIED keyscope CDATA #IMPLIED"
                               " chunk CDATA #IMPLIED");
    text += elementDeclaration("title", "- topic/title ", "id CDATA #IMPLIED");
    text += elementDeclaration("topicref", "- map/topicref ", topicref);
    text += elementDeclaration("topichead", "+ map/topicref mapgroup-d/topichead ", topicref);
    text += elementDeclaration("mapref", "+ map/topicref mapgroup-d/mapref ",
                               std::string(kReference) + " processing-role CDATA #IMPLIED");
    text += elementDeclaration("keydef", "+ map/topicref mapgroup-d/keydef ",
                               std::string(kReference) + " processing-role CDATA 'resource-only'");
    text += elementDeclaration("ditavalref", "+ map/topicref ditavalref-d/ditavalref ", topicref);
    text += elementDeclaration("reltable", "- map/reltable ", "id CDATA #IMPLIED");
    text += elementDeclaration("relrow", "- map/relrow ", "id CDATA #IMPLIED");
    text += elementDeclaration("relcell", "- map/relcell ", "id CDATA #IMPLIED");
    text += elementDeclaration("topicmeta", "- map/topicmeta ", "id CDATA #IMPLIED");
    text += elementDeclaration("linktext", "- map/linktext ", "id CDATA #IMPLIED");
    text += elementDeclaration("keywords", "- topic/keywords ", "id CDATA #IMPLIED");
    text += elementDeclaration("keyword", "- topic/keyword ", "id CDATA #IMPLIED");
    // What a reference to a part of a topic may pull into a map.
    text += elementDeclaration("topic", "- topic/topic ", "id ID #IMPLIED");
    text += elementDeclaration("body", "- topic/body ", "id CDATA #IMPLIED");
    text += elementDeclaration("p", "- topic/p ", "id CDATA #IMPLIED");
    text += elementDeclaration("xref", "- topic/xref ", "id CDATA #IMPLIED %link;");
    return text;
}

std::string topicDtd() {
    std::string text(kCommonAttributes);
    text += "<!ELEMENT dita ANY>";
    text += elementDeclaration("topic", "- topic/topic ", "id ID #REQUIRED");
    for (const char* const name : {"title", "body", "p", "note", "ul", "li", "ph", "keyword",
                                   "term", "related-links", "linktext", "codeblock"}) {
        text += elementDeclaration(name, "- topic/" + std::string(name) + " ", "id CDATA #IMPLIED");
    }
    for (const char* const name : {"xref", "link", "image"}) {
        text += elementDeclaration(name, "- topic/" + std::string(name) + " ",
                                   "id CDATA #IMPLIED %link;");
    }
    text += elementDeclaration("coderef", "+ topic/xref pr-d/coderef ", "%link;");
    text += elementDeclaration("object", "- topic/object ",
                               "id CDATA #IMPLIED data CDATA #IMPLIED datakeyref CDATA #IMPLIED");
    text +=
        elementDeclaration("param", "- topic/param ", "name CDATA #IMPLIED value CDATA #IMPLIED");
    return text;
}

}  // namespace

ObservedRunTest::ObservedRunTest() : WholeRequestTest(observedOptions()) {
    std::filesystem::create_directories(folder.path() / "out");
    folder.write("dtd/map.dtd", mapDtd());
    folder.write("dtd/topic.dtd", topicDtd());
}

StandInHostOptions ObservedRunTest::observedOptions() {
    StandInHostOptions options;
    options.onObservation = [this](const Observation& observation) {
        observations.emplace_back(observation);
    };
    options.onReference = options.onObservation;
    options.resolvePublicId = [this](std::string_view publicId) -> std::optional<std::string> {
        if (publicId == kKeySpacePublicId) {
            return folder.file("dtd/map.dtd");
        }
        const bool isTopic = publicId == kTopicPublicId || publicId == kCompositePublicId;
        return isTopic ? std::optional(folder.file("dtd/topic.dtd")) : std::nullopt;
    };
    return options;
}

void ObservedRunTest::writeMap(std::string_view name, std::string_view content) const {
    folder.write(name, "<!DOCTYPE map PUBLIC \"" + std::string(kKeySpacePublicId) +
                           "\" \"map.dtd\">\n<map>\n" + std::string(content) + "\n</map>");
}

void ObservedRunTest::writeTopic(std::string_view name, std::string_view content) const {
    const std::string id = std::filesystem::path(name).stem().string();
    folder.write(name, "<!DOCTYPE topic PUBLIC \"" + std::string(kTopicPublicId) +
                           "\" \"topic.dtd\">\n<topic id=\"" + id + "\"><title>" + id +
                           "</title><body>\n" + std::string(content) + "\n</body></topic>");
}

void ObservedRunTest::excludeX() {
    profile =
        folder.write("x.ditaval", "<val><prop att='audience' val='x' action='exclude'/></val>");
}

std::string ObservedRunTest::compositeFaults(std::string_view mapContent) {
    return publish(mapContent, false);
}

std::string ObservedRunTest::flatBookFaults(std::string_view mapContent) {
    return publish(mapContent, true);
}

std::string ObservedRunTest::publish(std::string_view mapContent, bool isFlatBook) {
    writeMap("root.ditamap", mapContent);
    observations.clear();
    boost::json::object params = isFlatBook ? flatBook() : composite();
    params["ditaVal"] = profile;
    params["usePrint"] = usePrint;
    lastStatus = status(isFlatBook ? publishFlatBook(params) : publishComposite(params));
    return faults();
}

std::string ObservedRunTest::faults() const {
    return observed(ObservationKind::kFault);
}

std::string ObservedRunTest::faults(FaultCode code) const {
    return lines([&](const ObservedCopy& observation) {
        return observation.kind == ObservationKind::kFault &&
               observation.code == static_cast<std::uint32_t>(code);
    });
}

std::string ObservedRunTest::observed(ObservationKind kind) const {
    return lines([&](const ObservedCopy& observation) { return observation.kind == kind; });
}

/// `observation` with places in files by their path relative to the folder.
ObservedCopy ObservedRunTest::inFolder(ObservedCopy observation) const {
    const std::string prefix = folder.path().string() + "/";
    const auto shorten = [&](ObservedCopy::Place& place) {
        if (place.file.starts_with(prefix)) {
            place.file.erase(0, prefix.size());
        }
    };
    for (ObservedCopy::Step& step : observation.steps) {
        shorten(step.place);
    }
    for (ObservedCopy::Place& place : observation.related) {
        shorten(place);
    }
    return observation;
}

std::string ObservedRunTest::lines(const std::function<bool(const ObservedCopy&)>& isWanted) const {
    std::string text;
    for (const ObservedCopy& observation : observations) {
        if (isWanted(observation)) {
            const std::string line = printed(inFolder(observation));
            text += (text.empty() ? "" : "\n") + replacedAll(neutral(line), "$F", "");
        }
    }
    return text;
}

}  // namespace marrowpress
