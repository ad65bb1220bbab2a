#include "tests/fuzz/fuzzing.h"

#include <cstdlib>
#include <iostream>
#include <memory>
#include <memory_resource>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "application/host_operations.h"
#include "host/catalog_resolver.h"
#include "xml/request_memory.h"

namespace marrowpress {
namespace {

/// What the engine itself takes. One large block, for it grows with each run: libFuzzer looks for
/// leaks, which takes long, after a run that allocates more than it frees.
class MemoryOfEngine final : public xercesc::MemoryManager {
public:
    MemoryManager* getExceptionMemoryManager() override { return this; }
    void* allocate(XMLSize_t size) override { return blocks_.allocate(size); }
    void deallocate(void* /*memory*/) override {}

private:
    static constexpr std::size_t kRoom = std::size_t{16} << 20;

    std::unique_ptr<std::byte[]> room_{new std::byte[kRoom]};
    std::pmr::monotonic_buffer_resource blocks_{room_.get(), kRoom};
};

/// The memory of the session that is open.
class MemoryOfSession final : public xercesc::MemoryManager {
public:
    MemoryManager* getExceptionMemoryManager() override { return this; }
    void* allocate(XMLSize_t size) override { return RequestMemory::current()->allocate(size); }
    void deallocate(void* memory) override { RequestMemory::current()->deallocate(memory); }
};

class KeptEngine {
public:
    KeptEngine() {
        xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr,
                                              nullptr, &engineMemory_);
        xercesc::XMLPlatformUtils::fgMemoryManager = &sessionMemory_;
    }
    KeptEngine(const KeptEngine&) = delete;
    KeptEngine& operator=(const KeptEngine&) = delete;
    ~KeptEngine() {
        xercesc::XMLPlatformUtils::fgMemoryManager = &engineMemory_;
        xercesc::XMLPlatformUtils::Terminate();
    }

private:
    MemoryOfEngine engineMemory_;
    MemoryOfSession sessionMemory_;
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
    constexpr std::size_t kRunsOfAnEngine = 100;
    static std::optional<KeptEngine> engine;
    static std::size_t runs = 0;
    if (runs++ % kRunsOfAnEngine == 0) {
        engine.reset();
        engine.emplace();
    }
}

QuietHost::QuietHost() : host_(quietOptions()), interfaces_(host_.provider()) {
    forgetHostExceptions();
    interfaces_.askWhoFreesTexts();
    interfaces_.connect();
}

}  // namespace marrowpress
