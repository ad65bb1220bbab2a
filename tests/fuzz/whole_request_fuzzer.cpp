#include <libxml/parser.h>

#include <algorithm>
#include <array>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <filesystem>
#include <memory>

#include "client/client_attachment.h"
#include "client/notifications.h"
#include "client/request_dispatch.h"
#include "marrowpress/output_names.h"
#include "tests/fuzz/fuzzing.h"

namespace {

namespace fs = std::filesystem;

using marrowpress::MessageId;
using marrowpress::require;
using marrowpress::StandInHost;
using marrowpress::StandInHostOptions;
using marrowpress::TemporaryFolder;
using marrowpress::TypedValues;

/// The files of an input, in their order; behind them, what the request says.
constexpr std::array<std::string_view, 7> kFiles{
    "root.ditamap", "a.dita",        "b.dita",           "profile.ditaval",
    "sub/c.dita",   "inner.ditamap", "sub/deep.ditamap",
};

struct Publication {
    TypedValues answer;
    std::string console;
    bool hasWriteFailure = false;
};

std::int32_t attach(void* module, marrowpress::IHostObject* provider,
                    marrowpress::IHostObject* keepAlive,
                    const marrowpress::ClientRegistration* registration) {
    return marrowpress::attachClient(module, provider, keepAlive, registration,
                                     {&marrowpress::onClientInitialize, &marrowpress::onNotify});
}

/// Whether a "/" in `text` may be the first of a path.
bool beginsAtRoot(std::string_view text) {
    for (std::size_t slash = text.find('/'); slash != std::string_view::npos;
         slash = text.find('/', slash + 1)) {
        const bool isFirst = slash == 0 || std::string_view("\"'>: \t\r\n").find(text[slash - 1]) !=
                                               std::string_view::npos;
        if (isFirst && !text.substr(slash).starts_with("/>")) {
            return true;
        }
    }
    return false;
}

/// One input: the folder with its files, and what its requests say.
class Job {
public:
    Job(const TemporaryFolder& folder, std::string_view input);

    void checkComposite() const;
    void checkFlatBook() const;

private:
    Publication publish(std::string_view type, const boost::json::object& params,
                        bool isObserved) const;
    boost::json::object params() const;
    bool says(std::string_view word) const { return options_.find(word) != std::string::npos; }
    bool staysInFolder() const;
    void checkObserved(const boost::json::object& request, const Publication& first) const;
    std::string compositeText() const;
    void requireUntouched() const;
    bool requireDocument(const fs::path& path) const;
    void requireNothingLeft() const;

