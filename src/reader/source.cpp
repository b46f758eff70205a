#include "reader/source.h"

#include <algorithm>
#include <cstring>

namespace
{

// The first line-end byte in [begin, end), or end.
char *findLineEnd(char *begin, char *end)
{
    auto *lineFeed = static_cast<char *>(memchr(begin, '\n', static_cast<size_t>(end - begin)));
    char *limit = lineFeed != nullptr ? lineFeed : end;
    auto *carriageReturn = static_cast<char *>(memchr(begin, '\r', static_cast<size_t>(limit - begin)));
    return carriageReturn != nullptr ? carriageReturn : limit;
}

// Reads up to count bytes; what a stream should not answer counts as nothing.
int32_t readStream(MifContext *context, char *destination, int32_t count)
{
    HostStream *stream = context->host.stream;
    const auto wanted = static_cast<size_t>(count);
    const size_t delivered = stream->read(stream, destination, wanted);
    return delivered <= wanted ? static_cast<int32_t>(delivered) : 0;
}

// A stream that delivers more than the document's stated size stays at its end.
int32_t positionAfter(int32_t position, int32_t count, int32_t totalSize)
{
    return static_cast<int32_t>(std::min<int64_t>(int64_t{position} + count, totalSize));
}

} // namespace

bool mifMoreToRead(const MifContext *context)
{
    const MifReplayState &replay = context->replay;
    const int32_t position = replay.readingStretch != 0 ? replay.stretchPosition : context->source.bytesRead;
    return position < context->source.totalSize;
}

int32_t mifReadSourceFile(MifContext *context)
{
    MifSourceState &source = context->source;
    MifReplayState &replay = context->replay;
    if (!mifMoreToRead(context)) {
        return 0;
    }
    if (source.carryLength == sourceBufferSize) {
        source.carryLength = 0;
    }
    memmove(source.buffer, source.scanPosition, static_cast<size_t>(source.carryLength));
    const int32_t count =
        readStream(context, source.buffer + source.carryLength, sourceBufferSize - source.carryLength);
    if (replay.readingStretch != 0) {
        replay.stretchPosition = positionAfter(replay.stretchPosition, count, source.totalSize);
    } else {
        source.bytesRead = positionAfter(source.bytesRead, count, source.totalSize);
        source.filePosition = source.bytesRead - source.carryLength - count;
    }
    source.scanPosition = source.buffer;
    source.bufferEnd = source.buffer + source.carryLength + count;
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

char *mifEatWhiteSpace(MifContext *context)
{
    MifSourceState &source = context->source;
    char *position = source.scanPosition + 1;
    while (position < source.bufferEnd && mifIsWhiteSpace(*position)) {
        ++position;
    }
    source.scanPosition = position;
    return position;
}

char *mifSkipComments(MifContext *context)
{
    MifSourceState &source = context->source;
    char *comment = source.scanPosition;
    char *position = findLineEnd(comment + 1, source.bufferEnd);
    for (int bytes = 0; bytes < 2 && position < source.bufferEnd && mifNewLine(*position); ++bytes) {
        ++position;
    }
    source.scanPosition = position;
    if (position == source.bufferEnd) {
        source.carryLength = mifMoreToRead(context) ? static_cast<int32_t>(source.bufferEnd - comment) : 0;
        return position;
    }
    return mifIsWhiteSpace(*position) ? mifEatWhiteSpace(context) : position;
}
