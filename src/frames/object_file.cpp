// The data are decoded anew at every read, from where they stand in the document's own stream, which is put back
// afterwards to where the conversion goes on.
#include "frames/object_file.h"

#include <algorithm>
#include <cstring>

#include "frames/data_lines.h"
#include "frames/frames.h"
#include "reader/host_memory.h"
#include "reader/units.h"

namespace
{

// Two digits a byte, with room for the `&` and the line end of every line.
constexpr int64_t textPerByte = 4;

// A piece of the document's text.
struct Chunk {
    char *text; // null when memory is exhausted
    size_t length;
};

// The file that is open in the handle's document, or null.
MifObjectFile *openFile(const MifFileHandle *handle)
{
    if (handle == nullptr || handle->context == nullptr || handle->context->frames.file.frame == nullptr) {
        return nullptr;
    }
    return &handle->context->frames.file;
}

void seekStream(MifContext *context, int32_t position)
{
    HostStream *stream = context->host.stream;
    stream->seek(stream, position, 0);
}

// Puts the stream back to where the fill cycle will read next.
void returnStream(MifContext *context)
{
    seekStream(context, mifPositionOf(context, context->source.bufferEnd));
}

// The data start after the first line's `&`.
void rewind(MifObjectFile &file)
{
    file.readCursor = {file.frame->object.dataStart, 0, 0, 0};
    file.rawPosition = file.readCursor;
    file.position = 0;
}

void moveOn(MifObjectFile &file, int32_t count)
{
    file.position = mifSaturate(int64_t{file.position} + count);
}

// The text from the cursor on that holds `count` bytes. The caller releases it.
Chunk readChunk(MifContext *context, int32_t position, int32_t count)
{
    const int64_t rest = std::max(context->source.totalSize - position, 1);
    const auto size = static_cast<size_t>(std::min(count * textPerByte, rest));
    auto *text = static_cast<char *>(mifAllocateZeroedBytes(context, size));
    size_t length = 0;
    if (text != nullptr) {
        seekStream(context, position);
        while (length < size) {
            const size_t delivered = mifReadStream(context, text + length, size - length);
            if (delivered == 0) {
                break;
            }
            length += delivered;
        }
    }
    return {text, length};
}

// Passes the `&` of a line, or in the extended stream the whole of a marker. A line that is not there far enough to
// tell ends the chunk.
template <bool isExtended>
const char *passLineStart(const char *position, const char *end)
{
    if constexpr (isExtended) {
        constexpr ptrdiff_t markerSize = 3;
        if (end - position <= markerSize) {
            return end;
        }
        if (mifNewLine(position[markerSize]) && mifIsMarkerLine({position, markerSize})) {
            return position + markerSize;
        }
    }
    return position + 1;
}

// Decodes up to count bytes into destination, or only counts them when that is null, moving the cursor along. Returns
// their number.
template <bool isExtended>
int32_t decodeChunk(const Chunk &chunk, MifDataCursor &cursor, uint8_t *destination, int32_t count)
{
    const char *position = chunk.text;
    const char *end = chunk.text + chunk.length;
    int32_t produced = 0;
    while (position < end && produced < count && cursor.ended == 0) {
        if (*position == '=' && (!isExtended || cursor.atLineStart != 0)) {
            cursor.ended = 1;
            ++position;
            break;
        }
        if (*position == '&' && cursor.atLineStart != 0) {
            position = passLineStart<isExtended>(position, end);
        }
        cursor.atLineStart = 0;
        uint8_t byte = 0;
        while (produced < count && mifInDataLine<isExtended>(position, end)) {
            if (!mifDecodeData<isExtended>(position, end, cursor.hexMode, byte)) {
                continue;
            }
            if (destination != nullptr) {
                destination[produced] = byte;
            }
            ++produced;
        }
        while (produced < count && position < end && mifNewLine(*position)) {
            ++position;
            cursor.atLineStart = 1;
        }
    }
    cursor.position += static_cast<int32_t>(position - chunk.text);
    return produced;
}

// Decodes from the read cursor. Text that ends before the wanted bytes and before the facet gives 0.
int32_t decode(MifContext *context, uint8_t *destination, int32_t count)
{
    MifObjectFile &file = context->frames.file;
    if (count <= 0 || file.frame->object.dataStart == 0) {
        return 0;
    }
    const int32_t start = file.readCursor.position;
    const Chunk chunk = readChunk(context, start, count);
    if (chunk.text == nullptr) {
        returnStream(context); // from where a seek may have left it
        return 0;
    }
    if (destination != nullptr) {
        memset(destination, 0, static_cast<size_t>(count));
    }
    file.rawPosition = file.readCursor;
    int32_t produced = context->extension.version != 0
                           ? decodeChunk<true>(chunk, file.rawPosition, destination, count)
                           : decodeChunk<false>(chunk, file.rawPosition, destination, count);
    if (produced == count) {
        file.readCursor = file.rawPosition;
    } else if (static_cast<size_t>(file.rawPosition.position - start) == chunk.length) {
        produced = 0;
    }
    file.readCursor.ended = file.rawPosition.ended;
    mifRelease(context, chunk.text);
    returnStream(context);
    return produced;
}

} // namespace

int32_t mifFileOpen(MifFileHandle *handle)
{
    if (handle == nullptr || handle->context == nullptr) {
        return 0;
    }
    const MifFrameRecord *frame = mifFindFrame(handle->context, mifParseInteger(handle->name));
    if (frame == nullptr) {
        return 0;
    }
    MifObjectFile &file = handle->context->frames.file;
    file.frame = frame;
    rewind(file);
    return 1;
}

int32_t mifFileRead(MifFileHandle *handle, void *destination, int32_t count)
{
    MifObjectFile *file = openFile(handle);
    if (file == nullptr) {
        return 0;
    }
    const int32_t delivered = decode(handle->context, static_cast<uint8_t *>(destination), count);
    moveOn(*file, delivered);
    return delivered;
}

int32_t mifFileSeekSet(MifFileHandle *handle, int32_t count)
{
    const int32_t skipped = decode(handle->context, nullptr, count);
    return skipped == count ? count : 0;
}

int32_t mifFileSeek(MifFileHandle *handle, int32_t offset, int32_t origin)
{
    MifObjectFile *file = openFile(handle);
    if (file == nullptr) {
        return 0;
    }
    switch (origin) {
    case MIF_SEEK_START:
        rewind(*file);
        if (file->frame->object.dataStart != 0) {
            seekStream(handle->context, file->frame->object.dataStart);
        }
        break;
    case MIF_SEEK_CURRENT:
        file->readCursor = file->rawPosition;
        break;
    case MIF_SEEK_END:
        file->position = file->frame->object.dataLength;
        return 1;
    default:
        return 1;
    }
    if (offset > 0) {
        moveOn(*file, mifFileSeekSet(handle, offset));
    }
    return 1;
}

int32_t mifFileTell(MifFileHandle *handle)
{
    const MifObjectFile *file = openFile(handle);
    return file != nullptr ? file->position : -1;
}

int32_t mifFileClose(MifFileHandle *handle)
{
    MifObjectFile *file = openFile(handle);
    if (file == nullptr) {
        return 0;
    }
    seekStream(handle->context, 0);
    returnStream(handle->context);
    rewind(*file);
    return 1;
}
