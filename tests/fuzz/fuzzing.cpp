#include "tests/fuzz/fuzzing.h"

#include <cstdlib>
#include <iostream>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "application/host_operations.h"
#include "host/catalog_resolver.h"
#include "xml/request_memory.h"

namespace marrowpress {
namespace {

/// The memory of the session that is open.
class MemoryOfSession final : public xercesc::MemoryManager {
public:
    MemoryManager* getExceptionMemoryManager() override { return this; }
    void* allocate(XMLSize_t size) override { return RequestMemory::current()->allocate(size); }
    void deallocate(void* memory) override { RequestMemory::current()->deallocate(memory); }
};

StandInHostOptions quietOptions() {
    StandInHostOptions options;
    options.resolvePublicId = &resolveSmallDtd;
    return options;
}

}  // namespace

void require(bool holds, std::string_view rule, std::string_view detail) {
    if (!holds) {
        std::cerr << "This does not hold: " << rule << '\n' << detail << std::endl;
        std::abort();
    }
}

std::string inputText(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

std::vector<std::string> cutIntoFiles(std::string_view input, std::size_t most) {
    constexpr std::string_view kCut = "\n=====\n";
    std::vector<std::string> files;
    std::size_t cut = input.find(kCut);
    while (cut != std::string_view::npos && files.size() + 1 < most) {
        files.emplace_back(input.substr(0, cut));
        input.remove_prefix(cut + kCut.size());
        cut = input.find(kCut);
    }
    files.emplace_back(input);
    return files;
}

std::optional<std::string> resolveSmallDtd(std::string_view publicId) {
    static CatalogResolver catalog({MARROWPRESS_TEST_CATALOG});
    return catalog.resolvePublic(publicId);
}

void keepEngineStarted() {
    static const bool isStarted = [] {
        xercesc::XMLPlatformUtils::Initialize();
        // What the engine has so far, and what that takes later, is its own for good.
        static MemoryOfSession memory;
        xercesc::XMLPlatformUtils::fgMemoryManager = &memory;
        return true;
    }();
    require(isStarted, "the engine starts");
}

QuietHost::QuietHost() : host_(quietOptions()), interfaces_(host_.provider()) {
    forgetHostExceptions();
    interfaces_.askWhoFreesTexts();
    interfaces_.connect();
}

}  // namespace marrowpress
