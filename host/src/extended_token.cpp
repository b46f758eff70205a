#include <algorithm>
#include <iterator>

#include "payload.h"

namespace mifhost
{

namespace
{

template <typename Payload>
Ruling rulingOf(Payload &payload)
{
    return {payload.u8(), payload.i32(), payload.u32()};
}

template <typename Payload>
Fill fillOf(Payload &payload)
{
    return {payload.u8(), payload.u32()};
}

template <std::size_t count, typename Payload>
std::array<Ruling, count> rulingsOf(Payload &payload)
{
    std::array<Ruling, count> rulings{};
    std::generate(rulings.begin(), rulings.end(), [&payload] { return rulingOf(payload); });
    return rulings;
}

} // namespace

Token TokenDecoder::decodeExtended(Payload &payload)
{
    // The members of a braced list are read in the order in which they are written.
    switch (bytes_.front()) {
    case TOKEN_PARAGRAPH:
        return Paragraph{payload.i32(),
                         payload.i32(),
                         payload.i32(),
                         payload.flag(),
                         payload.enumerated(Placement::RightPage, "placement"),
                         payload.u8(),
                         payload.enumerated(CellAlignment::Bottom, "alignment in a cell"),
                         payload.text(),
                         payload.text()};
    case TOKEN_NUMBER:
        return Number{payload.text()};
    case TOKEN_MODE:
        return ModeChange{payload.enumerated(ExtendedMode::LowerCase, "mode"), payload.flag()};
    case TOKEN_FONT_SIZE:
        return FontSize{payload.u32()};
    case TOKEN_TAB_LEADERS:
        return decodeTabLeaders(payload);
    case TOKEN_NOTE_BEGIN:
        return NoteBegin{payload.i32()};
    case TOKEN_NOTE_END:
        return NoteEnd{};
    case TOKEN_NOTE_REFERENCE:
        return NoteReference{payload.i32()};
    case TOKEN_MARKER:
        return Marker{payload.i32(), payload.text(), payload.text()};
    case TOKEN_XREF_BEGIN:
        return XRefBegin{payload.text(), payload.text(), payload.text()};
    case TOKEN_XREF_END:
        return XRefEnd{};
    case TOKEN_ANCHOR:
        return Anchor{payload.i32(),
                      payload.i32(),
                      payload.i32(),
                      payload.i32(),
                      payload.i32(),
                      payload.enumerated(FramePlace::RunIn, "place of a frame"),
                      payload.enumerated(AnchorAlignment::Outside, "alignment of a frame"),
                      payload.flag(),
                      payload.text()};
    case TOKEN_BOX_BEGIN:
        return BoxBegin{payload.i32()};
    case TOKEN_BOX_END:
        return BoxEnd{};
    case TOKEN_DOCUMENT:
        return DocumentField{payload.enumerated(DocumentFieldKind::Encoding, "field of a document"), payload.text()};
    case TOKEN_PAGE_SIZE:
        return PageSize{payload.i32(), payload.i32()};
    case TOKEN_LOSS:
        return Loss{payload.enumerated(LossKind::Object, "kind of loss"), payload.i32()};
    case TOKEN_LOSS_TOTAL:
        return LossTotal{payload.enumerated(LossKind::Object, "kind of loss"), payload.u32(), payload.i32()};
    default:
        return decodeTablePart(payload);
    }
}

Token TokenDecoder::decodeTablePart(Payload &payload)
{
    switch (bytes_.front()) {
    case TOKEN_TABLE_OPEN:
        return decodeTableOpen(payload);
    case TOKEN_TITLE_BEGIN:
        return TitleBegin{};
    case TOKEN_TITLE_END:
        return TitleEnd{};
    case TOKEN_ROW:
        return Row{payload.enumerated(RowKind::Footing, "kind of row")};
    case TOKEN_CELL:
        return Cell{payload.u32(), payload.u32(), payload.u8(), fillOf(payload), rulingsOf<4>(payload), payload.i32()};
    default: // checkedLength lets nothing else through
        return TableClose{};
    }
}

Token TokenDecoder::decodeTabLeaders(Payload &payload)
{
    leaders_.clear();
    for (std::uint32_t left = payload.u32(); left > 0; --left) {
        leaders_.push_back(payload.text());
    }
    return TabLeaders{leaders_};
}

Token TokenDecoder::decodeTableOpen(Payload &payload)
{
    TableOpen table{payload.i32(),
                    payload.text(),
                    static_cast<std::uint8_t>(payload.enumerated(Alignment::LeftRight, "alignment")),
                    payload.enumerated(TitlePlace::None, "place of a title"),
                    payload.i32(),
                    {},
                    {},
                    {},
                    {}};
    const std::size_t count = payload.count(4, tableOpenTail);
    columnWidths_.clear();
    columnWidths_.reserve(count);
    std::generate_n(std::back_inserter(columnWidths_), count, [&payload] { return payload.i32(); });
    table.columnWidths = columnWidths_;
    table.rulings = rulingsOf<8>(payload);
    table.bodyFill = fillOf(payload);
    table.headingFill = fillOf(payload);
    return table;
}

} // namespace mifhost
