// Tab stops. Positions and kinds are two arrays, filled in the order in which each arrives and not by the stop that
// holds them.
//
// The document says how many stops there are before it gives them. The arrays grow with those that come, so that no
// number takes more memory than the text after it.
#ifndef MIFREADER_SRC_FORMATS_TAB_STOPS_H
#define MIFREADER_SRC_FORMATS_TAB_STOPS_H

#include <cstdint>

#include "reader/context.h"

bool mifSameTabStops(const MifParagraphStyle &left, const MifParagraphStyle &right);

// Gives `to` the stops of `from`. Returns false, and `to` then has none, when memory is exhausted.
bool mifCopyTabStops(MifContext *context, const MifParagraphStyle &from, MifParagraphStyle &to);

// Makes currentStyle ready for `count` stops: the ones it has stay if their number is the same. Returns 1, or 0, and
// then there are no stops, when count is negative.
int mifProcessTabArrays(MifContext *context, int32_t count);

// The next position, in twips, or kind, a MIF_TAB value, of currentStyle. One too many is dropped. Returns 1, or 0 when
// memory is exhausted.
int mifStoreTabPosition(MifContext *context, int32_t position);
int mifStoreTabKind(MifContext *context, int32_t kind);

// Releases the stops of both styles.
void mifFreeTabArrays(MifContext *context);

#endif
