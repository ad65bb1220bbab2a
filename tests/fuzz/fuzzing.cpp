#include "tests/fuzz/fuzzing.h"

#include <cstdlib>
#include <iostream>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "application/host_operations.h"
#include "host/catalog_resolver.h"
#include "xml/request_memory.h"

namespace marrowpress {
namespace {

/// Takes each block from the memory of the session that is open, and from the system while none is.
class MemoryOfSessions final : public xercesc::MemoryManager {
public:
    MemoryManager* getExceptionMemoryManager() override { return this; }

    void* allocate(XMLSize_t size) override {
        MemoryManager* const owner = RequestMemory::current();
        void* const memory =
            owner ? owner->allocate(sizeof(Block) + size) : std::malloc(sizeof(Block) + size);
        if (!memory) {
            throw xercesc::OutOfMemoryException();
        }
        return new (memory) Block{owner} + 1;
    }

    void deallocate(void* memory) override {
        if (!memory) {
            return;
        }
        Block* const block = static_cast<Block*>(memory) - 1;
        if (block->owner) {
            block->owner->deallocate(block);
        } else {
            std::free(block);
        }
    }

private:
    /// Stands in front of each block.
    struct alignas(std::max_align_t) Block {
        MemoryManager* owner;
    };
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
    static MemoryOfSessions memory;
    static const bool isStarted = [] {
        xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr,
                                              nullptr, &memory);
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
