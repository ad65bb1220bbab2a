#include "application/text_layer.h"

#include <unicode/putil.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "application/host_operations.h"

namespace marrowpress {
namespace {

std::string_view clientEncoding;

constexpr std::string_view kDefaultEncoding = "QuillRoman";

// All of the system's own texts are UTF-8; the default is only what the library starts with.
constexpr std::array<std::string_view, 2> kEncodings{kDefaultEncoding, "UTF-8"};

void showDataFolderToIcu() {
    const std::int32_t earlierError = std::exchange(HostLastError, 0);
    const HostText parent = HostGetStringProp(0, kSessionObject, HostProperty::kIcuDataParent);
    if (HostLastError != 0) {
        return;
    }
    HostLastError = earlierError;
    if (parent && *parent) {
        u_setDataDirectory((std::string(parent.get()) + "/icu_data").c_str());
    }
}

}  // namespace

bool HostSetClientEncoding(std::string_view name) {
    const auto known = std::find(kEncodings.begin(), kEncodings.end(), name);
    if (known == kEncodings.end()) {
        return false;
    }
    clientEncoding = *known;
    return true;
}

void initializeTextLayer() {
    if (clientEncoding.empty()) {
        HostSetClientEncoding(kDefaultEncoding);
    }
    if (*u_getDataDirectory() == '\0') {
        showDataFolderToIcu();
    }
}

}  // namespace marrowpress
