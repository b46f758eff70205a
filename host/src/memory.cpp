#include "mifhost/memory.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace mifhost
{

namespace
{

// Stands before every block, so that giving it back settles the accounts without a search.
struct alignas(std::max_align_t) BlockHeader {
    std::size_t size;
};

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
    const std::size_t room = (limit_ == 0 ? SIZE_MAX - sizeof(BlockHeader) : limit_) - bytesInUse_;
    void *memory = nullptr;
    if (size <= room && size <= SIZE_MAX - sizeof(BlockHeader)) {
        const std::size_t whole = sizeof(BlockHeader) + size;
        memory = zeroed ? std::calloc(1, whole) : std::malloc(whole);
    }
    if (memory == nullptr) {
        ++refusals_;
        return nullptr;
    }

    auto *header = static_cast<BlockHeader *>(memory);
    header->size = size;
    bytesInUse_ += size;
    peakBytes_ = std::max(peakBytes_, bytesInUse_);
    ++allocations_;
    ++liveBlocks_;
    return header + 1;
}

void Memory::release(void *block) noexcept
{
    BlockHeader *header = static_cast<BlockHeader *>(block) - 1;
    bytesInUse_ -= header->size;
    --liveBlocks_;
    std::free(header);
}

} // namespace mifhost
