// What is lost of a document, told in the extended stream: each loss by its kind and byte, at most so many, and at the
// end how many there were of each kind. In the plain stream nothing is told.
#ifndef MIFREADER_SRC_READER_LOSSES_H
#define MIFREADER_SRC_READER_LOSSES_H

#include <cstdint>

#include "reader/context.h"

inline constexpr uint32_t mostLossesTold = 1000;

// The byte of the document that a byte in the source buffer is.
int32_t mifLossPosition(const MifContext *context, const char *byte);

// kind      a MIF_LOSS value
// position  the byte of the document
void mifNoteLoss(MifContext *context, uint32_t kind, int32_t position);

// The same, of the statement that is being closed or where the scan has come to.
void mifNoteLossHere(MifContext *context, uint32_t kind);

// Tells of the allocations that were refused since the last call: not at once, since that may take memory.
void mifTellRefusedRecords(MifContext *context);

inline void mifTellRefusals(MifContext *context)
{
    if (context->extension.refusals != 0) {
        mifTellRefusedRecords(context);
    }
}

// The document's end: statements that are open are lost, and the totals are written.
void mifTellLossTotals(MifContext *context);

#endif
