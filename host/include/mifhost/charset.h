// Character sets.
#ifndef MIFHOST_CHARSET_H
#define MIFHOST_CHARSET_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace mifhost
{

// Converts the text of one document to UTF-8, in as many pieces as it comes.
class TextConverter
{
public:
    // isUtf8  whether the text is UTF-8 already, as the extended stream's is, and not Windows-1252
    explicit TextConverter(bool isUtf8 = false);

    // Appends text to out as UTF-8. In Windows-1252 it is at most three times as long then, and every byte is one
    // character: 0x00 to 0x7F are themselves, control characters among them, and the five bytes that Windows-1252
    // leaves undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) become U+FFFD.
    void append(std::string_view text, std::string &out);

    bool isUtf8() const noexcept
    {
        return isUtf8_;
    }

    // The number of undefined bytes met so far.
    std::uint64_t undefinedBytes() const noexcept
    {
        return undefinedBytes_;
    }

private:
    // One character in UTF-8.
    struct Encoded {
        std::array<char, 3> bytes;
        std::uint8_t size;
        bool undefined;
    };

    std::array<Encoded, 128> upperHalf_{}; // of the bytes 0x80 to 0xFF
    std::uint64_t undefinedBytes_ = 0;
    bool isUtf8_;
};

} // namespace mifhost

#endif
