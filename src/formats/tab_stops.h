// Tab stops. Positions and kinds are two arrays, filled in the order in which each arrives and not by the stop that
// holds them.
#ifndef MIFREADER_SRC_FORMATS_TAB_STOPS_H
#define MIFREADER_SRC_FORMATS_TAB_STOPS_H

#include <cstdint>

#include "reader/context.h"

// Two cleared arrays of `count` entries. Returns false, with both null, when memory is exhausted.
bool mifAllocateTabArrays(MifContext *context, MifParagraphStyle &style, int32_t count);

// Gives the style's arrays back; it then has no stops.
void mifReleaseTabArrays(MifContext *context, MifParagraphStyle &style);

// Makes currentStyle ready for `count` stops: the ones it has stay if their number is the same. Returns 1, or 0, and
// then there are no stops, when count is negative or memory is exhausted.
int mifProcessTabArrays(MifContext *context, int32_t count);

// Releases the stops of both styles.
void mifFreeTabArrays(MifContext *context);

#endif
