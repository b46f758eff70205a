// The tab stops of the extended stream: those that the document states, one after the other.
#ifndef MIFREADER_SRC_FORMATS_TAB_LIST_H
#define MIFREADER_SRC_FORMATS_TAB_LIST_H

#include "reader/context.h"

inline constexpr uint32_t mostTabStops = 4096;

// Ends the open stop: appends it to the wanted stops, unless it has no position. Returns 1, or 0 when there are
// mostTabStops or memory is exhausted.
int mifTakeTabStop(MifContext *context);

bool mifSameTabs(const MifTabList &left, const MifTabList &right);

// Makes `to` the same as `from`. Returns false, `to` being empty then, when memory is exhausted.
bool mifCopyTabs(MifContext *context, const MifTabList &from, MifTabList &to);

void mifFreeTabs(MifContext *context, MifTabList &tabs);

#endif
