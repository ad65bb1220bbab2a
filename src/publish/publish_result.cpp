#include "publish/publish_result.h"

#include <cstring>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "dom/document_path.h"
#include "support/text.h"
#include "support/xerces_ptr.h"

namespace marrowpress {
namespace {

/// A zeroed array from the allocator of the host boundary; null for no elements.
template <class Element>
Element* allocateArray(std::size_t count) {
    static_assert(std::is_trivial_v<Element>);
    if (count == 0) {
        return nullptr;
    }
    void* const block = std::calloc(count, sizeof(Element));
    if (!block) {
        throw std::bad_alloc();
    }
    return static_cast<Element*>(block);
}

char* copyText(const std::string& text) {
    char* const copy = allocateArray<char>(text.size() + 1);
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

void setTexts(HostTypedValue& value, const std::vector<std::string>& texts) {
    value.type = HostValueType::kStringList;
    HostStringList& list = value.value.strings;
    list.strings = allocateArray<char*>(texts.size());
    for (const std::string& text : texts) {
        list.strings[list.count] = copyText(text);
        ++list.count;
    }
}

void setIntegers(HostTypedValue& value, const std::vector<std::int32_t>& integers) {
    value.type = HostValueType::kIntegerList;
    HostIntegerList& list = value.value.integers;
    list.integers = allocateArray<std::int32_t>(integers.size());
    for (const std::int32_t integer : integers) {
        list.integers[list.count] = integer;
        ++list.count;
    }
}

std::vector<std::string> pathsOf(const OpenDocumentRecords& records, OpenDocumentState state) {
    std::vector<std::string> paths;
    for (const auto& [path, record] : records) {
        if (record.state == state) {
            paths.push_back(toUtf8(path));
        }
    }
    return paths;
}

std::vector<std::int32_t> idsOf(const OpenDocumentRecords& records, OpenDocumentState state) {
    std::vector<std::int32_t> ids;
    for (const auto& [path, record] : records) {
        if (record.state == state) {
            ids.push_back(static_cast<std::int32_t>(record.documentId));
        }
    }
    return ids;
}

}  // namespace

void PublishResult::appendExtraValues(HostTypedValueList& /*list*/) const {}

void FlatBookPublishResult::appendExtraValues(HostTypedValueList& list) const {
    std::vector<std::string> paths;
    for (const xercesc::DOMDocument* const document : documents) {
        paths.push_back(toUtf8(documentPath(*document)));
    }
    void* const grown = std::realloc(list.values, (list.count + 1) * sizeof(HostTypedValue));
    if (!grown) {
        throw std::bad_alloc();
    }
    list.values = static_cast<HostTypedValue*>(grown);
    list.values[list.count] = {};
    list.values[list.count].type = HostValueType::kInteger;
    ++list.count;
    setTexts(list.values[list.count - 1], paths);
}

HostTypedValues publishResultToTypedValues(const PublishResult& result) {
    constexpr std::uint32_t kCommonValues = 4;
    HostTypedValues values;
    HostTypedValueList& list = values.list();
    list.values = allocateArray<HostTypedValue>(kCommonValues);
    for (std::uint32_t index = 0; index < kCommonValues; ++index) {
        list.values[index].type = HostValueType::kInteger;
    }
    list.count = kCommonValues;
    list.values[0].value.integer = result.status;
    const OpenDocumentRecords& records = result.usedHostDocuments;
    setTexts(list.values[1], pathsOf(records, OpenDocumentState::kFlagged));
    setIntegers(list.values[2], idsOf(records, OpenDocumentState::kFlagged));
    setIntegers(list.values[3], idsOf(records, OpenDocumentState::kOpen));
    result.appendExtraValues(list);
    return values;
}

}  // namespace marrowpress
