#include "findings/map_keys.h"

#include <filesystem>
#include <set>
#include <sstream>
#include <unordered_set>

#include "findings/regular_file.h"
#include "host/libxml_handles.h"
#include "host/local_xml_input.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// A walk over maps, each once, in the order in which they are met.
class KeyWalk {
public:
    explicit KeyWalk(Clock::time_point end) : end_(end) {}

    void readAll(const std::string& path);

    const std::set<std::string>& names() const noexcept { return names_; }

private:
    bool isOver() const { return Clock::now() >= end_; }
    void want(const fs::path& path);
    void read(const std::string& path);
    void takeElement(xmlTextReader& reader, const fs::path& folder);

    Clock::time_point end_;
    std::vector<std::string> maps_;
    std::unordered_set<std::string> known_;
    std::set<std::string> names_;
};

void KeyWalk::readAll(const std::string& path) {
    want(path);
    for (std::size_t index = 0; index < maps_.size() && !isOver(); ++index) {
        read(std::string(maps_[index]));
    }
}

void KeyWalk::want(const fs::path& path) {
    std::string normal = path.lexically_normal().string();
    if (known_.insert(normal).second) {
        maps_.push_back(std::move(normal));
    }
}

void KeyWalk::read(const std::string& path) {
    const RegularFile file(path);
    if (!file.isOpen()) {
        return;
    }
    const LibxmlReader reader(
        xmlReaderForFd(file.descriptor(), nullptr, nullptr,
                       XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    const fs::path folder = fs::path(path).parent_path();
    while (reader && !isOver() && xmlTextReaderRead(reader.get()) == 1) {
        if (xmlTextReaderNodeType(reader.get()) == XML_READER_TYPE_ELEMENT) {
            takeElement(*reader, folder);
        }
    }
}

void KeyWalk::takeElement(xmlTextReader& reader, const fs::path& folder) {
    std::istringstream names(attributeOf(reader, "keys"));
    for (std::string name; names >> name;) {
        names_.insert(name);
    }
    const std::string href = attributeOf(reader, "href");
    const std::string target = href.substr(0, href.find('#'));
    if (target.ends_with(".ditamap") && target.find(':') == std::string::npos) {
        want(folder / target);
    }
}

}  // namespace

std::vector<std::string> keyNamesOf(const std::string& path, std::chrono::milliseconds patience) {
    restrictLibxmlToLocalFiles();
    KeyWalk walk(Clock::now() + patience);
    walk.readAll(path);
    return {walk.names().begin(), walk.names().end()};
}

}  // namespace marrowpress
