// Writing tokens into the host's buffer. The layouts are those of mifreader/tokens.h.
//
// A token's length is known before its first byte is written, so each writer asks once for the whole room. A token that
// does not fit waits in a queue and comes out first in the next fill call; so does every token after it. A token is
// lost only when it is larger than the whole buffer or there is no memory to let it wait: then the output counts as
// failed, nothing more is written, and the fill call returns 6.
//
// Every writer returns 1, or 0 when the token is lost.
#ifndef MIFREADER_SRC_READER_TOKENS_H
#define MIFREADER_SRC_READER_TOKENS_H

#include <cstddef>
#include <cstdint>

#include "reader/context.h"

// Begins a fill call: points the output at the host's buffer and writes the tokens that wait.
void mifBeginOutput(MifContext *context, uint8_t *buffer, uint32_t bufferSize);

// The document fails, for that reason (a MIF_REASON value), unless it has failed already: nothing more is written, and
// the fill call returns 6.
void mifFail(MifContext *context, uint32_t reason);

// Whether no further step may be begun in this call.
inline bool mifOutputStopped(const MifOutputState &output)
{
    return output.outputPosition >= output.stopPosition;
}

// Gives back the tokens that still wait.
void mifFreeQueuedTokens(MifContext *context);

// The three tokens that every stream begins with.
int mifWritePreamble(MifContext *context);

int mifWriteText(MifContext *context, const char *text, size_t length);
int mifWriteParaFormat(MifContext *context, const MifParagraphStyle &style);
int mifWriteLineSpacing(MifContext *context, uint8_t lineSpacing);
int mifWriteFont(MifContext *context, const MifParagraphStyle &style);
int mifWriteAttribute(MifContext *context, uint32_t value);
int mifWriteTextColor(MifContext *context, uint32_t color);
int mifWriteTabStops(MifContext *context, const MifParagraphStyle &style);
int mifWriteTab(MifContext *context);
int mifWriteLineBreak(MifContext *context);
int mifWriteParaEnd(MifContext *context);
int mifWriteTableRow(MifContext *context, int32_t columns); // the first columns of the current table, at its offset
int mifWriteCellEnd(MifContext *context);
int mifWriteTableEnd(MifContext *context);
int mifWriteFrame(MifContext *context, const MifFrameRecord &frame);

#endif
