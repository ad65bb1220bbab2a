#include "host/open_documents.h"

#include <boost/json/parse.hpp>
#include <limits>
#include <set>
#include <stdexcept>

#include "host/file_text.h"

namespace marrowpress {
namespace {

std::string quoted(std::string_view name) {
    std::string text = "\"";
    text += name;
    text += '"';
    return text;
}

/// One element of the array, with errors that name its place.
class EntryReader {
public:
    EntryReader(const boost::json::value& entry, std::size_t index)
        : object_(entry.if_object()), index_(index) {
        if (!object_) {
            fail("is not an object");
        }
        for (const auto& member : *object_) {
            const auto name = std::string_view(member.key());
            if (name != "id" && name != "path" && name != "flag") {
                fail("has an unknown member " + quoted(name));
            }
        }
    }

    std::uint32_t id() const {
        const std::int64_t id = integer("id", 1, std::numeric_limits<std::uint32_t>::max());
        return static_cast<std::uint32_t>(id);
    }

    std::int32_t flag() const {
        using Limits = std::numeric_limits<std::int32_t>;
        return static_cast<std::int32_t>(integer("flag", Limits::min(), Limits::max()));
    }

    std::string path() const {
        const boost::json::string* const text = member("path").if_string();
        if (!text) {
            fail("\"path\" is not a string");
        }
        if (text->empty()) {
            fail("\"path\" is empty");
        }
        if (text->find('\0') != boost::json::string::npos) {
            fail("\"path\" holds a NUL");
        }
        return std::string(*text);
    }

    [[noreturn]] void fail(const std::string& reason) const {
        throw std::runtime_error("entry " + std::to_string(index_) + ": " + reason);
    }

private:
    const boost::json::value& member(std::string_view name) const {
        const boost::json::value* const found = object_->if_contains(name);
        if (!found) {
            fail(quoted(name) + " is missing");
        }
        return *found;
    }

    std::int64_t integer(std::string_view name, std::int64_t lowest, std::int64_t highest) const {
        const std::int64_t* const number = member(name).if_int64();
        if (!number || *number < lowest || *number > highest) {
            fail(quoted(name) + " is not an integer from " + std::to_string(lowest) + " to " +
                 std::to_string(highest));
        }
        return *number;
    }

    const boost::json::object* object_;
    std::size_t index_;
};

}  // namespace

std::vector<OpenDocument> parseOpenDocuments(std::string_view json) {
    boost::json::error_code error;
    const boost::json::value root = boost::json::parse(json, error);
    if (error) {
        throw std::runtime_error("is not JSON: " + error.message());
    }
    const boost::json::array* const entries = root.if_array();
    if (!entries) {
        throw std::runtime_error("is not a JSON array");
    }

    std::vector<OpenDocument> documents;
    std::set<std::uint32_t> ids;
    for (std::size_t index = 0; index < entries->size(); ++index) {
        const EntryReader entry((*entries)[index], index);
        documents.push_back({entry.id(), entry.path(), entry.flag()});
        // The session is walked from id to id: with one id twice the walk would never end.
        if (!ids.insert(documents.back().id).second) {
            entry.fail("\"id\" " + std::to_string(documents.back().id) + " is there twice");
        }
    }
    return documents;
}

std::vector<OpenDocument> readOpenDocuments(const std::string& path) {
    const std::string json = readFile(path, kMostInputBytes);
    try {
        return parseOpenDocuments(json);
    } catch (const std::runtime_error& fault) {
        throw std::runtime_error(path + ": " + fault.what());
    }
}

}  // namespace marrowpress
