// Asking for the replay of a table, and for its end. drive/suspension leaves the text and comes back.
#ifndef MIFREADER_SRC_READER_REPLAY_H
#define MIFREADER_SRC_READER_REPLAY_H

#include "reader/context.h"

// Has the scanner leave the text after the statement that is being closed, and read the table at that position of the
// stream.
inline void mifRequestReplay(MifContext *context, int32_t position)
{
    context->replay.startPosition = position;
    context->replay.suspendPending = 1;
}

// Has the scanner go back to the text after the statement that is being closed. Outside of a replay the request waits.
inline void mifRequestReturn(MifContext *context)
{
    context->replay.restorePending = 1;
}

inline void mifCancelReturn(MifContext *context)
{
    context->replay.restorePending = 0;
}

#endif
