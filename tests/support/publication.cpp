#include "tests/support/publication.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/json/serialize.hpp>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <utility>

#include "host/catalog_resolver.h"
#include "host/client_session.h"
#include "host/open_documents.h"
#include "host/trace.h"
#include "tests/support/attach_in_process.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/texts.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

const fs::path kCasesFolder = MARROWPRESS_PUBLISH_CASES;
const fs::path kOwnCatalog = MARROWPRESS_TEST_CATALOG;
const fs::path kModule = MARROWPRESS_CLIENT_MODULE;

std::string readFile(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void writeFile(const fs::path& path, const std::string& text) {
    fs::create_directories(path.parent_path());
    std::ofstream stream(path, std::ios::binary);
    stream << text;
    EXPECT_TRUE(stream.flush()) << path << " can't be written";
}

/// What is below `folder`, by relative path: files with their text, and other things by their kind.
/// A folder shows in what it holds.
std::map<std::string, std::string> readTree(const fs::path& folder) {
    std::map<std::string, std::string> files;
    if (!fs::exists(folder)) {
        return files;
    }
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        const std::string path = fs::relative(entry.path(), folder).string();
        if (entry.is_symlink()) {
            files[path] = "(link)";
        } else if (entry.is_regular_file()) {
            files[path] = readFile(entry.path());
        } else if (!entry.is_directory()) {
            files[path] = "(no file)";
        } else if (fs::is_empty(entry.path())) {
            files[path] = "(empty folder)";
        }
    }
    return files;
}

std::string answerText(const std::optional<TypedValues>& answer) {
    if (!answer) {
        return "no answer\n";
    }
    std::string text;
    for (const boost::json::value& value : toJson(*answer)) {
        text += boost::json::serialize(value) + "\n";
    }
    return text;
}

}  // namespace

PublicationCase::PublicationCase(const std::string& name) : folder_(kCasesFolder / name) {}

Publication PublicationCase::publish(StandInHostOptions::ObservationSink onObservation) const {
    return publishBy(
        [](StandInHostOptions options, const std::string& request) {
            return ClientSession(std::move(options), kModule).send(request);
        },
        std::move(onObservation));
}

Publication PublicationCase::publishInProcess() const {
    return publishBy(
        [](StandInHostOptions options, const std::string& request) {
            StandInHost host(std::move(options));
            EXPECT_TRUE(host.attach(&attachInProcess));
            EXPECT_TRUE(host.initialize());
            return host.send(request);
        },
        {});
}

Publication PublicationCase::publishBy(const Sender& send,
                                       StandInHostOptions::ObservationSink onObservation) const {
    const TemporaryFolder work;
    for (const fs::path& input : {kCasesFolder / "input", folder_ / "input"}) {
        if (fs::exists(input)) {
            fs::copy(input, work.path(), fs::copy_options::recursive);
        }
    }
    const std::map<std::string, std::string> input = readTree(work.path());
    const std::string workPath = work.path().string();

    Publication result;
    std::ostringstream operations;
    Trace trace(operations);
    StandInHostOptions options;
    options.trace = &trace;
    options.onObservation = std::move(onObservation);
    CatalogResolver catalogs =
        fs::exists(folder_ / "real-dtds")
            ? CatalogResolver(defaultCatalogs())
            : CatalogResolver(std::vector<std::string>{kOwnCatalog.string()});
    options.resolvePublicId = [&](std::string_view publicId) {
        return catalogs.resolvePublic(publicId);
    };
    options.onConsole = [&](std::optional<MessageId>, std::string_view text) {
        result.console += text;
    };
    options.onProgress = [&](std::string_view text) {
        result.progress += text;
        result.progress += '\n';
    };
    if (fs::exists(folder_ / "open.json")) {
        options.openDocuments =
            parseOpenDocuments(replacedAll(readFile(folder_ / "open.json"), "$CASE", workPath));
    }
    result.answer = answerText(send(
        std::move(options), replacedAll(readFile(folder_ / "request.json"), "$CASE", workPath)));

    result.trace = operations.str();
    for (const auto& [path, text] : readTree(work.path())) {
        const auto before = input.find(path);
        if (before == input.end() || before->second != text) {
            result.files[path] = text;
        }
    }
    for (const auto& [path, text] : input) {
        if (!work.exists(path)) {
            result.files[path] = "(gone)";
        }
    }
    IdNames ids;
    const auto neutralize = [&](std::string& text) {
        text = ids.named(replacedAll(text, workPath, "$CASE"));
    };
    for (std::string* text : {&result.answer, &result.console, &result.progress, &result.trace}) {
        *text = replacedAll(*text, "\r\n", "\n");
        neutralize(*text);
    }
    for (auto& [path, text] : result.files) {
        neutralize(text);
    }
    return result;
}

Publication PublicationCase::golden(const Publication& actual) const {
    const fs::path expected = folder_ / "expected";
    const char* const update = std::getenv("MARROWPRESS_UPDATE_GOLDEN");
    if (update && std::string(update) == "1") {
        fs::remove_all(expected);
        writeFile(expected / "answer.txt", actual.answer);
        writeFile(expected / "console.txt", actual.console);
        writeFile(expected / "progress.txt", actual.progress);
        for (const auto& [path, text] : actual.files) {
            writeFile(expected / "files" / path, text);
        }
    }
    EXPECT_TRUE(fs::exists(expected / "answer.txt")) << "nothing is expected of " << folder_;
    return {readFile(expected / "answer.txt"),
            readFile(expected / "console.txt"),
            readFile(expected / "progress.txt"),
            {},
            readTree(expected / "files")};
}

std::vector<std::string> publicationCases() {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(kCasesFolder)) {
        if (fs::exists(entry.path() / "request.json")) {
            names.push_back(entry.path().filename().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace marrowpress
