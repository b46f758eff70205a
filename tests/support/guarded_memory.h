// Memory in which every byte outside of a block is found out: a block ends where a protected page begins, and the bytes
// before it are checked when it is given back. Pages are kept and used again, so that a block costs no system call.
#ifndef MIFREADER_TESTS_GUARDED_MEMORY_H
#define MIFREADER_TESTS_GUARDED_MEMORY_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <new>

namespace miftest
{

// Writable pages with a protected one behind them.
class GuardedPages
{
public:
    explicit GuardedPages(size_t capacity);
    GuardedPages(const GuardedPages &) = delete;
    GuardedPages &operator=(const GuardedPages &) = delete;
    ~GuardedPages();

    size_t capacity() const
    {
        return capacity_;
    }

    uint8_t *end() const
    {
        return begin_ + capacity_;
    }

    // From now on the pages must not be touched at all.
    void close();

private:
    size_t capacity_;
    uint8_t *begin_;
    bool closed_ = false;
};

// Blocks filled with rubbish, as those of malloc are aligned. Its blocks must not outlive it.
class GuardedMemory
{
public:
    void *take(size_t size);

    // Checks the surroundings of the block and spoils its bytes.
    void giveBack(void *block);

    bool empty() const
    {
        return blocks_.empty();
    }

    // The size of a block in use, or 0.
    size_t sizeOf(const void *block) const;

    // Whether all of these bytes are in one block.
    bool holds(const void *bytes, size_t count) const;

    ~GuardedMemory();

private:
    struct Block {
        size_t size;
        std::unique_ptr<GuardedPages> pages; // null for a block between checked bytes alone
    };

    std::map<uintptr_t, Block> blocks_; // by address
};

// One record at the very end of its pages.
template <typename Record>
class Guarded
{
public:
    Guarded() : pages_(sizeof(Record)), record_(new (pages_.end() - sizeof(Record)) Record{}) {}

    Record *get() const
    {
        return record_;
    }

    Record *operator->() const
    {
        return record_;
    }

private:
    GuardedPages pages_;
    Record *record_;
};

// A buffer of exactly the size asked for, filled with rubbish, at the end of its pages. The one before can no longer be
// touched.
class PassingBuffers
{
public:
    uint8_t *next(size_t size);

    // Whether the bytes before the current buffer are untouched.
    bool intact() const;

private:
    std::unique_ptr<GuardedPages> current_;
    std::unique_ptr<GuardedPages> previous_;
    size_t size_ = 0;
};

} // namespace miftest

#endif
