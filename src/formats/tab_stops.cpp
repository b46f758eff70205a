#include "formats/tab_stops.h"

#include <cstddef>

#include "reader/host_memory.h"

namespace
{

int32_t *allocateArray(MifContext *context, int32_t count)
{
    const auto entries = static_cast<size_t>(count);
    if (entries > SIZE_MAX / sizeof(int32_t)) {
        return nullptr;
    }
    return static_cast<int32_t *>(mifAllocateZeroedBytes(context, entries * sizeof(int32_t)));
}

} // namespace

bool mifAllocateTabArrays(MifContext *context, MifParagraphStyle &style, int32_t count)
{
    style.tabPositions = allocateArray(context, count);
    style.tabKinds = style.tabPositions != nullptr ? allocateArray(context, count) : nullptr;
    if (style.tabKinds == nullptr) {
        mifReleaseTabArrays(context, style);
        return false;
    }
    style.tabCount = count;
    return true;
}

void mifReleaseTabArrays(MifContext *context, MifParagraphStyle &style)
{
    mifRelease(context, style.tabPositions);
    mifRelease(context, style.tabKinds);
    style.tabPositions = nullptr;
    style.tabKinds = nullptr;
    style.tabCount = 0;
}

int mifProcessTabArrays(MifContext *context, int32_t count)
{
    MifParagraphStyle &style = context->formats.currentStyle;
    if (count != style.tabCount || count == 0) {
        mifReleaseTabArrays(context, style);
        if (count < 0 || (count > 0 && !mifAllocateTabArrays(context, style, count))) {
            return 0;
        }
    }
    style.tabPositionsFilled = 0;
    style.tabKindsFilled = 0;
    return 1;
}

void mifFreeTabArrays(MifContext *context)
{
    mifReleaseTabArrays(context, context->formats.currentStyle);
    mifReleaseTabArrays(context, context->formats.appliedStyle);
}
