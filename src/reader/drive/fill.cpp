// The fill cycle: stretches of text are read and scanned until the host's buffer is full or the document ends.
#include <algorithm>

#include "reader/context.h"
#include "reader/drive/extension.h"
#include "reader/drive/scanner.h"
#include "reader/header.h"
#include "reader/source.h"
#include "reader/tokens.h"
#include "text/document.h"

namespace
{

// How much of the document has been taken up. 100 is kept for when nothing is left: no token waits and no table is
// being read.
int32_t percentDone(const MifContext *context, bool atEnd)
{
    const MifSourceState &source = context->source;
    const MifReplayState &replay = context->replay;
    int64_t percent = 100;
    if (!atEnd && source.totalSize > 0) {
        percent = std::clamp<int64_t>(int64_t{mifFilePosition(context)} * 100 / source.totalSize, 0, 100);
    }
    if (replay.suspendPending != 0 || replay.readingStretch != 0 || !context->output.queue.empty()) {
        percent = std::min<int64_t>(percent, 99);
    }
    return static_cast<int32_t>(percent);
}

// Makes a stretch ready for the scan: the rest of the one where the last call stopped, or the next one. False at the
// end of the document.
bool prepareStretch(MifContext *context)
{
    if (context->source.firstCall != 0) {
        context->source.firstCall = 0; // its stretch was read along with the header
        return true;
    }
    if (context->output.outputFull != 0) {
        context->output.outputFull = 0;
        return true;
    }
    if (mifReadSourceFile(context) != 0) {
        return true;
    }
    // Nor is anything read later, after a read that failed or after a table without an end, whose replay has read the
    // rest of the document. A step that was to be completed by that read meets the document's end.
    MifSourceState &source = context->source;
    source.missing = source.totalSize - mifPositionOf(context, source.bufferEnd);
    context->replay.readingStretch = 0;
    source.bytesRead = source.totalSize;
    return source.scanPosition != source.bufferEnd;
}

// Fills the output. Returns the call's result and stores the percent.
int32_t fillOutput(MifContext *context, int32_t *percent)
{
    for (;;) {
        if (context->output.failed != 0) {
            *percent = percentDone(context, false);
            return MIF_FAILURE;
        }
        if (!prepareStretch(context)) {
            mifTellDocumentEnd(context);
            *percent = percentDone(context, true);
            return MIF_SUCCESS;
        }
        if (mifProcessBuffer(context) == 0) {
            mifFail(context, MIF_REASON_MEMORY);
        }
        *percent = percentDone(context, false);
        if (context->output.failed == 0 && *percent >= 100) {
            mifTellDocumentEnd(context);
            *percent = percentDone(context, false);
        }
        if (context->output.failed == 0 && (context->output.outputFull != 0 || *percent >= 100)) {
            return MIF_SUCCESS;
        }
    }
}

} // namespace

int32_t mifFillBuffer(MifContext *context, uint8_t *buffer, uint32_t *bytesWritten, int32_t *percent,
                      uint32_t bufferSize)
{
    if (context == nullptr) {
        return MIF_FAILURE;
    }
    MifOutputState &output = context->output;
    if (output.ended != 0 || output.failed != 0) { // both are final
        *bytesWritten = 0;
        *percent = percentDone(context, output.ended != 0);
        return output.ended != 0 ? MIF_SUCCESS : MIF_FAILURE;
    }
    mifBeginOutput(context, buffer, bufferSize);
    if (output.failed == 0 && context->source.firstCall != 0) {
        mifWritePreamble(context);
        mifReadFirstStretch(context);
        if (mifMIFFile(context) == 0) {
            mifFail(context, MIF_REASON_NO_HEADER);
            return MIF_FAILURE;
        }
        if (context->extension.version != 0) {
            mifTellVersion(context);
        }
    }
    const int32_t result = fillOutput(context, percent);
    output.ended = result == MIF_SUCCESS && *percent >= 100 ? 1 : 0;
    *bytesWritten = static_cast<uint32_t>(output.outputPosition - output.outputStart);
    return result;
}
