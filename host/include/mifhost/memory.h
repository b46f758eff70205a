// The memory services of a document: the heap, with accounts and an optional limit. Every byte that the reader uses for
// a document comes from here, so that a limit holds whatever the document is; what the host itself allocates (the
// buffer for tokens, an object's block) is not counted.
#ifndef MIFHOST_MEMORY_H
#define MIFHOST_MEMORY_H

#include <cstddef>

#include "mifreader/host.h"

namespace mifhost
{

// Serves one reader context at a time, on that context's thread; the context must be freed before the Memory goes.
// Blocks that a faulty plug-in never gave back are not released by the destructor: liveBlocks() tells of them. Nothing
// here throws, as the reader is the caller: a refusal is a null for it, and a count for the host. A Document has its
// own; a host that calls the reader's entry points by itself makes one for each context:
//
//   mifhost::Memory memory(limit);
//   MifContext *context = mifAllocateContext(nullptr, nullptr, &result, memory.services(), 0);
//   ...                      // after each call of the reader: is memory.refusals() still 0?
//   mifFreeContext(context); // and then: is memory.liveBlocks() 0?
class Memory
{
public:
    // limit  the most bytes that may be in use at once, as bytesInUse() counts them; 0 means no limit. An allocation
    //        that would go beyond it is refused; those granted before stay
    explicit Memory(std::size_t limit = 0) noexcept;
    Memory(const Memory &) = delete;
    Memory &operator=(const Memory &) = delete;

    // The record to hand to the reader, for mifAllocateContext: its four slots that the library uses. It lives as long
    // as this object and points back to it, which is why there are no copies. The reader keeps its address until
    // mifFreeContext.
    HostServices *services() noexcept
    {
        return &services_;
    }

    // The bytes in use now, as much as the heap takes for them: each block with its bookkeeping, 24 bytes and what is
    // missing to a multiple of 16. So many small blocks count as what they cost, not as what was asked for.
    std::size_t bytesInUse() const noexcept
    {
        return bytesInUse_;
    }

    // The most that bytesInUse() ever was; never more than the limit. It stays after blocks are given back, so that it
    // is the number to set a limit by for documents of a kind.
    std::size_t peakBytes() const noexcept
    {
        return peakBytes_;
    }

    // The most bytes that were in use at once as the reader asked for them, without bookkeeping: what a reader needs on
    // any heap. Always below peakBytes(), or 0 with it.
    std::size_t peakRequested() const noexcept
    {
        return peakRequested_;
    }

    // The number of allocations granted so far, whether or not the block has been given back since; a refused one does
    // not count. It never becomes smaller.
    std::size_t allocations() const noexcept
    {
        return allocations_;
    }

    // The number of blocks not yet given back: 0 once the context is freed, unless the plug-in is faulty. Blocks that
    // it kept are lost to the process, as nobody else knows them.
    std::size_t liveBlocks() const noexcept
    {
        return liveBlocks_;
    }

    // The number of allocations refused because of the limit or an exhausted heap. The reader goes on after some of
    // them with a piece of the document missing and reports success, so that a host looks here after each of its calls;
    // Document does, and throws LimitReached.
    std::size_t refusals() const noexcept
    {
        return refusals_;
    }

    // Counts refusals from 0 again: what was refused could be done without, as the block for an embedded object's data
    // can, whose refusal ends the reading of the object and not the conversion.
    void forgetRefusals() noexcept
    {
        refusals_ = 0;
    }

    // The limit given at construction, in bytes as bytesInUse() counts them; 0 means none.
    std::size_t limit() const noexcept
    {
        return limit_;
    }

private:
    // Returns size bytes, cleared when zeroed is true, or null when the limit or the heap does not allow them. Without
    // a limit the heap alone decides, but no block is larger than PTRDIFF_MAX bytes. The block carries its size in
    // front, for release().
    void *allocate(std::size_t size, bool zeroed) noexcept;
    // Gives a block back to the heap and takes it off the accounts.
    //   block  what allocate() returned and has not been given back; never null, as the reader promises
    void release(void *block) noexcept;

    // Points to this object; the slots that the library does not use are null.
    HostServices services_{};
    // Bytes, as the heap takes them.
    std::size_t limit_; // 0 means none
    std::size_t bytesInUse_ = 0;
    std::size_t peakBytes_ = 0;
    // Bytes, as the reader asked for them.
    std::size_t requested_ = 0;
    std::size_t peakRequested_ = 0;
    // Blocks.
    std::size_t allocations_ = 0;
    std::size_t liveBlocks_ = 0;
    std::size_t refusals_ = 0;
};

} // namespace mifhost

#endif
