// The character set of the text in the plain stream, which MIF_CHARSET_WINDOWS_1252 names, and the way out of it.
// Whatever else the reader hands over there as bytes (font families, identifiers of objects) is in the same set.
#ifndef MIFHOST_CHARSET_H
#define MIFHOST_CHARSET_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace mifhost
{

// Converts the text of one document to UTF-8, in as many pieces as it comes: every byte of Windows-1252 is a character
// of its own. Between two calls it keeps nothing but the count of undefined bytes. A Document that was not asked for
// raw tokens has done so already.
class Windows1252
{
public:
    // Makes the table of the upper half, less than 1 KB within the object: better one object for a whole document than
    // one for each text. A copy goes on counting from the count of its original.
    Windows1252();

    // Appends text to out as UTF-8, which is at most three times as long; what out held before stays.
    //   text  any bytes: 0x00 to 0x7F are themselves, control characters and NUL among them; the five that Windows-1252
    //         leaves undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) become U+FFFD. Nothing is escaped
    //   out   must not be what text points into
    // Throws std::bad_alloc when out cannot grow; a part of text is then appended and counted.
    void append(std::string_view text, std::string &out);

    // The number of undefined bytes in all text appended so far: how often U+FFFD stands in the output, as no defined
    // byte becomes it.
    std::uint64_t undefinedBytes() const noexcept
    {
        return undefinedBytes_;
    }

private:
    // One character in UTF-8: the first size of its bytes, 2 or 3 of them, or U+FFFD for a byte that has none.
    struct Encoded {
        std::array<char, 3> bytes;
        std::uint8_t size;
        bool undefined;
    };

    // Of the bytes 0x80 to 0xFF, in this order. ASCII is copied in runs and needs no table.
    std::array<Encoded, 128> upperHalf_{};
    // Over all calls; never reset.
    std::uint64_t undefinedBytes_ = 0;
};

} // namespace mifhost

#endif
