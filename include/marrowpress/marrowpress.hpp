#pragma once

/// Publishing from within a program, in C++20: marrowpress.h with owners, containers and
/// exceptions. All of it is in this header; link libmarrowpress.
///
///     mp::Options options;
///     options.flags = MP_DEPENDENCIES;
///     const mp::Result result = mp::publish({.map = "guide.ditamap", .output = "guide.dita"});
///     for (const mp_finding& finding : result.findings()) { ... }

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "marrowpress/marrowpress.h"

namespace mp {

/// A call that has no answer. Its text says why.
class Error : public std::runtime_error {
public:
    Error(int code, int signal, const std::string& text)
        : std::runtime_error(text), code_(code), signal_(signal) {}

    /// MP_BUSY and its like.
    int code() const noexcept { return code_; }
    /// The one that ended a child; 0 for none.
    int signal() const noexcept { return signal_; }

private:
    int code_;
    int signal_;
};

/// What a run has told. Owns all that it gives out.
class Result {
public:
    explicit Result(mp_result* result) noexcept : result_(result) {}

    /// Whether the publication is whole: the status is 0, and everything was written.
    bool isPublished() const noexcept { return status() == 0 && error().empty(); }
    /// 0, -42, -43 or MP_NO_STATUS.
    std::int32_t status() const noexcept { return mp_result_status(get()); }
    /// Why it is not whole; empty when it is.
    std::string_view error() const noexcept { return mp_result_error(get()); }

    /// Views of what this owns.
    std::vector<mp_finding> findings() const {
        return listOf(mp_result_finding, mp_result_finding_count(get()));
    }
    /// With MP_DEPENDENCIES; views, too.
    std::vector<mp_dependency> dependencies() const {
        return listOf(mp_result_dependency, mp_result_dependency_count(get()));
    }
    /// The module's answer; views, too.
    std::vector<mp_value> values() const {
        return listOf(mp_result_value, mp_result_value_count(get()));
    }
    /// With MP_KEYS: a JSON object each.
    std::vector<std::string_view> keys() const {
        return textsOf(mp_result_key, mp_result_key_count(get()));
    }
    /// The absolute paths of what was written.
    std::vector<std::string_view> outputs() const {
        return textsOf(mp_result_output, mp_result_output_count(get()));
    }

    const mp_result* get() const noexcept { return result_.get(); }

private:
    struct Free {
        void operator()(mp_result* result) const noexcept { mp_result_free(result); }
    };

    /// One by one: a newer library may have more in each than this header knows.
    template <class Item>
    std::vector<Item> listOf(const Item* (*itemAt)(const mp_result*, std::size_t),
                             std::size_t count) const {
        std::vector<Item> items;
        for (std::size_t index = 0; index < count; ++index) {
            items.push_back(*itemAt(get(), index));
        }
        return items;
    }
    std::vector<std::string_view> textsOf(const char* (*textAt)(const mp_result*, std::size_t),
                                          std::size_t count) const {
        std::vector<std::string_view> texts;
        for (std::size_t index = 0; index < count; ++index) {
            texts.emplace_back(textAt(get(), index));
        }
        return texts;
    }

    std::unique_ptr<mp_result, Free> result_;
};

/// How a request is served. Every member may be left as it is.
///
/// What a callback throws comes out of the call. It ends the run, too, unless that has a `cancel`.
struct Options {
    /// Bits of MP_WAIT and its like.
    std::uint32_t flags = 0;
    /// MP_LANGUAGE_ENGLISH and its like.
    std::int32_t language = MP_LANGUAGE_AUTO;
    /// Paths or file: URIs. None: XML_CATALOG_FILES, or the usual ones.
    std::vector<std::string> catalogs = {};
    std::function<void(const mp_finding&)> onFinding = {};
    std::function<void(std::string_view)> onProgress = {};
    /// The path that a public identifier stands for; empty where catalogs are to be asked.
    std::function<std::optional<std::string>(std::string_view)> resolveEntity = {};
    /// The documents that are open in the caller; their paths must outlive the call.
    std::vector<mp_document> openDocuments = {};
    /// Any other value than 0 ends the run; null for none. Must outlive the call.
    const std::int32_t* cancel = nullptr;
    /// `spawn` alone: in bytes and milliseconds; 0 for no limit.
    std::uint64_t memoryLimit = 0;
    std::uint64_t timeLimit = 0;
};

namespace detail {

/// The callbacks of a call, and what they have thrown.
class Callbacks {
public:
    explicit Callbacks(const Options& options) : options_(options) {}

