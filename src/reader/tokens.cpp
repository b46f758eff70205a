#include "reader/tokens.h"

#include <charconv>
#include <cstring>
#include <initializer_list>
#include <iterator>

#include "mifreader/tokens.h"
#include "reader/host_memory.h"
#include "reader/source.h"
#include "reader/token_bytes.h"

namespace
{

// A place in the queue for a token that does not fit, or null when the token is lost.
uint8_t *queueToken(MifContext *context, uint64_t length)
{
    MifOutputState &output = context->output;
    output.outputEnd = output.outputPosition; // so that no later token overtakes this one
    output.stopPosition = output.outputStart;
    if (length > output.bufferSize) {
        mifFail(context, MIF_REASON_SMALL_BUFFER);
    }
    if (output.failed != 0) {
        return nullptr;
    }
    auto *token =
        static_cast<MifQueuedToken *>(mifAllocateBytes(context, sizeof(MifQueuedToken) + static_cast<size_t>(length)));
    if (token == nullptr) {
        mifFail(context, MIF_REASON_MEMORY);
        return nullptr;
    }
    token->next = nullptr;
    token->length = static_cast<uint32_t>(length);
    output.queue.append(token);
    return reinterpret_cast<uint8_t *>(token + 1);
}

int writePageSetup(MifContext *context)
{
    uint8_t *place = mifBeginToken(context, TOKEN_PAGE_SETUP, MIF_TOKEN_HEADER_SIZE + 33);
    if (place == nullptr) {
        return 0;
    }
    const MifPageState &pages = context->pages;
    const MifParagraphStyle &style = context->formats.currentStyle;
    place = mifStoreU8(place, 2);
    for (const int32_t value : {pages.pageWidth, pages.pageHeight, style.leftIndent, pages.topMargin, style.rightIndent,
                                pages.bottomMargin, -1, -1}) {
        place = mifStoreI32(place, value);
    }
    return 1;
}

} // namespace

uint8_t *mifBeginToken(MifContext *context, uint8_t code, uint64_t length)
{
    MifOutputState &output = context->output;
    uint8_t *place = output.outputPosition;
    if (length <= static_cast<uint64_t>(output.outputEnd - place)) {
        output.outputPosition = place + length;
    } else {
        place = queueToken(context, length);
        if (place == nullptr) {
            return nullptr;
        }
    }
    return mifStoreU32(mifStoreU8(place, code), static_cast<uint32_t>(length));
}

int mifWriteBareToken(MifContext *context, uint8_t code)
{
    return mifBeginToken(context, code, MIF_TOKEN_HEADER_SIZE) != nullptr;
}

int mifWriteByteToken(MifContext *context, uint8_t code, uint32_t value)
{
    uint8_t *place = mifBeginToken(context, code, MIF_TOKEN_HEADER_SIZE + 1);
    if (place == nullptr) {
        return 0;
    }
    mifStoreU8(place, value);
    return 1;
}

int mifWriteNumberToken(MifContext *context, uint8_t code, uint32_t value)
{
    uint8_t *place = mifBeginToken(context, code, MIF_TOKEN_HEADER_SIZE + 4);
    if (place == nullptr) {
        return 0;
    }
    mifStoreU32(place, value);
    return 1;
}

void mifFail(MifContext *context, uint32_t reason)
{
    MifOutputState &output = context->output;
    if (output.failed == 0) {
        output.failure = {reason, mifFilePosition(context)};
    }
    output.failed = 1;
}

