// Character sets.
#ifndef MIFHOST_CHARSET_H
#define MIFHOST_CHARSET_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace mifhost
{

// Converts Windows-1252 to UTF-8.
class Windows1252
{
public:
    Windows1252();

    // Appends text to out as UTF-8. The five bytes that Windows-1252 leaves undefined become U+FFFD.
    void append(std::string_view text, std::string &out);

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
};

} // namespace mifhost

#endif