    mp_options inC() {
        mp_options made = MP_OPTIONS_INIT;
        for (const std::string& catalog : options_.catalogs) {
            catalogs_.push_back(catalog.c_str());
        }
        made.flags = options_.flags;
        made.language = options_.language;
        made.catalogs = catalogs_.data();
        made.catalog_count = catalogs_.size();
        made.cancel = options_.cancel ? options_.cancel : &hasThrown_;
        made.memory_limit = options_.memoryLimit;
        made.time_limit = options_.timeLimit;
        made.finding_user = made.progress_user = made.entity_user = made.document_user = this;
        if (options_.onFinding) {
            made.on_finding = tellFinding;
        }
        made.on_progress = options_.onProgress ? tellProgress : nullptr;
        made.resolve_entity = options_.resolveEntity ? resolve : nullptr;
        made.open_document = options_.openDocuments.empty() ? nullptr : openDocument;
        return made;
    }

    void rethrow() const {
        if (thrown_) {
            std::rethrow_exception(thrown_);
        }
    }

private:
    /// Calls `work` with the object, unless one has thrown before.
    template <class Work>
    static void guarded(void* user, const Work& work) noexcept {
        auto& self = *static_cast<Callbacks*>(user);
        if (self.thrown_) {
            return;
        }
        try {
            work(self.options_);
        } catch (...) {
            self.thrown_ = std::current_exception();
            __atomic_store_n(&self.hasThrown_, 1, __ATOMIC_RELAXED);
        }
    }

    static void tellFinding(void* user, const mp_finding* finding) {
        guarded(user, [&](const Options& options) { options.onFinding(*finding); });
    }
    static void tellProgress(void* user, const char* line) {
        guarded(user, [&](const Options& options) { options.onProgress(line); });
    }
    static int resolve(void* user, const char* publicId, char* path, std::size_t size) {
        int isKnown = 0;
        guarded(user, [&](const Options& options) {
            const std::optional<std::string> found = options.resolveEntity(publicId);
            if (found && found->size() < size) {
                path[found->copy(path, size - 1)] = '\0';
                isKnown = 1;
            }
        });
        return isKnown;
    }
    static int openDocument(void* user, std::size_t index, mp_document* document) {
        const Options& options = static_cast<Callbacks*>(user)->options_;
        if (index >= options.openDocuments.size()) {
            return 0;
        }
        *document = options.openDocuments[index];
        return 1;
    }

    const Options& options_;
    std::vector<const char*> catalogs_;
    std::exception_ptr thrown_;
    std::int32_t hasThrown_ = 0;
};

inline Result call(int (*function)(const char*, const mp_options*, mp_result**),
                   const std::string& request, const Options& options) {
    Callbacks callbacks(options);
    const mp_options given = callbacks.inC();
    mp_result* made = nullptr;
    const int code = function(request.c_str(), &given, &made);
    Result result(made);
    callbacks.rethrow();
    if (code != MP_OK) {
        throw Error(code, mp_result_signal(made), std::string(result.error()));
    }
    return result;
}

}  // namespace detail

/// Serves a request, which request.schema.json describes, in this process.
///
/// @throws Error, and what a callback has thrown.
inline Result run(const std::string& request, const Options& options = {}) {
    return detail::call(mp_run, request, options);
}

/// As `run`, in a child process.
inline Result spawn(const std::string& request, const Options& options = {}) {
    return detail::call(mp_spawn, request, options);
}

/// What is to be published. Texts are UTF-8, paths taken against the current directory.
struct Publication {
    std::string map;
    std::string output;       ///< A file, or the folder of a flat book.
    std::string filter = {};  ///< A DITAVAL file; empty for none.
    bool isFlatBook = false;
    bool isAtOneLocation = true;  ///< A flat book's components all stand in the folder.
    bool isForPrint = false;
    std::string keySpaceDtd = "map.dtd";
    std::string compositeDtd = "ditabase.dtd";
};

namespace detail {

inline std::string jsonText(std::string_view text) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string json = "\"";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') {
            json.append(1, '\\').append(1, character);
        } else if (byte < 0x20) {
            json.append("\\u00").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 0xF]);
        } else {
            json += character;
        }
    }
    return json + '"';
}

}  // namespace detail

/// The request for a publication.
inline std::string requestFor(const Publication& publication) {
    using detail::jsonText;
    const auto truth = [](bool isSo) { return isSo ? "true" : "false"; };
    std::string params = "\"ditamap\":" + jsonText(publication.map);
    if (publication.isFlatBook) {
        params += ",\"outputDir\":" + jsonText(publication.output) +
                  ",\"generateQSComponentsAtOneLoc\":" + truth(publication.isAtOneLocation);
    } else {
        params += ",\"output\":" + jsonText(publication.output);
    }
    params += ",\"ditaVal\":" + jsonText(publication.filter) +
              ",\"keyspaceDocDtd\":" + jsonText(publication.keySpaceDtd) +
              ",\"compositeDocDtd\":" + jsonText(publication.compositeDtd) +
              ",\"usePrint\":" + truth(publication.isForPrint);
    return std::string("{\"type\":\"") +
           (publication.isFlatBook ? "PublishFlatBook" : "PublishComp") + "\",\"params\":{" +
           params + "}}";
}

/// As `run`.
inline Result publish(const Publication& publication, const Options& options = {}) {
    return run(requestFor(publication), options);
}

}  // namespace mp
