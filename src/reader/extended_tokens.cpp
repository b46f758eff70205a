#include "reader/extended_tokens.h"

#include <algorithm>
#include <cstring>

#include "reader/token_bytes.h"

namespace
{

constexpr uint64_t textHead = 4;
constexpr uint64_t rulingSize = 9;
constexpr uint64_t fillSize = 5;

std::string_view viewOf(const char *text)
{
    return text != nullptr ? text : std::string_view{};
}

uint8_t *storeRuling(uint8_t *place, const MifRuling *ruling)
{
    const bool isDrawn = ruling != nullptr && ruling->lines != 0;
    place = mifStoreU8(place, isDrawn ? ruling->lines : 0);
    place = mifStoreI32(place, isDrawn ? ruling->width : 0);
    return mifStoreU32(place, isDrawn ? mifColorValue(ruling->color) : 0);
}

uint8_t *storeFill(uint8_t *place, uint32_t fill, const MifColor *color)
{
    return mifStoreU32(mifStoreU8(place, fill), mifColorValue(color));
}

// The length of the first piece of a text that is written in several: whole characters.
size_t pieceOf(std::string_view text)
{
    constexpr size_t longest = sourceBufferSize;
    if (text.size() <= longest) {
        return text.size();
    }
    size_t length = longest;
    while ((static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) {
        --length;
    }
    return length;
}

} // namespace

int mifWriteRecord(MifContext *context, uint8_t code, std::initializer_list<int32_t> numbers,
                   std::initializer_list<std::string_view> texts)
{
    uint64_t length = MIF_TOKEN_HEADER_SIZE + 4 * numbers.size();
    for (const std::string_view text : texts) {
        length += textHead + text.size();
    }
    uint8_t *place = mifBeginToken(context, code, length);
    if (place == nullptr) {
        return 0;
    }
    for (const int32_t number : numbers) {
        place = mifStoreI32(place, number);
    }
    for (const std::string_view text : texts) {
        place = mifStoreText(place, text);
    }
    return 1;
}

int mifWriteUtf8(MifContext *context, std::string_view text)
{
    do {
        const size_t length = pieceOf(text);
        if (mifWriteRecord(context, TOKEN_TEXT, {}, {text.substr(0, length)}) == 0) {
            return 0;
        }
        text.remove_prefix(length);
    } while (!text.empty());
    return 1;
}

int mifWriteParagraph(MifContext *context, const MifExtendedParagraph &paragraph, const char *languageCode)
{
    const std::string_view tag = viewOf(paragraph.tag);
    const std::string_view language = viewOf(languageCode);
    uint8_t *place = mifBeginToken(context, TOKEN_PARAGRAPH,
                                   MIF_TOKEN_HEADER_SIZE + 16 + 2 * textHead + tag.size() + language.size());
    if (place == nullptr) {
        return 0;
    }
    for (const int32_t measure : {paragraph.spaceAbove, paragraph.spaceBelow, paragraph.leading}) {
        place = mifStoreI32(place, measure);
    }
    for (const int32_t value :
         {paragraph.keepsWithNext, paragraph.placement, paragraph.outlineLevel, paragraph.cellAlignment}) {
        place = mifStoreU8(place, static_cast<uint32_t>(value));
    }
    mifStoreText(mifStoreText(place, tag), language);
    return 1;
}

int mifWriteMode(MifContext *context, uint32_t mode, bool on)
{
    uint8_t *place = mifBeginToken(context, TOKEN_MODE, MIF_TOKEN_HEADER_SIZE + 2);
    if (place == nullptr) {
        return 0;
    }
    mifStoreU8(mifStoreU8(place, mode), on ? 1 : 0);
    return 1;
}

int mifWriteStops(MifContext *context, const MifTabList &tabs)
{
    uint8_t *place = mifBeginToken(context, TOKEN_TAB_STOPS, MIF_TOKEN_HEADER_SIZE + 4 + uint64_t{tabs.count} * 5);
    if (place == nullptr) {
        return 0;
    }
    place = mifStoreU32(place, tabs.count);
    std::for_each_n(tabs.stops, tabs.count, [&place](const MifTabStop &stop) {
        place = mifStoreI32(mifStoreU8(place, stop.kind), stop.position);
    });
    return 1;
}

int mifWriteLeaders(MifContext *context, const MifTabList &tabs)
{
    uint64_t length = MIF_TOKEN_HEADER_SIZE + 4;
    std::for_each_n(tabs.stops, tabs.count,
                    [&length](const MifTabStop &stop) { length += textHead + strlen(stop.leader); });
    uint8_t *place = mifBeginToken(context, TOKEN_TAB_LEADERS, length);
    if (place == nullptr) {
        return 0;
    }
    place = mifStoreU32(place, tabs.count);
    std::for_each_n(tabs.stops, tabs.count,
                    [&place](const MifTabStop &stop) { place = mifStoreText(place, stop.leader); });
    return 1;
}

int mifWriteTableOpen(MifContext *context, const MifTableFormat &table, int32_t columns, const int32_t *widths)
{
    const std::string_view tag = viewOf(table.tag);
    uint8_t *place = mifBeginToken(context, TOKEN_TABLE_OPEN,
                                   MIF_TOKEN_HEADER_SIZE + 4 + textHead + tag.size() + 2 + 4 + 4 +
                                       4 * static_cast<uint64_t>(columns) + tableEdges * rulingSize + 2 * fillSize);
    if (place == nullptr) {
        return 0;
    }
    place = mifStoreText(mifStoreI32(place, table.id), tag);
    place = mifStoreU8(mifStoreU8(place, table.alignment), table.titlePlace);
    place = mifStoreU32(mifStoreI32(place, table.leftIndent), static_cast<uint32_t>(columns));
    for (int32_t column = 0; column < columns; ++column) {
        place = mifStoreI32(place, widths[column]);
    }
    for (const MifRuling *ruling : table.rulings) {
        place = storeRuling(place, ruling);
    }
    place = storeFill(place, table.bodyFill, table.bodyColor);
    storeFill(place, table.headingFill, table.headingColor);
    return 1;
}

int mifWriteCell(MifContext *context, const MifExtendedCell &cell, int32_t columns, int32_t rows)
{
    uint8_t *place =
        mifBeginToken(context, TOKEN_CELL, MIF_TOKEN_HEADER_SIZE + 8 + 1 + fillSize + cellEdges * rulingSize + 4);
    if (place == nullptr) {
        return 0;
    }
    place = mifStoreU8(mifStoreI32(mifStoreI32(place, columns), rows), cell.states);
    place = storeFill(place, cell.fill, cell.color);
    for (const MifRuling *ruling : cell.rulings) {
        place = storeRuling(place, ruling);
    }
    mifStoreI32(place, cell.angle);
    return 1;
}

int mifWriteAnchor(MifContext *context, const MifPlacedFrame &frame)
{
    const std::string_view path = viewOf(frame.path);
    uint8_t *place = mifBeginToken(context, TOKEN_ANCHOR, MIF_TOKEN_HEADER_SIZE + 20 + 3 + textHead + path.size());
    if (place == nullptr) {
        return 0;
    }
    for (const int32_t number : {frame.id, frame.left, frame.top, frame.width, frame.height}) {
        place = mifStoreI32(place, number);
    }
    place = mifStoreU8(mifStoreU8(place, frame.place), frame.alignment);
    mifStoreText(mifStoreU8(place, 0), path);
    return 1;
}

int mifWriteDocumentField(MifContext *context, uint32_t field, std::string_view value)
{
    uint8_t *place = mifBeginToken(context, TOKEN_DOCUMENT, MIF_TOKEN_HEADER_SIZE + 1 + textHead + value.size());
    if (place == nullptr) {
        return 0;
    }
    mifStoreText(mifStoreU8(place, field), value);
    return 1;
}

int mifWriteLoss(MifContext *context, uint32_t kind, int32_t position)
{
    uint8_t *place = mifBeginToken(context, TOKEN_LOSS, MIF_TOKEN_HEADER_SIZE + 5);
    if (place == nullptr) {
        return 0;
    }
    mifStoreI32(mifStoreU8(place, kind), position);
    return 1;
}

int mifWriteLossTotal(MifContext *context, uint32_t kind, const MifLossCount &losses)
{
    uint8_t *place = mifBeginToken(context, TOKEN_LOSS_TOTAL, MIF_TOKEN_HEADER_SIZE + 9);
    if (place == nullptr) {
        return 0;
    }
    mifStoreI32(mifStoreU32(mifStoreU8(place, kind), losses.count), losses.first);
    return 1;
}
