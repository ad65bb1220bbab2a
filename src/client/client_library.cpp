#include "client/client_library.h"

#include <unicode/putil.h>

#include <algorithm>
#include <array>

#include "client/host_operations.h"

namespace marrowpress {
namespace {

QsApiInterfacesC* connectedInterfaces = nullptr;
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

bool HostFinishMessageLoop = false;

QsApiInterfacesC::QsApiInterfacesC(IHostObject& provider)
    : main(HostRef<IHostMain>::query(provider)),
      textSettings(HostRef<IHostText>::query(provider)),
      modules(HostRef<IHostModules>::query(provider)),
      notifications(HostRef<IHostNotifications>::query(provider)),
      clients(HostRef<IHostClients>::query(provider)),
      properties(HostRef<IHostProperties>::query(provider)),
      progress(HostRef<IHostProgress>::query(provider)),
      console(HostRef<IHostConsole>::query(provider)) {}

QsApiInterfacesC::QsApiInterfacesC(QsApiInterfacesC&& other) noexcept
    : keptAlive(std::move(other.keptAlive)),
      main(std::move(other.main)),
      textSettings(std::move(other.textSettings)),
      modules(std::move(other.modules)),
      notifications(std::move(other.notifications)),
      clients(std::move(other.clients)),
      properties(std::move(other.properties)),
      progress(std::move(other.progress)),
      console(std::move(other.console)),
      freesHostTexts(other.freesHostTexts) {
    if (connectedInterfaces == &other) {
        connect();
    }
}

QsApiInterfacesC::~QsApiInterfacesC() {
    if (connectedInterfaces == this) {
        connectedInterfaces = nullptr;
    }
}

void QsApiInterfacesC::askWhoFreesTexts() {
    std::int32_t answer = 0;
    if (textSettings && textSettings->query(IHostText::kClientFreesTexts, &answer) >= 0) {
        freesHostTexts = answer != 0;
    }
}

void QsApiInterfacesC::connect() noexcept {
    connectedInterfaces = this;
}

QsApiInterfacesC* QsApiInterfacesC::connected() noexcept {
    return connectedInterfaces;
}

bool HostSetClientEncoding(std::string_view name) {
    const auto known = std::find(kEncodings.begin(), kEncodings.end(), name);
    if (known == kEncodings.end()) {
        return false;
    }
    clientEncoding = *known;
    return true;
}

std::string_view hostClientEncoding() noexcept {
    return clientEncoding;
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
