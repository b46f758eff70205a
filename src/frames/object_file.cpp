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

// A piece of the document's text, and how much of it a read or a skip has taken up.
struct Chunk {
    char *text;
    const char *position;
    const char *end;
    bool atLineStart;
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

void rewind(MifObjectFile &file)
{
    file.readCursor = file.frame->object.dataStart;
    file.rawPosition = file.readCursor;
    file.position = 0;
    // The data start behind the first line's `&`.
    file.readAtLineStart = 0;
    file.rawAtLineStart = 0;
    file.dataEnded = 0;
    file.hexMode = 0;
}

// The text from the read cursor on that holds `count` bytes. The caller releases the text, which is null when memory is
// exhausted.
Chunk readChunk(MifContext *context, const MifObjectFile &file, int32_t count)
{
    const int64_t rest = std::max(context->source.totalSize - file.readCursor, 1);
    const auto size = static_cast<size_t>(std::min(count * textPerByte, rest));
    HostServices *services = context->host.services;
    auto *text = static_cast<char *>(services->allocateZeroed(&services->memoryHandleArea, 1, size));
    if (text == nullptr) {
        return {nullptr, nullptr, nullptr, false};
    }
    seekStream(context, file.readCursor);
    size_t length = 0;
    while (length < size) {
        const size_t delivered = mifReadStream(context, text + length, size - length);
        if (delivered == 0) {
            break;
        }
        length += delivered;
    }
    return {text, text, text + length, file.readAtLineStart != 0};
}

// Decodes up to count bytes into destination, or only counts them when that is null. Returns their number.
int32_t decodeChunk(MifObjectFile &file, Chunk &chunk, uint8_t *destination, int32_t count)
{
    int32_t produced = 0;
    while (chunk.position < chunk.end && produced < count && file.dataEnded == 0) {
        if (*chunk.position == '=') {
            file.dataEnded = 1;
            file.hexMode = 0;
            ++chunk.position;
            break;
        }
        if (*chunk.position == '&' && chunk.atLineStart) {
            ++chunk.position;
        }
        chunk.atLineStart = false;
        uint8_t byte = 0;
        while (produced < count && mifInDataLine(chunk.position, chunk.end)) {
            if (!mifDecodeData(chunk.position, chunk.end, file.hexMode, byte)) {
                continue;
            }
            if (destination != nullptr) {
                destination[produced] = byte;
            }
            ++produced;
        }
        while (produced < count && chunk.position < chunk.end && mifNewLine(*chunk.position)) {
            ++chunk.position;
            chunk.atLineStart = true;
        }
    }
    return produced;
}

// Decodes from the read cursor. Text that ends before the wanted bytes and before the facet gives 0.
int32_t decode(MifContext *context, MifObjectFile &file, uint8_t *destination, int32_t count)
{
    if (count <= 0 || file.frame->object.dataStart == 0) {
        return 0;
    }
    Chunk chunk = readChunk(context, file, count);
    if (chunk.text == nullptr) {
        return 0;
    }
    int32_t produced = decodeChunk(file, chunk, destination, count);
    const auto consumed = static_cast<int32_t>(chunk.position - chunk.text);
    file.rawPosition = file.readCursor + consumed;
    file.rawAtLineStart = chunk.atLineStart ? 1 : 0;
    if (produced == count) {
        file.readCursor = file.rawPosition;
        file.readAtLineStart = file.rawAtLineStart;
    } else if (chunk.position == chunk.end) {
        produced = 0;
    }
    mifRelease(context, chunk.text);
    seekStream(context, file.streamReturnPosition);
    return produced;
}

// Skips count bytes of the open object. Returns count, or 0 when there are not so many.
int32_t mifFileSeekSet(MifFileHandle *handle, int32_t count)
{
    const int32_t skipped = decode(handle->context, handle->context->frames.file, nullptr, count);
    return skipped == count ? count : 0;
}

} // namespace

int32_t mifFileOpen(MifFileHandle *handle)
{
    if (handle == nullptr || handle->context == nullptr) {
        return 0;
    }
    MifContext *context = handle->context;
    const MifFrameRecord *frame = mifFindFrame(context, mifParseInteger(handle->name));
    if (frame == nullptr) {
        return 0;
    }
    MifObjectFile &file = context->frames.file;
    file.frame = frame;
    file.streamReturnPosition = mifStreamPosition(context, context->source.bufferEnd);
    rewind(file);
    return 1;
}

int32_t mifFileRead(MifFileHandle *handle, void *destination, int32_t count)
{
    MifObjectFile *file = openFile(handle);
    if (file == nullptr || count <= 0) {
        return 0;
    }
    memset(destination, 0, static_cast<size_t>(count));
    const int32_t delivered = decode(handle->context, *file, static_cast<uint8_t *>(destination), count);
    file->position += delivered;
    return delivered;
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
        if (file->readCursor != 0) {
            seekStream(handle->context, file->readCursor);
        }
        file->position += mifFileSeekSet(handle, offset);
        break;
    case MIF_SEEK_CURRENT:
        file->readCursor = file->rawPosition;
        file->readAtLineStart = file->rawAtLineStart;
        file->position += mifFileSeekSet(handle, offset);
        break;
    case MIF_SEEK_END:
        file->position = file->frame->object.dataLength;
        break;
    default:
        break;
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
    seekStream(handle->context, file->streamReturnPosition);
    file->frame = nullptr;
    return 1;
}
