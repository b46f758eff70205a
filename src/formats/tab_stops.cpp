#include "formats/tab_stops.h"

#include <algorithm>
#include <cstddef>

#include "reader/host_memory.h"

namespace
{

constexpr int32_t fewestStored = 8;

int32_t *allocateArray(MifContext *context, int32_t count)
{
    return static_cast<int32_t *>(mifAllocateZeroedBytes(context, static_cast<size_t>(count) * sizeof(int32_t)));
}

void releaseArrays(MifContext *context, MifParagraphStyle &style)
{
    mifRelease(context, style.tabPositions);
    mifRelease(context, style.tabKinds);
    style.tabPositions = nullptr;
    style.tabKinds = nullptr;
    style.tabsStored = 0;
}

void removeStops(MifContext *context, MifParagraphStyle &style)
{
    releaseArrays(context, style);
    style.tabCount = 0;
}

// Gives `to` arrays of `stored` entries: those of `from`, then zeros. Returns false, with `to` as it was, when memory
// is exhausted.
bool copyArrays(MifContext *context, const MifParagraphStyle &from, MifParagraphStyle &to, int32_t stored)
{
    int32_t *positions = allocateArray(context, stored);
    int32_t *kinds = positions != nullptr ? allocateArray(context, stored) : nullptr;
    if (kinds == nullptr) {
        mifRelease(context, positions);
        return false;
    }
    std::copy_n(from.tabPositions, from.tabsStored, positions);
    std::copy_n(from.tabKinds, from.tabsStored, kinds);
    releaseArrays(context, to);
    to.tabPositions = positions;
    to.tabKinds = kinds;
    to.tabsStored = stored;
    return true;
}

// Makes sure that the stop of that index, below tabCount, can be set. Returns false when memory is exhausted.
bool reserveStop(MifContext *context, MifParagraphStyle &style, int32_t index)
{
    return index < style.tabsStored ||
           copyArrays(context, style, style, std::min(style.tabCount, std::max(fewestStored, 2 * index)));
}

// Whether two arrays are the same, with zeros after the entries that are stored.
bool sameEntries(const int32_t *left, int32_t leftStored, const int32_t *right, int32_t rightStored)
{
    const int32_t common = std::min(leftStored, rightStored);
    const int32_t *const longer = leftStored > common ? left : right;
    return std::equal(left, left + common, right) &&
           std::all_of(longer + common, longer + std::max(leftStored, rightStored),
                       [](int32_t entry) { return entry == 0; });
}

} // namespace

bool mifSameTabStops(const MifParagraphStyle &left, const MifParagraphStyle &right)
{
    return left.tabCount == right.tabCount &&
           sameEntries(left.tabPositions, left.tabsStored, right.tabPositions, right.tabsStored) &&
           sameEntries(left.tabKinds, left.tabsStored, right.tabKinds, right.tabsStored);
}

bool mifCopyTabStops(MifContext *context, const MifParagraphStyle &from, MifParagraphStyle &to)
{
    removeStops(context, to);
    if (from.tabsStored != 0 && !copyArrays(context, from, to, from.tabsStored)) {
        return false;
    }
    to.tabCount = from.tabCount;
    return true;
}

int mifProcessTabArrays(MifContext *context, int32_t count)
{
    MifParagraphStyle &style = context->formats.currentStyle;
    if (count != style.tabCount || count == 0) {
        removeStops(context, style);
        if (count < 0) {
            return 0;
        }
        style.tabCount = count;
    }
    style.tabPositionsFilled = 0;
    style.tabKindsFilled = 0;
    return 1;
}

int mifStoreTabPosition(MifContext *context, int32_t position)
{
    MifParagraphStyle &style = context->formats.currentStyle;
    if (style.tabPositionsFilled >= style.tabCount) {
        return 1;
    }
    const int32_t index = style.tabPositionsFilled++;
    if (!reserveStop(context, style, index)) {
        return 0;
    }
    style.tabPositions[index] = position;
    return 1;
}

int mifStoreTabKind(MifContext *context, int32_t kind)
{
    MifParagraphStyle &style = context->formats.currentStyle;
    if (style.tabKindsFilled >= style.tabCount) {
        return 1;
    }
    const int32_t index = style.tabKindsFilled++;
    if (!reserveStop(context, style, index)) {
        return 0;
    }
    style.tabKinds[index] = kind;
    return 1;
}

void mifFreeTabArrays(MifContext *context)
{
    removeStops(context, context->formats.currentStyle);
    removeStops(context, context->formats.appliedStyle);
}
