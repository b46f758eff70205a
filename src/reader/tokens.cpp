#include "reader/tokens.h"

#include <cstring>
#include <initializer_list>

#include "mifreader/tokens.h"
#include "reader/host_memory.h"

namespace
{

uint8_t *storeU8(uint8_t *place, uint32_t value)
{
    *place = static_cast<uint8_t>(value);
    return place + 1;
}

uint8_t *storeU32(uint8_t *place, uint32_t value)
{
    place[0] = static_cast<uint8_t>(value);
    place[1] = static_cast<uint8_t>(value >> 8);
    place[2] = static_cast<uint8_t>(value >> 16);
    place[3] = static_cast<uint8_t>(value >> 24);
    return place + 4;
}

uint8_t *storeI32(uint8_t *place, int32_t value)
{
    return storeU32(place, static_cast<uint32_t>(value));
}

// A place in the queue for a token that does not fit, or null when the token is lost.
uint8_t *queueToken(MifContext *context, uint32_t length)
{
    MifOutputState &output = context->output;
    output.outputEnd = output.outputPosition; // so that no later token overtakes this one
    if (output.failed != 0 || length > output.bufferSize) {
        output.failed = 1;
        return nullptr;
    }
    auto *token = static_cast<MifQueuedToken *>(mifAllocateBytes(context, sizeof(MifQueuedToken) + length));
    if (token == nullptr) {
        output.failed = 1;
        return nullptr;
    }
    token->next = nullptr;
    token->length = length;
    output.queue.append(token);
    return reinterpret_cast<uint8_t *>(token + 1);
}

// Begins a token of `length` bytes: the place of its payload, or null when the token is lost.
uint8_t *beginToken(MifContext *context, uint8_t code, uint32_t length)
{
    MifOutputState &output = context->output;
    uint8_t *place = output.outputPosition;
    if (length <= static_cast<size_t>(output.outputEnd - place)) {
        output.outputPosition = place + length;
    } else {
        place = queueToken(context, length);
        if (place == nullptr) {
            return nullptr;
        }
    }
    return storeU32(storeU8(place, code), length);
}

// A token without payload.
int writeBareToken(MifContext *context, uint8_t code)
{
    return beginToken(context, code, MIF_TOKEN_HEADER_SIZE) != nullptr;
}

// A token whose payload is one byte.
int writeByteToken(MifContext *context, uint8_t code, uint32_t value)
{
    uint8_t *place = beginToken(context, code, MIF_TOKEN_HEADER_SIZE + 1);
    if (place == nullptr) {
        return 0;
    }
    storeU8(place, value);
    return 1;
}

// A token whose payload is one number.
int writeNumberToken(MifContext *context, uint8_t code, uint32_t value)
{
    uint8_t *place = beginToken(context, code, MIF_TOKEN_HEADER_SIZE + 4);
    if (place == nullptr) {
        return 0;
    }
    storeU32(place, value);
    return 1;
}

int writePageSetup(MifContext *context)
{
    uint8_t *place = beginToken(context, TOKEN_PAGE_SETUP, MIF_TOKEN_HEADER_SIZE + 33);
    if (place == nullptr) {
        return 0;
    }
    const MifPageState &pages = context->pages;
    const MifParagraphStyle &style = context->formats.currentStyle;
    place = storeU8(place, 2);
    for (const int32_t value : {pages.pageWidth, pages.pageHeight, style.leftIndent, pages.topMargin, style.rightIndent,
                                pages.bottomMargin, -1, -1}) {
        place = storeI32(place, value);
    }
    return 1;
}

} // namespace

void mifBeginOutput(MifContext *context, uint8_t *buffer, uint32_t bufferSize)
{
    MifOutputState &output = context->output;
    output.outputStart = buffer;
    output.outputPosition = buffer;
    output.outputEnd = buffer + bufferSize;
    output.bufferSize = bufferSize;
    output.outputLimit = bufferSize * 9U / 10U;
    while (!output.queue.empty() &&
           output.queue.head->length <= static_cast<size_t>(output.outputEnd - output.outputPosition)) {
        MifQueuedToken *token = output.queue.takeFirst();
        memcpy(output.outputPosition, token + 1, token->length);
        output.outputPosition += token->length;
        mifRelease(context, token);
    }
    if (!output.queue.empty()) {
        output.outputEnd = output.outputPosition;
        if (output.queue.head->length > bufferSize) {
            output.failed = 1;
        }
    }
}

void mifFreeQueuedTokens(MifContext *context)
{
    while (MifQueuedToken *token = context->output.queue.takeFirst()) {
        mifRelease(context, token);
    }
}

int mifWritePreamble(MifContext *context)
{
    return writePageSetup(context) && writeByteToken(context, TOKEN_LINE_SPACING, MIF_SPACING_SINGLE) &&
           writeNumberToken(context, TOKEN_CHARSET, MIF_CHARSET_WINDOWS_1252);
}

int mifWriteText(MifContext *context, const char *text, size_t length)
{
    const auto textLength = static_cast<uint32_t>(length); // at most a source buffer
    uint8_t *place = beginToken(context, TOKEN_TEXT, MIF_TOKEN_HEADER_SIZE + 4 + textLength);
    if (place == nullptr) {
        return 0;
    }
    memcpy(storeU32(place, textLength), text, length);
    return 1;
}

int mifWriteTab(MifContext *context)
{
    return writeByteToken(context, TOKEN_TAB, 0);
}

int mifWriteLineBreak(MifContext *context)
{
    return writeBareToken(context, TOKEN_LINE_BREAK);
}

int mifWriteParaEnd(MifContext *context)
{
    return writeBareToken(context, TOKEN_PARA_END);
}

int mifWriteCellEnd(MifContext *context)
{
    return writeBareToken(context, TOKEN_CELL_END);
}

// The short form of the row layout: no columns.
int mifWriteTableEnd(MifContext *context)
{
    return writeNumberToken(context, TOKEN_TABLE_ROW, 0);
}
