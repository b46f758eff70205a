#include "reader/source.h"

#include <algorithm>
#include <cstring>

namespace
{

// Where the next stretch begins.
int32_t nextReadPosition(const MifContext *context)
{
    const MifReplayState &replay = context->replay;
    return replay.readingStretch != 0 ? replay.stretchPosition : context->source.bytesRead;
}

} // namespace

char *mifFindLineEnd(char *begin, char *end)
{
    while (begin < end) { // lines are short: two calls of memchr would cost more
        const MifWord marks = mifMarkBelow(mifLoadWord(begin), '\r' + 1);
        begin += mifBytesBefore(marks);
        if (marks == 0) {
            continue;
        }
        if (mifNewLine(*begin)) {
            break;
        }
        ++begin; // a tab or another control byte
    }
    return std::min(begin, end);
}

bool mifMoreToRead(const MifContext *context)
{
    return nextReadPosition(context) < context->source.totalSize;
}

int32_t mifPositionOf(const MifContext *context, const char *byte)
{
    return nextReadPosition(context) - static_cast<int32_t>(context->source.bufferEnd - byte);
}

int32_t mifFilePosition(const MifContext *context)
{
    const MifReplayState &replay = context->replay;
    const MifSourceState &source = context->source;
    return replay.readingStretch != 0 ? replay.savedPosition : mifPositionOf(context, source.scanPosition);
}

size_t mifReadStream(MifContext *context, char *destination, size_t count)
{
    HostStream *stream = context->host.stream;
    const size_t delivered = stream->read(stream, destination, count);
    return delivered <= count ? delivered : 0;
}

int32_t mifReadSourceFile(MifContext *context)
{
    MifSourceState &source = context->source;
    MifReplayState &replay = context->replay;
    const int32_t left = source.totalSize - nextReadPosition(context);
    if (left <= 0) {
        return 0;
    }
    if (source.carryLength == sourceBufferSize) {
        source.carryLength = 0;
    }
    memmove(source.buffer, source.scanPosition, static_cast<size_t>(source.carryLength));
    const auto wanted = static_cast<size_t>(std::min(sourceBufferSize - source.carryLength, left));
    const auto count = static_cast<int32_t>(mifReadStream(context, source.buffer + source.carryLength, wanted));
    if (replay.readingStretch != 0) {
        replay.stretchPosition += count;
    } else {
        source.bytesRead += count;
    }
    source.scanPosition = source.buffer;
    source.bufferEnd = source.buffer + source.carryLength + count;
    *source.bufferEnd = '>';
    source.carryLength = 0;
    return count;
}

void mifReadFirstStretch(MifContext *context)
{
    MifSourceState &source = context->source;
    source.scanPosition = source.buffer;
    do {
        source.carryLength = static_cast<int32_t>(source.bufferEnd - source.buffer);
    } while (source.carryLength < sourceBufferSize && mifReadSourceFile(context) > 0);
    source.carryLength = 0;
}

char *mifCarryOver(MifContext *context, char *step)
{
    MifSourceState &source = context->source;
    if (!mifMoreToRead(context)) {
        return source.bufferEnd;
    }
    source.carryLength = static_cast<int32_t>(source.bufferEnd - step);
    return step;
}

char *mifSkipComments(MifContext *context)
{
    MifSourceState &source = context->source;
    char *comment = source.scanPosition;
    char *position = mifFindLineEnd(comment + 1, source.bufferEnd);
    for (int bytes = 0; bytes < 2 && mifNewLine(*position); ++bytes) { // there is none after the text
        ++position;
    }
    source.scanPosition = position != source.bufferEnd ? mifEatWhiteSpace(position) : mifCarryOver(context, comment);
    return source.scanPosition;
}
