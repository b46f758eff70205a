#include "formats/tab_list.h"

#include <algorithm>
#include <cstring>

#include "reader/host_memory.h"
#include "reader/losses.h"

namespace
{

constexpr uint32_t fewestStops = 4;

bool reserveStops(MifContext *context, MifTabList &tabs, uint32_t count)
{
    if (count <= tabs.capacity) {
        return true;
    }
    const uint32_t capacity = std::max(fewestStops, count + count / 2);
    auto *stops = static_cast<MifTabStop *>(mifAllocateBytes(context, capacity * sizeof(MifTabStop)));
    if (stops == nullptr) {
        return false;
    }
    std::copy_n(tabs.stops, tabs.count, stops);
    mifRelease(context, tabs.stops);
    tabs.stops = stops;
    tabs.capacity = capacity;
    return true;
}

bool sameStop(const MifTabStop &left, const MifTabStop &right)
{
    return left.position == right.position && left.kind == right.kind && strcmp(left.leader, right.leader) == 0;
}

} // namespace

int mifTakeTabStop(MifContext *context)
{
    MifExtendedFormatState &extended = context->formats.extended;
    const MifTabStop stop = extended.openStop;
    const bool isStated = extended.inTabStop != 0;
    extended.openStop = {};
    extended.inTabStop = 0;
    if (!isStated) {
        return 1;
    }
    MifTabList &tabs = extended.wanted.tabs;
    if (tabs.count == mostTabStops) {
        mifNoteLossHere(context, MIF_LOSS_RECORD);
        return 0;
    }
    if (!reserveStops(context, tabs, tabs.count + 1)) {
        return 0;
    }
    tabs.stops[tabs.count++] = stop;
    return 1;
}

bool mifSameTabs(const MifTabList &left, const MifTabList &right)
{
    return left.count == right.count && std::equal(left.stops, left.stops + left.count, right.stops, sameStop);
}

bool mifCopyTabs(MifContext *context, const MifTabList &from, MifTabList &to)
{
    to.count = 0;
    if (!reserveStops(context, to, from.count)) {
        return false;
    }
    std::copy_n(from.stops, from.count, to.stops);
    to.count = from.count;
    return true;
}

void mifFreeTabs(MifContext *context, MifTabList &tabs)
{
    mifRelease(context, tabs.stops);
    tabs = {};
}
