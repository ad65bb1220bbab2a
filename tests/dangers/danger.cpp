#include "tests/dangers/danger.h"

#include <chrono>
#include <filesystem>
#include <utility>

#include "tests/support/file_conditions.h"

namespace marrowpress {

namespace fs = std::filesystem;

std::string reference(std::string_view tag, std::string_view href) {
    std::string text = "<";
    text.append(tag).append(" href=\"").append(escaped(href)).append("\"");
    text.append(tag == "mapref" ? " format='ditamap'/>" : "/>");
    return text;
}

std::string withClasses(std::string text) {
    const struct {
        const char* tag;
        const char* classValue;
    } classes[] = {{"map", "- map/map "},
                   {"topicref", "- map/topicref "},
                   {"topicgroup", "+ map/topicref mapgroup-d/topicgroup "},
                   {"topichead", "+ map/topicref mapgroup-d/topichead "},
                   {"mapref", "+ map/topicref mapgroup-d/mapref "},
                   {"keydef", "+ map/topicref mapgroup-d/keydef "}};
    for (const auto& [tag, classValue] : classes) {
        const std::string start = "<" + std::string(tag);
        const std::string attribute = " class='" + std::string(classValue) + "'";
        for (const char* const behind : {" ", ">", "/"}) {
            text = replacedAll(std::move(text), start + behind, start + attribute + behind);
        }
    }
    return text;
}

std::string escaped(std::string_view text) {
    std::string result = replacedAll(std::string(text), "&", "&amp;");
    result = replacedAll(std::move(result), "<", "&lt;");
    return replacedAll(std::move(result), "\"", "&quot;");
}

namespace {

fs::path madeOutFolder(const TemporaryFolder& folder) {
    fs::path made = folder.path() / "out";
    fs::create_directories(made);
    return made;
}

}  // namespace

DangerTest::DangerTest() : WholeRequestTest(resolving()), currentFolder_(madeOutFolder(folder)) {
    folder.write("beside.dita", topic("beside", "<body><p>Beside it.</p></body>"));
    writeMap();
}

StandInHostOptions DangerTest::resolving() {
    StandInHostOptions options;
    options.resolvePublicId = [this](std::string_view id) -> std::optional<std::string> {
        const auto found = pathsByPublicId.find(id);
        return found == pathsByPublicId.end() ? std::nullopt : std::optional(found->second);
    };
    return options;
}

void DangerTest::writeMap(std::string_view content) const {
    folder.write("root.ditamap",
                 map(withClasses(std::string(content) + reference("topicref", "beside.dita"))));
}

std::int32_t DangerTest::publish(const boost::json::object& params) {
    const Watchdog watchdog(300);
    const auto start = std::chrono::steady_clock::now();
    const std::int32_t outcome = status(publishComposite(params));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(mostSeconds));
    return outcome;
}

bool DangerTest::isBesideWhole() const {
    return folder.exists("out/book.dita") &&
           folder.read("out/book.dita")
               .ends_with("<title>beside</title><body><p>Beside it.</p></body></topic></dita>");
}

bool DangerTest::isTidy() const {
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.path() / "out")) {
        const std::string name = entry.path().filename().string();
        if (name.ends_with("_tmp") || name.starts_with("KeyspaceDoc")) {
            return false;
        }
    }
    return true;
}

}  // namespace marrowpress
