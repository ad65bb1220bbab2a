#include "tests/support/whole_request.h"

#include <algorithm>
#include <boost/json/serialize.hpp>
#include <filesystem>
#include <utility>

#include "tests/support/attach_in_process.h"
#include "tests/support/texts.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

std::string element(const std::string& tag, std::string_view classValue,
                    std::string_view attributes, std::string_view content) {
    std::string text = "<" + tag + " class=\"" + std::string(classValue) + "\"";
    text.append(attributes.empty() ? "" : " ").append(attributes);
    return text.append(">").append(content).append("</" + tag + ">");
}

}  // namespace

std::string map(std::string_view content, std::string_view attributes) {
    return element("map", "- map/map ", attributes, content);
}

std::string topicref(std::string_view attributes, std::string_view content) {
    return element("topicref", "- map/topicref ", attributes, content);
}

std::string topichead(std::string_view attributes, std::string_view content) {
    return element("topichead", "+ map/topicref mapgroup-d/topichead ", attributes, content);
}

std::string mapref(std::string_view attributes, std::string_view content) {
    return element("mapref", "+ map/topicref mapgroup-d/mapref ", attributes, content);
}

std::string topic(std::string_view id, std::string_view body) {
    const std::string name(id);
    return "<topic id=\"" + name + "\"><title>" + name + "</title>" + std::string(body) +
           "</topic>";
}

WholeRequestTest::WholeRequestTest(StandInHostOptions options)
    : host_(completed(std::move(options))) {
    EXPECT_TRUE(host_.attach(&attachInProcess));
    EXPECT_TRUE(host_.initialize());
}

StandInHostOptions WholeRequestTest::completed(StandInHostOptions options) {
    if (!options.resolvePublicId) {
        options.resolvePublicId = [](std::string_view) { return std::nullopt; };
    }
    options.onConsole = [this](std::optional<MessageId>, std::string_view text) {
        console += neutral(text);
        if (watch) {
            watch(std::string(text));
        }
    };
    options.onProgress = [this](std::string_view text) {
        progress.append(text).append("\n");
        if (watch) {
            watch(std::string(text));
        }
    };
    options.trace = &trace_;
    return options;
}

boost::json::object WholeRequestTest::flatBook() const {
    return {{"ditamap", folder.file("root.ditamap")},
            {"outputDir", folder.file("out")},
            {"generateQSComponentsAtOneLoc", true},
            {"ditaVal", ""},
            {"keyspaceDocDtd", "map.dtd"},
            {"compositeDocDtd", "ditabase.dtd"},
            {"usePrint", false}};
}

boost::json::object WholeRequestTest::composite() const {
    boost::json::object params = flatBook();
    params.erase("outputDir");
    params.erase("generateQSComponentsAtOneLoc");
    params["output"] = folder.file("out/book.dita");
    return params;
}

TypedValues WholeRequestTest::publishFlatBook(const boost::json::object& params) {
    return send("PublishFlatBook", params);
}

TypedValues WholeRequestTest::publishComposite(const boost::json::object& params) {
    return send("PublishComp", params);
}

TypedValues WholeRequestTest::send(std::string_view type, const boost::json::object& params) {
    const boost::json::object request{{"type", type}, {"params", params}};
    return sendText(boost::json::serialize(request));
}

TypedValues WholeRequestTest::sendText(const std::string& text) {
    console.clear();
    progress.clear();
    operations.str(std::string());
    const std::optional<TypedValues> answer = host_.send(text);
    EXPECT_TRUE(answer) << "no answer came";
    return answer.value_or(TypedValues());
}

std::string WholeRequestTest::neutral(std::string_view text) const {
    return IdNames().named(replacedAll(std::string(text), folder.path().string(), "$F"));
}

std::string WholeRequestTest::written(std::string_view name) const {
    const std::string text = folder.read(name);
    const std::size_t doctype = text.find("<!DOCTYPE dita PUBLIC");
    EXPECT_NE(doctype, std::string::npos) << text;
    return neutral(text.substr(std::min(text.find('>', doctype), text.size() - 1) + 1));
}

std::string WholeRequestTest::tree() const {
    std::vector<std::string> paths;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder.path())) {
        paths.push_back(fs::relative(entry.path(), folder.path()).string() + " ");
    }
    std::sort(paths.begin(), paths.end());
    std::string text;
    for (const std::string& path : paths) {
        text += path;
    }
    return text;
}

std::string WholeRequestTest::components(const TypedValues& answer) const {
    if (answer.size() != 5) {
        return std::to_string(answer.size()) + " values";
    }
    EXPECT_EQ(answer[4].type, 6U);
    std::string text;
    for (const std::string& path : std::get<std::vector<std::string>>(answer[4].value)) {
        text += neutral(path) + " ";
    }
    return text;
}

std::int32_t WholeRequestTest::status(const TypedValues& answer) {
    return statusOf(answer).value_or(1);
}

}  // namespace marrowpress
