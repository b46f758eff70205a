// The memory services of a document: the heap, with accounts and an optional limit.
#ifndef MIFHOST_MEMORY_H
#define MIFHOST_MEMORY_H

#include <cstddef>

#include "mifreader/host.h"

namespace mifhost
{

// Serves one reader context at a time; the context must be freed before the Memory goes. Blocks that a faulty plug-in
// never gave back are not released by the destructor: liveBlocks() tells of them.
class Memory
{
public:
    // limit  the most bytes that may be in use at once, as bytesInUse() counts them; 0 means no limit
    explicit Memory(std::size_t limit = 0) noexcept;
    Memory(const Memory &) = delete;
    Memory &operator=(const Memory &) = delete;

    // The record to hand to the reader. It lives as long as this object.
    HostServices *services() noexcept
    {
        return &services_;
    }

    // The bytes in use now and at the highest, as much as the heap takes for them: each block with its bookkeeping, 24
    // bytes and what is missing to a multiple of 16.
    std::size_t bytesInUse() const noexcept
    {
        return bytesInUse_;
    }
    std::size_t peakBytes() const noexcept
    {
        return peakBytes_;
    }

    // The same at the highest, as the reader asked for them.
    std::size_t peakRequested() const noexcept
    {
        return peakRequested_;
    }

    // The number of allocations granted so far, of blocks not yet given back, and of allocations refused because of the
    // limit or an exhausted heap.
    std::size_t allocations() const noexcept
    {
        return allocations_;
    }
    std::size_t liveBlocks() const noexcept
    {
        return liveBlocks_;
    }
    std::size_t refusals() const noexcept
    {
        return refusals_;
    }

    // Counts refusals from 0 again: what was refused could be done without.
    void forgetRefusals() noexcept
    {
        refusals_ = 0;
    }

    // The limit given at construction; 0 means none.
    std::size_t limit() const noexcept
    {
        return limit_;
    }

private:
    // Both return null when the limit or the heap does not allow size bytes.
    void *allocate(std::size_t size, bool zeroed) noexcept;
    void release(void *block) noexcept;

    HostServices services_{};
    std::size_t limit_;
    std::size_t bytesInUse_ = 0;
    std::size_t peakBytes_ = 0;
    std::size_t requested_ = 0;
    std::size_t peakRequested_ = 0;
    std::size_t allocations_ = 0;
    std::size_t liveBlocks_ = 0;
    std::size_t refusals_ = 0;
};

} // namespace mifhost

#endif
