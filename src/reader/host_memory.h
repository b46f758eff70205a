// Memory from the host: typed forms of the three operations of HostServices. Nothing in the library allocates
// otherwise.
#ifndef MIFREADER_SRC_READER_HOST_MEMORY_H
#define MIFREADER_SRC_READER_HOST_MEMORY_H

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "reader/context.h"

// Counts an allocation that the host refused. A function of its own, which nobody else looks into: so an allocation
// that succeeds costs what it did.
void mifCountRefusal(MifContext *context);

// All allocations return null when the host has no memory left.
inline void *mifAllocateBytes(MifContext *context, size_t size)
{
    HostServices *services = context->host.services;
    void *block = services->allocate(&services->memoryHandleArea, size);
    if (block == nullptr) {
        mifCountRefusal(context);
    }
    return block;
}

inline void *mifAllocateZeroedBytes(MifContext *context, size_t size)
{
    HostServices *services = context->host.services;
    void *block = services->allocateZeroed(&services->memoryHandleArea, 1, size);
    if (block == nullptr) {
        mifCountRefusal(context);
    }
    return block;
}

// One cleared record.
template <typename Record>
Record *mifAllocateZeroed(MifContext *context)
{
    static_assert(std::is_trivial_v<Record>);
    return static_cast<Record *>(mifAllocateZeroedBytes(context, sizeof(Record)));
}

// An own copy of the bytes, zero-terminated.
inline char *mifCopyBytes(MifContext *context, const char *bytes, size_t length)
{
    auto *copy = static_cast<char *>(mifAllocateBytes(context, length + 1));
    if (copy != nullptr) {
        memcpy(copy, bytes, length);
        copy[length] = '\0';
    }
    return copy;
}

// An own copy of a zero-terminated text.
inline char *mifCopyText(MifContext *context, const char *text)
{
    return mifCopyBytes(context, text, strlen(text));
}

// Null is allowed and does nothing.
inline void mifRelease(MifContext *context, void *block)
{
    if (block != nullptr) {
        HostServices *services = context->host.services;
        services->free(&services->memoryHandleArea, block);
    }
}

#endif
