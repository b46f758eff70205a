#include "support/guarded_memory.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace miftest
{

namespace
{

#if defined(__SANITIZE_ADDRESS__)
constexpr bool sanitized = true;
#elif defined(__has_feature)
constexpr bool sanitized = __has_feature(address_sanitizer);
#else
constexpr bool sanitized = false;
#endif

constexpr int rubbish = 0xA5;
constexpr int spoiled = 0x5A;
constexpr uint8_t guardByte = 0xE5;
constexpr size_t guardSize = 16; // checked before a block, and behind it where no page is protected

// The system does not protect pages without end.
constexpr size_t mostGuardedBlocks = 8192;

size_t pageSize()
{
    static const auto size = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

size_t wholePages(size_t size)
{
    return std::bit_ceil((size + pageSize() - 1) / pageSize()) * pageSize();
}

// Pages that no one uses, by their capacity.
std::map<size_t, std::vector<uint8_t *>> &freePages()
{
    static std::map<size_t, std::vector<uint8_t *>> pages;
    return pages;
}

void setAccess(uint8_t *begin, size_t size, int access)
{
    if (mprotect(begin, size, access) != 0) {
        abort();
    }
}

uint8_t *mapPages(size_t capacity)
{
    std::vector<uint8_t *> &known = freePages()[capacity];
    if (!known.empty()) {
        uint8_t *begin = known.back();
        known.pop_back();
        return begin;
    }
    void *begin = mmap(nullptr, capacity + pageSize(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (begin == MAP_FAILED) {
        abort();
    }
    setAccess(static_cast<uint8_t *>(begin) + capacity, pageSize(), PROT_NONE);
    return static_cast<uint8_t *>(begin);
}

bool allGuards(const uint8_t *begin, const uint8_t *end)
{
    return std::all_of(begin, end, [](uint8_t byte) { return byte == guardByte; });
}

size_t aligned(size_t size)
{
    constexpr size_t alignment = alignof(std::max_align_t);
    return (size + alignment - 1) / alignment * alignment;
}

} // namespace

GuardedPages::GuardedPages(size_t capacity) : capacity_(wholePages(capacity)), begin_(mapPages(capacity_)) {}

GuardedPages::~GuardedPages()
{
    if (closed_) {
        setAccess(begin_, capacity_, PROT_READ | PROT_WRITE);
    }
    freePages()[capacity_].push_back(begin_);
}

void GuardedPages::close()
{
    setAccess(begin_, capacity_, PROT_NONE);
    closed_ = true;
}

// AddressSanitizer sees every byte outside of its own blocks, and those that were given back; so it has them all.
void *GuardedMemory::take(size_t size)
{
    const size_t room = aligned(size);
    const bool guarded = !sanitized && blocks_.size() < mostGuardedBlocks;
    auto pages = guarded ? std::make_unique<GuardedPages>(room + guardSize) : nullptr;
    uint8_t *begin = nullptr;
    if (pages != nullptr) {
        begin = pages->end() - room;
        memset(begin - guardSize, guardByte, guardSize);
        memset(begin + size, guardByte, room - size);
    } else {
        begin = static_cast<uint8_t *>(malloc(size));
    }
    memset(begin, rubbish, size);
    blocks_.emplace(reinterpret_cast<uintptr_t>(begin), Block{size, std::move(pages)});
    return begin;
}

void GuardedMemory::giveBack(void *block)
{
    const auto found = blocks_.find(reinterpret_cast<uintptr_t>(block));
    if (found == blocks_.end()) {
        ADD_FAILURE() << "a block is freed that is not in use";
        return;
    }
    auto *begin = static_cast<uint8_t *>(block);
    const size_t size = found->second.size;
    memset(begin, spoiled, size);
    if (found->second.pages != nullptr) {
        EXPECT_TRUE(allGuards(begin - guardSize, begin)) << "written before a block";
        EXPECT_TRUE(allGuards(begin + size, found->second.pages->end())) << "written behind a block";
    } else {
        free(block);
    }
    blocks_.erase(found);
}

GuardedMemory::~GuardedMemory()
{
    while (!blocks_.empty()) {
        giveBack(
            reinterpret_cast<void *>(blocks_.begin()->first)); // NOLINT(performance-no-int-to-ptr): a key of the map
    }
}

size_t GuardedMemory::sizeOf(const void *block) const
{
    const auto found = blocks_.find(reinterpret_cast<uintptr_t>(block));
    return found != blocks_.end() ? found->second.size : 0;
}

bool GuardedMemory::holds(const void *bytes, size_t count) const
{
    const auto begin = reinterpret_cast<uintptr_t>(bytes);
    auto block = blocks_.upper_bound(begin);
    if (block == blocks_.begin()) {
        return false;
    }
    --block;
    return begin - block->first <= block->second.size && count <= block->second.size - (begin - block->first);
}

uint8_t *PassingBuffers::next(size_t size)
{
    previous_ = std::move(current_);
    if (previous_ != nullptr) {
        previous_->close();
    }
    current_ = std::make_unique<GuardedPages>(size + guardSize);
    size_ = size;
    uint8_t *begin = current_->end() - size;
    memset(begin - guardSize, guardByte, guardSize);
    memset(begin, rubbish, size);
    return begin;
}

bool PassingBuffers::intact() const
{
    const uint8_t *begin = current_->end() - size_;
    return allGuards(begin - guardSize, begin);
}

} // namespace miftest
