#include "client/version_resource.h"

namespace marrowpress {
namespace {

struct VersionText {
    std::string_view name;
    ClientRegistration::Field field;
    const char* text;  ///< null: the module doesn't state it
};

constexpr VersionText kVersionTexts[] = {
    {"ClientName", ClientRegistration::kClientName, "Marrowpress"},
    {"ClientType", ClientRegistration::kClientType, nullptr},
    {"FileDescription", ClientRegistration::kFileDescription, "Map-level DITA publishing"},
    {"ClientProducts", ClientRegistration::kClientProducts, "Quillstone"},
    {"ClientFacet", ClientRegistration::kClientFacet, nullptr},
    {"ClientFormatId", ClientRegistration::kClientFormatId, nullptr},
    {"ClientVendor", ClientRegistration::kClientVendor, nullptr},
    {"ClientSuffix", ClientRegistration::kClientSuffix, nullptr},
    {"ClientInFormat", ClientRegistration::kClientInFormat, nullptr},
    {"ClientOutFormat", ClientRegistration::kClientOutFormat, nullptr},
};

}  // namespace

const char* versionResource(std::string_view name) noexcept {
    for (const VersionText& entry : kVersionTexts) {
        if (entry.name == name) {
            return entry.text;
        }
    }
    return nullptr;
}

ClientRegistration registrationFromVersionResource() noexcept {
    ClientRegistration registration{};
    for (const VersionText& entry : kVersionTexts) {
        registration.fields[entry.field] = entry.text ? entry.text : "";
    }
    return registration;
}

}  // namespace marrowpress
