#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <xercesc/framework/MemoryManager.hpp>

namespace marrowpress {

/// The engine's memory during one request, with limits that honest documents never come near.
///
/// The engine's own guard counts general entities alone. Parameter entities, long entities that are
/// used often and ambiguous content models pass it by, and take time and memory without end. Here
/// each block is counted: all of a request, and those of one try to read a document.
///
/// What meets a limit, or has used up half of the reserve, gets one `OutOfMemoryException`.
/// Destructors of the engine allocate, and an exception out of one ends the process: so from then
/// on, until a try begins or ends, nothing is refused.
///
/// Where the system has no more, a reserve serves, the first half of it without any exception: not
/// all of the engine stands one. A run is to ask `isMemoryExhausted` and end.
///
/// Blocks that the engine has lost go when this does.
class RequestMemory final : public xercesc::MemoryManager {
public:
    struct Limits {
        std::size_t total;        ///< bytes at one time
        std::size_t tryBytes;     ///< bytes at one time that a try takes more than it found
        std::size_t largeBlocks;  ///< blocks of 64 KB and more that a try takes, freed or not
    };

    /// The smaller of 4 GiB and three quarters of the machine's memory in all; for one try 256 MB
    /// and 32 bytes for each byte of the file. The engine takes a large block for each entity that
    /// it opens: 300,000 of them stop a bomb within seconds, and the standard DTDs have some
    /// thousands.
    static Limits usualLimits();

    /// The memory of the request; null outside of one.
    static RequestMemory* current() noexcept;

    /// Takes the reserve, and is the current one until it ends.
    ///
    /// @throws std::bad_alloc when there is no memory for the reserve.
    explicit RequestMemory(const Limits& limits = usualLimits());
    RequestMemory(const RequestMemory&) = delete;
    RequestMemory& operator=(const RequestMemory&) = delete;
    ~RequestMemory() override;

    /// Serves its own exceptions as well.
    MemoryManager* getExceptionMemoryManager() override { return this; }
    /// @throws xercesc::OutOfMemoryException as described above.
    void* allocate(XMLSize_t size) override;
    void deallocate(void* memory) override;

    /// A try to read a document of `fileBytes` begins; its limits hold until `endTry`.
    void beginTry(std::size_t fileBytes) noexcept;
    void endTry() noexcept;

    /// While it is on, nothing is refused: the engine can't stand that while it starts or ends.
    void setUnlimited(bool isUnlimited) noexcept;

    /// Whether the system had no memory once, or the request has taken all that it may.
    bool isExhausted() const noexcept { return isExhausted_; }
    /// Bytes that are taken at the moment, with what each block needs beside its own.
    std::size_t taken() const noexcept { return taken_; }

private:
    struct Block;

    static std::size_t costOf(std::size_t size) noexcept;
    static std::size_t costOf(Block& block) noexcept;
    void setBound() noexcept;
    bool isOneLargeBlockTooMany() noexcept;
    [[noreturn]] void refuse();
    void* fromSystem(std::size_t size) noexcept;
    void* fromReserve(std::size_t size);
    bool isOfReserve(const void* memory) const noexcept;

    Limits limits_;
    RequestMemory* const earlier_;
    Block* last_ = nullptr;
    std::size_t taken_ = 0;
    std::size_t bound_;  ///< of `taken_`, as things are; none while nothing is refused
    std::size_t takenBeforeTry_ = 0;
    std::size_t tryLimit_ = 0;
    std::size_t largeBlocks_ = 0;
    bool isInTry_ = false;
    bool isUnlimited_ = false;
    bool hasRefused_ = false;
    bool isExhausted_ = false;
    bool isReserveRefused_ = false;
    std::unique_ptr<std::byte[]> reserve_;
    std::size_t reserveUsed_ = 0;
};

/// The limits of one try to read the file at `path`, for the length of a scope.
class TryLimits {
public:
    explicit TryLimits(const std::u16string& path);
    TryLimits(const TryLimits&) = delete;
    TryLimits& operator=(const TryLimits&) = delete;
    ~TryLimits();
};

/// Whether there is a request, and its memory is exhausted.
bool isMemoryExhausted() noexcept;

/// Ends a run whose memory is exhausted: what can't be read then is missing for that alone.
///
/// @throws PublishException if `isMemoryExhausted`.
void requireMemory();

}  // namespace marrowpress