    const TemporaryFolder& folder_;
    std::vector<std::string> texts_;
    std::string options_;
};

Job::Job(const TemporaryFolder& folder, std::string_view input)
    : folder_(folder), texts_(marrowpress::cutIntoFiles(input, kFiles.size() + 1)) {
    if (texts_.size() > kFiles.size()) {
        options_ = texts_.back();
        texts_.pop_back();
    }
    for (const fs::directory_entry& old : fs::directory_iterator(folder_.path())) {
        fs::remove_all(old.path());
    }
    for (std::size_t index = 0; index < texts_.size(); ++index) {
        folder_.write(kFiles[index], texts_[index]);
    }
    fs::create_directory(folder_.path() / "out");
}

/// Whether no reference leads above the folder, by its text: a component stands beside its source.
bool Job::staysInFolder() const {
    return std::all_of(texts_.begin(), texts_.end(), [](const std::string& text) {
        return !beginsAtRoot(text) && text.find("..") == std::string::npos &&
               text.find_first_of(std::string_view("\\%&\0", 4)) == std::string::npos;
    });
}

boost::json::object Job::params() const {
    return {{"ditamap", folder_.file("root.ditamap")},
            {"ditaVal", says("profile") ? folder_.file("profile.ditaval") : ""},
            {"keyspaceDocDtd", "map.dtd"},
            {"compositeDocDtd", "ditabase.dtd"},
            {"usePrint", says("print")}};
}

Publication Job::publish(std::string_view type, const boost::json::object& params,
                         bool isObserved) const {
    Publication result;
    StandInHostOptions options;
    options.resolvePublicId = &marrowpress::resolveSmallDtd;
    options.onConsole = [&](std::optional<MessageId> id, std::string_view text) {
        result.console += text;
        result.hasWriteFailure |= id == MessageId::kCannotWrite;
    };
    if (isObserved) {
        options.onObservation = [](const marrowpress::Observation&) {};
    }
    StandInHost host(std::move(options));
    require(host.attach(&attach) && host.initialize(), "the client attaches itself");
    const std::optional<TypedValues> answer =
        host.send(boost::json::serialize(boost::json::object{{"type", type}, {"params", params}}));
    require(answer && marrowpress::statusOf(*answer), "an answer comes");
    result.answer = *answer;
    return result;
}

void Job::requireUntouched() const {
    for (std::size_t index = 0; index < texts_.size(); ++index) {
        require(folder_.exists(kFiles[index]) && folder_.read(kFiles[index]) == texts_[index],
                "a source is as it was", kFiles[index]);
    }
}

/// Read by another parser, without its DTD. True when there is something in its root.
bool Job::requireDocument(const fs::path& path) const {
    require(fs::is_regular_file(path), "what the answer names is there", path.string());
    const std::string text = folder_.read(fs::relative(path, folder_.path()).string());
    constexpr int kOptions =
        XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_HUGE | XML_PARSE_SAX1;
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, kOptions),
        &xmlFreeDoc);
    require(document != nullptr, "an output is well-formed", text);
    return xmlFirstElementChild(xmlDocGetRootElement(document.get())) != nullptr;
}

void Job::requireNothingLeft() const {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder_.path())) {
        const std::string name = entry.path().filename().string();
        require(name != marrowpress::kKeySpaceDocName && !name.ends_with(marrowpress::kAsideSuffix),
                "nothing of a run is left over", entry.path().string());
    }
}

void Job::checkComposite() const {
    boost::json::object request = params();
    request["output"] = folder_.file("out/book.dita");
    const Publication first = publish("PublishComp", request, false);
    requireUntouched();
    requireNothingLeft();
    const std::int32_t status = *marrowpress::statusOf(first.answer);
    require(status == 0 || status == -42 || status == -43, "a status says what came out",
            std::to_string(status));
    if (status == 0 && !first.hasWriteFailure) {
        const bool isFilled = requireDocument(folder_.file("out/book.dita"));
        require(isFilled || says("profile"), "a composite has at least its first topic");
    }
    if (says("observed")) {
        checkObserved(request, first);
    }
}

/// The same request once more, with an observer.
void Job::checkObserved(const boost::json::object& request, const Publication& first) const {
    const std::string text = compositeText();
    const Publication observed = publish("PublishComp", request, true);
    requireUntouched();
    require(observed.answer == first.answer && observed.console == first.console,
            "an observer changes nothing of a run", first.console + observed.console);
    require(compositeText() == text, "an observer changes nothing of an output", text);
}

/// Empty when there is none.
std::string Job::compositeText() const {
    return folder_.exists("out/book.dita") ? folder_.read("out/book.dita") : std::string();
}

void Job::checkFlatBook() const {
    boost::json::object request = params();
    request["outputDir"] = folder_.file("out");
    request["generateQSComponentsAtOneLoc"] = !says("beside") || !staysInFolder();
    const Publication book = publish("PublishFlatBook", request, says("observed"));
    requireUntouched();
    requireNothingLeft();
    if (*marrowpress::statusOf(book.answer) == 0 && !book.hasWriteFailure) {
        require(book.answer.size() == 5, "the answer names the components");
        for (const std::string& path : std::get<std::vector<std::string>>(book.answer[4].value)) {
            requireDocument(path);
        }
    }
}

}  // namespace

/// The input is seven files, and some of the words "print", "profile", "beside" and "observed".
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TemporaryFolder folder;
    marrowpress::keepEngineStarted();
    const Job job(folder, marrowpress::inputText(data, size));
    job.checkComposite();
    job.checkFlatBook();
    return 0;
}
