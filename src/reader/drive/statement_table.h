// The statements that the reader understands, and the finding of a statement's row by its name.
#ifndef MIFREADER_SRC_READER_DRIVE_STATEMENT_TABLE_H
#define MIFREADER_SRC_READER_DRIVE_STATEMENT_TABLE_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

#include "reader/context.h"

// Read-only and shared by all contexts.
extern const std::span<const MifStatementEntry> MifStatementTable;

// The statements that the extended stream reads otherwise than the plain one, or that it alone reads. In it they come
// before those of the same name.
extern const std::span<const MifStatementEntry> MifExtendedStatementTable;

// The bucket of a name, 0 to 40.
uint32_t mifHashValue(const char *name);

// Builds the context's hash table over all rows. Returns 1, or 0 when memory is exhausted: what was built stays, for
// mifFreeHashTable.
int mifCreateHashTable(MifContext *context);

void mifFreeHashTable(MifContext *context);

extern const MifStatementEntry mifUnsupportedStatement;

// The row of a name, mifUnsupportedStatement for a name that has none. A zero byte ends what counts of the name.
const MifStatementEntry &mifLookUpStatement(const MifContext *context, std::string_view name);

// The same for a name in the source buffer, which the margin after the buffer allows to load whole. Names come again
// and again: those met before are known by their two words, without a hash over their bytes and without a comparison of
// them.
inline const MifStatementEntry &mifFindStatement(MifContext *context, const char *name, const char *end)
{
    // Read from the place that is as far before its middle as the name is long, a mask of the name's bytes.
    static constexpr auto lengthMasks = [] {
        std::array<uint8_t, size_t{2} * sourceBufferMargin> bytes{};
        std::fill_n(bytes.begin(), sourceBufferMargin, 0xFF);
        return bytes;
    }();
    const auto length = static_cast<size_t>(end - name);
    if (length > sourceBufferMargin) {
        return mifLookUpStatement(context, {name, length});
    }
    uint64_t words[2];
    uint64_t masks[2];
    memcpy(words, name, sizeof(words));
    memcpy(masks, lengthMasks.data() + (sourceBufferMargin - length), sizeof(masks));
    const uint64_t first = words[0] & masks[0];
    const uint64_t second = words[1] & masks[1];
    // The golden ratio: every bit of the words reaches the highest ones, which give the place.
    constexpr uint64_t spread = 0x9E3779B97F4A7C15U;
    MifRecentNames &recent = context->dispatch.recentNames[((first + second * 3) * spread) >> (64 - recentNamesBits)];
    const auto is = [=](const MifRecentName &met) {
        return met.first == first && met.second == second && met.row != nullptr;
    };
    if (is(recent.newer)) {
        return *recent.newer.row;
    }
    if (is(recent.older)) {
        return *recent.older.row;
    }
    recent.older = recent.newer;
    recent.newer = {first, second, &mifLookUpStatement(context, {name, length})};
    return *recent.newer.row;
}

// The handler of a name, mifUnsupportedMIFStatement for an unknown one.
MifStatementHandler mifGetTagFunction(const MifContext *context, const char *name);

// The handler of every statement that the reader does not know: it is accepted and its value ignored.
int mifUnsupportedMIFStatement(MifContext *context);

#endif
