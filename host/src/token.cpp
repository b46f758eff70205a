#include "mifhost/token.h"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <string>
#include <utility>

#include "mifhost/error.h"

namespace mifhost
{

namespace
{

// The payloads' constant parts, in bytes.
constexpr std::size_t countSize = 4;
constexpr std::size_t tabStopSize = 5;
constexpr std::size_t tableRowConstants = 16; // four numbers after the widths
constexpr std::size_t tableRowTail = tableRowConstants + 4 + 1;
constexpr std::size_t frameMarkOffset = std::size_t{18} * 4; // eighteen numbers
constexpr std::size_t frameTail = frameMarkOffset + 5;       // the mark and four zero bytes
constexpr std::uint8_t frameMark = 255;

// A character mode is one bit, in the order of Mode, and a flag that means on or off.
constexpr std::uint32_t modeBits = 0xFF;
constexpr std::uint32_t modeFlag = 0x8000;
static_assert((MIF_MODE_BOLD_ON ^ MIF_MODE_BOLD_OFF) == modeFlag &&
              MIF_MODE_SMALL_CAPS_ON == 1 << int(Mode::SmallCaps));

constexpr std::uint8_t lastCode = TOKEN_CHARSET;

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
    return rules;
}();

std::uint32_t loadU32(const std::uint8_t *bytes)
{
    return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
           static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

} // namespace

// Reads the fields of one token's payload, one after the other. That they lie within it follows from the checks of the
// token's length and of its counts.
class TokenDecoder::Payload
{
public:
    Payload(const TokenDecoder &decoder, std::size_t length)
        : decoder_(decoder), bytes_(decoder.bytes_.subspan(MIF_TOKEN_HEADER_SIZE, length - MIF_TOKEN_HEADER_SIZE)),
          position_(decoder.position_ + MIF_TOKEN_HEADER_SIZE)
    {
    }

    std::size_t left() const
    {
        return bytes_.size();
    }

    std::span<const std::uint8_t> take(std::size_t size)
    {
        const auto taken = bytes_.first(size);
        bytes_ = bytes_.subspan(size);
        position_ += size;
        return taken;
    }

    std::uint8_t u8()
    {
        return take(1).front();
    }

    std::uint32_t u32()
    {
        return loadU32(take(4).data());
    }

    std::int32_t i32()
    {
        return static_cast<std::int32_t>(u32());
    }

    // A count of elements that must fill the rest of the payload but for tailSize bytes.
    std::size_t count(std::size_t elementSize, std::size_t tailSize)
    {
        const std::uint64_t start = position_;
        const std::uint32_t number = u32();
        if (left() != std::uint64_t{number} * elementSize + tailSize) {
            decoder_.fail(start, "a count of " + std::to_string(number) + " does not agree with the token's length");
        }
        return number;
    }

    // A byte that must not be above maximum, as a value of an enumeration that begins at 0.
    template <typename Enum>
    Enum enumerated(Enum maximum, const char *what)
    {
        const std::uint64_t start = position_;
        const std::uint8_t value = u8();
        if (value > static_cast<std::uint8_t>(maximum)) {
            decoder_.fail(start, std::string("there is no ") + what + " " + std::to_string(value));
        }
        return static_cast<Enum>(value);
    }

    Attribute attribute()
    {
        const std::uint64_t start = position_;
        const std::uint32_t value = u32();
        const std::uint32_t modeBit = value & modeBits;
        if ((value & ~(modeBits | modeFlag)) != 0 || !std::has_single_bit(modeBit)) {
            decoder_.fail(start, "there is no character mode " + std::to_string(value));
        }
        const auto mode = static_cast<Mode>(std::countr_zero(modeBit));
        const bool flagTurnsOn = mode < Mode::SmallCaps;
        return {mode, ((value & modeFlag) != 0) == flagTurnsOn};
    }

    Frame frame()
    {
        const std::uint64_t start = position_;
        const auto id = take(left() - frameTail - 1);
        const bool idIsWhole = std::none_of(id.begin(), id.end(), [](std::uint8_t byte) { return byte == 0; });
        if (u8() != 0 || !idIsWhole) {
            decoder_.fail(start, "the identifier of a frame does not agree with the token's length");
        }
        if (bytes_[frameMarkOffset] != frameMark) {
            decoder_.fail(position_ + frameMarkOffset, "the closing mark of a frame is missing");
        }
        const std::uint32_t width = u32();
        const std::uint32_t height = u32();
        return {{reinterpret_cast<const char *>(id.data()), id.size()}, width, height, u32()};
    }

private:
    const TokenDecoder &decoder_;
    std::span<const std::uint8_t> bytes_; // what is left of the payload
    std::uint64_t position_;              // of bytes_ in the stream
};

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
    default: // checkedLength lets nothing else through
        return Charset{payload.u32()};
    }
}

Token TokenDecoder::decodeTabStops(Payload &payload)
{
    const std::size_t count = payload.count(tabStopSize, 0);
    tabStops_.clear();
    tabStops_.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        tabStops_.push_back({payload.enumerated(TabKind::Center, "kind of tab stop"), payload.i32()});
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
