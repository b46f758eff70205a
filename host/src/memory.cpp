#include "mifhost/memory.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace mifhost
{

namespace
{

// Stands before every block, so that giving it back settles the accounts without a search.
struct alignas(std::max_align_t) BlockHeader {
    std::size_t size;
};

// The bytes that a heap takes for a block of this size and its header: it has a word of its own before each, and hands
// out multiples of 16.
std::size_t costOf(std::size_t size)
{
    constexpr std::size_t heapWord = 8;
    constexpr std::size_t unit = 16;
    return (size + sizeof(BlockHeader) + heapWord + unit - 1) / unit * unit;
}

Memory &ownerOf(void *handleArea)
{
    return *static_cast<Memory *>(*static_cast<void **>(handleArea));
}

} // namespace

Memory::Memory(std::size_t limit) noexcept : limit_(limit)
{
    services_.memoryHandleArea = this;
    services_.allocate = [](void *handleArea, std::size_t size) { return ownerOf(handleArea).allocate(size, false); };
    services_.allocateZeroed = [](void *handleArea, std::size_t count, std::size_t size) {
        // A product that does not fit is more than any heap has.
        const bool fits = size == 0 || count <= SIZE_MAX / size;
        return ownerOf(handleArea).allocate(fits ? count * size : SIZE_MAX, true);
    };
    services_.free = [](void *handleArea, void *block) { ownerOf(handleArea).release(block); };
}

void *Memory::allocate(std::size_t size, bool zeroed) noexcept
{
    constexpr std::size_t largest = std::numeric_limits<std::ptrdiff_t>::max();
    const std::size_t room = (limit_ == 0 ? SIZE_MAX : limit_) - bytesInUse_;
    void *memory = nullptr;
    if (size <= largest && costOf(size) <= room) {
        const std::size_t whole = sizeof(BlockHeader) + size;
        memory = zeroed ? std::calloc(1, whole) : std::malloc(whole);
    }
    if (memory == nullptr) {
        ++refusals_;
        return nullptr;
    }

    auto *header = static_cast<BlockHeader *>(memory);
    header->size = size;
    bytesInUse_ += costOf(size);
    peakBytes_ = std::max(peakBytes_, bytesInUse_);
    requested_ += size;
    peakRequested_ = std::max(peakRequested_, requested_);
    ++allocations_;
    ++liveBlocks_;
    return header + 1;
}

void Memory::release(void *block) noexcept
{
    BlockHeader *header = static_cast<BlockHeader *>(block) - 1;
    bytesInUse_ -= costOf(header->size);
    requested_ -= header->size;
    --liveBlocks_;
    std::free(header);
}

} // namespace mifhost
