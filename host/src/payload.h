// The payload of a token, for the decoder.
#ifndef MIFHOST_SRC_PAYLOAD_H
#define MIFHOST_SRC_PAYLOAD_H

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include <utf8cpp/utf8.h>

#include "mifhost/token.h"

namespace mifhost
{

// The payloads' constant parts, in bytes.
inline constexpr std::size_t countSize = 4;
inline constexpr std::size_t tabStopSize = 5;
inline constexpr std::size_t tableRowConstants = 16; // four numbers after the widths
inline constexpr std::size_t tableRowTail = tableRowConstants + 4 + 1;
inline constexpr std::size_t frameMarkOffset = std::size_t{18} * 4; // eighteen numbers
inline constexpr std::size_t frameTail = frameMarkOffset + 5;       // the mark and four zero bytes
inline constexpr std::uint8_t frameMark = 255;
inline constexpr std::size_t tableOpenTail = std::size_t{8} * 9 + std::size_t{2} * 5; // rulings and fills

// A character mode is one bit, in the order of Mode, and a flag that means on or off.
inline constexpr std::uint32_t modeBits = 0xFF;
inline constexpr std::uint32_t modeFlag = 0x8000;
static_assert((MIF_MODE_BOLD_ON ^ MIF_MODE_BOLD_OFF) == modeFlag &&
              MIF_MODE_SMALL_CAPS_ON == 1 << int(Mode::SmallCaps));

inline std::uint32_t loadU32(const std::uint8_t *bytes)
{
    return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
           static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

// Reads the fields of one token's payload, one after the other. A field that does not lie within it is an error.
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
        if (size > left()) {
            decoder_.fail(position_, "a field does not agree with the token's length");
        }
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

    // A flag of the extended stream.
    bool flag()
    {
        return enumerated(Flag::Set, "flag") == Flag::Set;
    }

    // A text of the extended stream: its length, and its bytes.
    std::string_view text()
    {
        const std::uint64_t start = position_;
        const auto bytes = take(u32());
        const std::string_view text{reinterpret_cast<const char *>(bytes.data()), bytes.size()};
        if (!utf8::is_valid(text.begin(), text.end())) {
            decoder_.fail(start + countSize, "a text is not UTF-8");
        }
        return text;
    }

    // Nothing may be left of the token.
    void requireEnd() const
    {
        if (left() > 0) {
            decoder_.fail(position_, "a token has " + std::to_string(left()) + " bytes more than its fields");
        }
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
    enum class Flag : std::uint8_t { Clear, Set };

    const TokenDecoder &decoder_;
    std::span<const std::uint8_t> bytes_; // what is left of the payload
    std::uint64_t position_;              // of bytes_ in the stream
};

} // namespace mifhost

#endif
