#include "mifhost/charset.h"

#include <cstddef>
#include <cstring>

#include <utf8cpp/utf8.h>

namespace mifhost
{

namespace
{

// The characters of the bytes 0x80 to 0x9F, 0 where there is none. From 0xA0 on they are those of the same number.
constexpr std::array<char16_t, 32> specialCharacters = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                        0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                                        0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                        0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

// The number of ASCII bytes that text begins with.
std::size_t asciiRun(std::string_view text)
{
    std::size_t size = 0;
    std::uint64_t eightBytes = 0;
    while (text.size() - size >= sizeof eightBytes) {
        std::memcpy(&eightBytes, text.data() + size, sizeof eightBytes);
        if ((eightBytes & 0x8080808080808080U) != 0) {
            break;
        }
        size += sizeof eightBytes;
    }
    while (size < text.size() && static_cast<unsigned char>(text[size]) < 0x80) {
        ++size;
    }
    return size;
}

} // namespace

Windows1252::Windows1252()
{
    constexpr char16_t replacement = 0xFFFD;
    for (std::size_t i = 0; i < upperHalf_.size(); ++i) {
        const auto character = i < specialCharacters.size() ? specialCharacters[i] : static_cast<char16_t>(0x80 + i);
        Encoded &encoded = upperHalf_[i];
        encoded.undefined = character == 0;
        const auto *end = utf8::append(encoded.undefined ? replacement : character, encoded.bytes.data());
        encoded.size = static_cast<std::uint8_t>(end - encoded.bytes.data());
    }
}

void Windows1252::append(std::string_view text, std::string &out)
{
    while (!text.empty()) {
        const std::size_t run = asciiRun(text);
        out.append(text.substr(0, run));
        text.remove_prefix(run);
        while (!text.empty() && static_cast<unsigned char>(text.front()) >= 0x80) {
            const Encoded &encoded = upperHalf_[static_cast<unsigned char>(text.front()) - 0x80U];
            out.append(encoded.bytes.data(), encoded.size);
            undefinedBytes_ += encoded.undefined ? 1 : 0;
            text.remove_prefix(1);
        }
    }
}

} // namespace mifhost