void mifBeginOutput(MifContext *context, uint8_t *buffer, uint32_t bufferSize)
{
    MifOutputState &output = context->output;
    output.outputStart = buffer;
    output.outputPosition = buffer;
    output.outputEnd = buffer + bufferSize;
    output.bufferSize = bufferSize;
    output.outputLimit = static_cast<uint32_t>(uint64_t{bufferSize} * 9U / 10U);
    output.stopPosition = buffer + output.outputLimit;
    if (output.outputLimit == 0) {
        mifFail(context, MIF_REASON_SMALL_BUFFER);
        return;
    }
    while (!output.queue.empty() &&
           output.queue.head->length <= static_cast<size_t>(output.outputEnd - output.outputPosition)) {
        MifQueuedToken *token = output.queue.takeFirst();
        memcpy(output.outputPosition, token + 1, token->length);
        output.outputPosition += token->length;
        mifRelease(context, token);
    }
    if (!output.queue.empty()) {
        output.outputEnd = output.outputPosition;
        output.stopPosition = buffer;
        if (output.queue.head->length > bufferSize) {
            mifFail(context, MIF_REASON_SMALL_BUFFER);
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
    return writePageSetup(context) && mifWriteByteToken(context, TOKEN_LINE_SPACING, MIF_SPACING_SINGLE) &&
           mifWriteNumberToken(context, TOKEN_CHARSET,
                               context->extension.version != 0 ? uint32_t{MIF_CHARSET_UTF_8}
                                                               : uint32_t{MIF_CHARSET_WINDOWS_1252});
}

int mifWriteText(MifContext *context, const char *text, size_t length)
{
    const auto textLength = static_cast<uint32_t>(length); // at most a source buffer
    uint8_t *place = mifBeginToken(context, TOKEN_TEXT, MIF_TOKEN_HEADER_SIZE + 4 + textLength);
    if (place == nullptr) {
        return 0;
    }
    memcpy(mifStoreU32(place, textLength), text, length);
    return 1;
}

int mifWriteParaFormat(MifContext *context, const MifParagraphStyle &style)
{
    uint8_t *place = mifBeginToken(context, TOKEN_PARA_FORMAT, MIF_TOKEN_HEADER_SIZE + 13);
    if (place == nullptr) {
        return 0;
    }
    for (const int32_t indent : {style.leftIndent, style.rightIndent, style.firstIndent}) {
        place = mifStoreI32(place, indent);
    }
    mifStoreU8(place, static_cast<uint32_t>(style.alignment));
    return 1;
}

int mifWriteLineSpacing(MifContext *context, uint8_t lineSpacing)
{
    return mifWriteByteToken(context, TOKEN_LINE_SPACING, lineSpacing);
}

int mifWriteFont(MifContext *context, const MifParagraphStyle &style)
{
    uint8_t *place = mifBeginToken(context, TOKEN_FONT, MIF_TOKEN_HEADER_SIZE + 8);
    if (place == nullptr) {
        return 0;
    }
    mifStoreI32(mifStoreI32(place, style.hostFontNumber), style.fontSize);
    return 1;
}

int mifWriteAttribute(MifContext *context, uint32_t value)
{
    return mifWriteNumberToken(context, TOKEN_ATTRIBUTE, value);
}

int mifWriteTextColor(MifContext *context, uint32_t color)
{
    uint8_t *place = mifBeginToken(context, TOKEN_TEXT_COLOR, MIF_TOKEN_HEADER_SIZE + 5);
    if (place == nullptr) {
        return 0;
    }
    mifStoreU32(mifStoreU8(place, 0), color);
    return 1;
}

int mifWriteTabStops(MifContext *context, const MifParagraphStyle &style)
{
    const auto count = static_cast<uint32_t>(style.tabCount);
    uint8_t *place = mifBeginToken(context, TOKEN_TAB_STOPS, MIF_TOKEN_HEADER_SIZE + 4 + uint64_t{count} * 5);
    if (place == nullptr) {
        return 0;
    }
    place = mifStoreU32(place, count);
    for (int32_t index = 0; index < style.tabCount; ++index) {
        const bool isStored = index < style.tabsStored;
        const int32_t kind = isStored ? style.tabKinds[index] : MIF_TAB_LEFT;
        place = mifStoreI32(mifStoreU8(place, static_cast<uint32_t>(kind)), isStored ? style.tabPositions[index] : 0);
    }
    return 1;
}

int mifWriteTab(MifContext *context)
{
    return mifWriteByteToken(context, TOKEN_TAB, 0);
}

int mifWriteLineBreak(MifContext *context)
{
    return mifWriteBareToken(context, TOKEN_LINE_BREAK);
}

int mifWriteParaEnd(MifContext *context)
{
    return mifWriteBareToken(context, TOKEN_PARA_END);
}

int mifWriteTableRow(MifContext *context, int32_t columns)
{
    const MifTableState &tables = context->tables;
    const auto count = static_cast<uint32_t>(columns);
    uint8_t *place = mifBeginToken(context, TOKEN_TABLE_ROW, MIF_TOKEN_HEADER_SIZE + 25 + uint64_t{count} * 4);
    if (place == nullptr) {
        return 0;
    }
    place = mifStoreU32(place, count);
    for (int32_t column = 0; column < columns; ++column) {
        place = mifStoreI32(place, tables.columnWidths[column]);
    }
    for (const uint32_t constant : tables.rowConstants) {
        place = mifStoreU32(place, constant);
    }
    mifStoreU8(mifStoreI32(place, tables.rowOffset), 0);
    return 1;
}

int mifWriteCellEnd(MifContext *context)
{
    return mifWriteBareToken(context, TOKEN_CELL_END);
}

// The short form of the row layout: no columns.
int mifWriteTableEnd(MifContext *context)
{
    return mifWriteNumberToken(context, TOKEN_TABLE_ROW, 0);
}

// What the constants mean is the host framework's.
int mifWriteFrame(MifContext *context, const MifFrameRecord &frame)
{
    char id[16];
    const auto idLength = static_cast<size_t>(std::to_chars(std::begin(id), std::end(id), frame.id).ptr - id);
    uint8_t *place = mifBeginToken(context, TOKEN_FRAME, MIF_TOKEN_HEADER_SIZE + 78 + idLength);
    if (place == nullptr) {
        return 0;
    }
    memcpy(place, id, idLength);
    place = mifStoreU8(place + idLength, 0);
    place = mifStoreI32(place, frame.width);
    place = mifStoreI32(place, frame.height);
    for (const uint32_t value :
         {frame.object.kind, 0U, 100U, 100U, 0U, 0U, 0U, 0U, 0U, 0U, 0U, 0U, 180U, 0U, 180U, 0U}) {
        place = mifStoreU32(place, value);
    }
    mifStoreU32(mifStoreU8(place, 255), 0);
    return 1;
}
