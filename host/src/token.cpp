#include "mifhost/token.h"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <string>
#include <utility>

#include "mifhost/error.h"
#include "payload.h"

namespace mifhost
{

namespace
{

constexpr std::uint8_t lastCode = TOKEN_LOSS_TOTAL;

// The whole length of each token by its code: the exact one where it is constant and the smallest one otherwise; 0 for
// codes that do not exist.
struct LengthRule {
    std::uint8_t length;
    bool exact;
};
constexpr std::array<LengthRule, lastCode + 1> lengthRules = [] {
    std::array<LengthRule, lastCode + 1> rules{};
    rules[TOKEN_TEXT] = {9, false};
    rules[TOKEN_PARA_FORMAT] = {18, true};
    rules[TOKEN_TAB_STOPS] = {9, false};
    rules[TOKEN_TAB] = {6, true};
    rules[TOKEN_ATTRIBUTE] = {9, true};
    rules[TOKEN_TABLE_ROW] = {9, false};
    rules[TOKEN_CELL_END] = {5, true};
    rules[TOKEN_PARA_END] = {5, true};
    rules[TOKEN_LINE_BREAK] = {5, true};
    rules[TOKEN_FONT] = {13, true};
    rules[TOKEN_PAGE_SETUP] = {38, true};
    rules[TOKEN_LINE_SPACING] = {6, true};
    rules[TOKEN_TEXT_COLOR] = {10, true};
    rules[TOKEN_FRAME] = {83, false};
    rules[TOKEN_CHARSET] = {9, true};
    rules[TOKEN_PARAGRAPH] = {29, false};
    rules[TOKEN_NUMBER] = {9, false};
    rules[TOKEN_MODE] = {7, true};
    rules[TOKEN_FONT_SIZE] = {9, true};
    rules[TOKEN_TAB_LEADERS] = {9, false};
    rules[TOKEN_NOTE_BEGIN] = {9, true};
    rules[TOKEN_NOTE_END] = {5, true};
    rules[TOKEN_NOTE_REFERENCE] = {9, true};
    rules[TOKEN_MARKER] = {17, false};
    rules[TOKEN_XREF_BEGIN] = {17, false};
    rules[TOKEN_XREF_END] = {5, true};
    rules[TOKEN_TABLE_OPEN] = {105, false};
    rules[TOKEN_TITLE_BEGIN] = {5, true};
    rules[TOKEN_TITLE_END] = {5, true};
    rules[TOKEN_ROW] = {6, true};
    rules[TOKEN_CELL] = {59, true};
    rules[TOKEN_TABLE_CLOSE] = {5, true};
    rules[TOKEN_ANCHOR] = {32, false};
    rules[TOKEN_BOX_BEGIN] = {9, true};
    rules[TOKEN_BOX_END] = {5, true};
    rules[TOKEN_DOCUMENT] = {10, false};
    rules[TOKEN_PAGE_SIZE] = {13, true};
    rules[TOKEN_LOSS] = {10, true};
    rules[TOKEN_LOSS_TOTAL] = {14, true};
    return rules;
}();

} // namespace

TokenDecoder::TokenDecoder(std::string name) : name_(std::move(name)) {}

void TokenDecoder::fail(std::uint64_t position, const std::string &reason) const
{
    throw StreamError(name_, position, reason);
}

void TokenDecoder::decode(std::span<const std::uint8_t> bytes) noexcept
{
    position_ += bytes_.size();
    bytes_ = bytes;
}

const Token *TokenDecoder::next()
{
    if (bytes_.empty()) {
        return nullptr;
    }
    const std::uint32_t length = checkedLength();
    Payload payload(*this, length);
    token_ = decodeToken(payload);
    if (bytes_.front() >= TOKEN_PARAGRAPH) { // the plain ones end with bytes that say nothing
        payload.requireEnd();
    }
    bytes_ = bytes_.subspan(length);
    position_ += length;
    return &token_;
}

// Returns the length of the next token, which lies within the bytes and is one that its code allows.
std::uint32_t TokenDecoder::checkedLength() const
{
    const std::uint8_t code = bytes_.front();
    if (code > lastCode || lengthRules[code].length == 0) {
        fail(position_, "there is no token code " + std::to_string(code));
    }
    if (bytes_.size() < MIF_TOKEN_HEADER_SIZE) {
        fail(position_, "a token is cut off");
    }
    const std::uint32_t length = loadU32(bytes_.data() + 1);
    const LengthRule rule = lengthRules[code];
    if (length < rule.length || (rule.exact && length != rule.length)) {
        fail(position_,
             "a token of code " + std::to_string(code) + " cannot have " + std::to_string(length) + " bytes");
    }
    if (length > bytes_.size()) {
        fail(position_, "a token is cut off: " + std::to_string(length) + " bytes announced, " +
                            std::to_string(bytes_.size()) + " left");
    }
    return length;
}

Token TokenDecoder::decodeToken(Payload &payload)
{
    // The members of a braced list are read in the order in which they are written.
    switch (bytes_.front()) {
    case TOKEN_TEXT: {
        const auto text = payload.take(payload.count(1, 0));
        return Text{{reinterpret_cast<const char *>(text.data()), text.size()}};
    }
    case TOKEN_PARA_FORMAT:
        return ParaFormat{payload.i32(), payload.i32(), payload.i32(),
                          payload.enumerated(Alignment::LeftRight, "alignment")};
    case TOKEN_TAB_STOPS:
        return decodeTabStops(payload);
    case TOKEN_TAB:
        return Tab{};
    case TOKEN_ATTRIBUTE:
        return payload.attribute();
    case TOKEN_TABLE_ROW:
        return decodeTableRow(payload);
    case TOKEN_CELL_END:
        return CellEnd{};
    case TOKEN_PARA_END:
        return ParaEnd{};
    case TOKEN_LINE_BREAK:
        return LineBreak{};
    case TOKEN_FONT:
        return Font{payload.u32(), payload.u32()};
    case TOKEN_PAGE_SETUP:
        payload.take(1);
        return PageSetup{payload.u32(), payload.u32(), payload.u32(), payload.u32(), payload.u32(), payload.u32()};
    case TOKEN_LINE_SPACING:
        return LineSpacing{payload.enumerated(Spacing::Double, "line spacing")};
    case TOKEN_TEXT_COLOR:
        payload.take(1);
        return TextColor{payload.u8(), payload.u8(), payload.u8()};
    case TOKEN_FRAME:
        return payload.frame();
    case TOKEN_CHARSET:
        return Charset{payload.u32()};
    default: // checkedLength lets nothing else through
        return decodeExtended(payload);
    }
}

Token TokenDecoder::decodeTabStops(Payload &payload)
{
    const std::size_t count = payload.count(tabStopSize, 0);
    tabStops_.clear();
    tabStops_.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        tabStops_.push_back({payload.enumerated(TabKind::Decimal, "kind of tab stop"), payload.i32()});
    }
    return TabStops{tabStops_};
}

Token TokenDecoder::decodeTableRow(Payload &payload)
{
    if (payload.left() == countSize) {
        payload.count(4, 0);
        return TableEnd{};
    }
    const std::size_t count = payload.count(4, tableRowTail);
    columnWidths_.clear();
    columnWidths_.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        columnWidths_.push_back(payload.i32());
    }
    payload.take(tableRowConstants);
    return TableRow{columnWidths_, payload.i32()};
}

} // namespace mifhost
