#include "tests/library/library_fixture.h"

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <filesystem>
#include <utility>

namespace marrowpress {

namespace json = boost::json;

namespace {

std::string requestOf(const char* type, json::object params) {
    params["ditaVal"] = "";
    params["keyspaceDocDtd"] = "map.dtd";
    params["compositeDocDtd"] = "ditabase.dtd";
    params["usePrint"] = false;
    return json::serialize(json::object{{"type", type}, {"params", std::move(params)}});
}

std::string nameOf(const char* path) {
    return std::filesystem::path(path).filename().string();
}

}  // namespace

LibraryTest::LibraryTest() {
    options.language = MP_LANGUAGE_ENGLISH;
    folder.write("t.dita", topic("T"));
    folder.write(
        "m.ditamap",
        "<map class=\"- map/map \">\n"
        "<keydef class=\"+ map/topicref mapgroup-d/keydef \" keys=\"k\" href=\"t.dita\"/>\n"
        "<topicref class=\"- map/topicref \" href=\"t.dita\"/>\n"
        "<topicref class=\"- map/topicref \" href=\"none.dita\"/>\n</map>");
}

std::string LibraryTest::topic(const std::string& title) {
    return "<topic class=\"- topic/topic \" id=\"t\"><title class=\"- topic/title \">" + title +
           "</title></topic>";
}

std::string LibraryTest::composite(const std::string& output) const {
    return requestOf("PublishComp",
                     {{"ditamap", folder.file("m.ditamap")}, {"output", folder.file(output)}});
}

std::string LibraryTest::flatBook() const {
    return requestOf("PublishFlatBook", {{"ditamap", folder.file("m.ditamap")},
                                         {"outputDir", folder.path().string()},
                                         {"generateQSComponentsAtOneLoc", true}});
}

ResultPtr LibraryTest::call(LibraryFunction function, const std::string& request) const {
    mp_result* given = nullptr;
    const int code = function(request.c_str(), &options, &given);
    ResultPtr result(given);
    EXPECT_EQ(mp_result_code(result.get()), code);
    return result;
}

void LibraryTest::onProgress(std::function<void(const char*)> work) {
    progress_ = std::move(work);
    options.progress_user = &progress_;
    options.on_progress = [](void* user, const char* line) {
        (*static_cast<std::function<void(const char*)>*>(user))(line);
    };
}

std::vector<std::string> LibraryTest::findings(const ResultPtr& result) const {
    std::vector<std::string> lines;
    for (std::size_t index = 0; index < mp_result_finding_count(result.get()); ++index) {
        const mp_finding& finding = *mp_result_finding(result.get(), index);
        lines.push_back(std::string(finding.id) + " " + nameOf(finding.file) + ":" +
                        std::to_string(finding.line));
    }
    return lines;
}

std::vector<std::string> LibraryTest::dependencies(const ResultPtr& result) const {
    std::vector<std::string> lines;
    for (std::size_t index = 0; index < mp_result_dependency_count(result.get()); ++index) {
        const mp_dependency& file = *mp_result_dependency(result.get(), index);
        const std::string kind = file.kind;
        if (kind != "DTD" && kind != "catalog") {
            lines.push_back(nameOf(file.file) + " " + kind + " " + file.state);
        }
    }
    return lines;
}

}  // namespace marrowpress
