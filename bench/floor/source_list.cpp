#include "bench/floor/source_list.h"

#include <sstream>
#include <stdexcept>

namespace marrowpress::bench {
namespace {

std::vector<std::string> fieldsOf(const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream rest(line);
    for (std::string field; std::getline(rest, field, '\t');) {
        fields.push_back(field);
    }
    return fields;
}

void addLine(SourceList& list, const std::string& line) {
    const std::vector<std::string> fields = fieldsOf(line);
    const std::string kind = fields.empty() ? std::string() : fields.front();
    if (kind == "public" && fields.size() == 3) {
        list.filesByPublicId.insert_or_assign(fields[1], fields[2]);
    } else if ((kind == "document" || kind == "topic") && fields.size() == 2) {
        list.sources.push_back({fields[1], kind == "topic"});
    } else {
        throw std::runtime_error("no line of a list: " + line);
    }
}

}  // namespace

SourceList readSourceList(std::istream& lines) {
    SourceList list;
    for (std::string line; std::getline(lines, line);) {
        addLine(list, line);
    }
    return list;
}

}  // namespace marrowpress::bench
