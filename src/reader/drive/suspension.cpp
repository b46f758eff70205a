#include "reader/drive/suspension.h"

#include "formats/paragraphs.h"
#include "reader/drive/extension.h"
#include "reader/source.h"
#include "reader/statement.h"

namespace
{

// Drops the stretch and goes to another place in the stream, by way of its start: hosts see two seeks, as always.
void moveStream(MifContext *context, int32_t position)
{
    HostStream *stream = context->host.stream;
    stream->seek(stream, 0, 0);
    stream->seek(stream, position, 0);
    context->source.scanPosition = context->source.bufferEnd;
}

} // namespace

int mifSuspendCurrentBuffer(MifContext *context)
{
    MifSourceState &source = context->source;
    MifReplayState &replay = context->replay;
    replay.savedPosition = mifFilePosition(context);
    replay.savedStatement = context->scanner.statementStack;
    source.bytesRead -= static_cast<int32_t>(source.bufferEnd - source.scanPosition);
    moveStream(context, replay.startPosition);
    replay.stretchPosition = replay.startPosition;
    replay.suspendPending = 0;
    // The end of the last table read may have left it up; this one would then end at its first statement.
    replay.restorePending = 0;
    replay.readingStretch = 1;
    return 1;
}

int mifRestoreCurrentBuffer(MifContext *context)
{
    MifReplayState &replay = context->replay;
    // A table in the table has ended the replay early when statements of the outer one are still open.
    while (context->scanner.statementStack != nullptr && context->scanner.statementStack != replay.savedStatement) {
        mifProcessEndTag(context, 0);
    }
    mifDropNumbers(context, context->scanner.openParagraphs + 1);
    mifLeaveTable(context);
    moveStream(context, replay.savedPosition);
    replay.readingStretch = 0;
    replay.restorePending = 0;
    return 1;
}
