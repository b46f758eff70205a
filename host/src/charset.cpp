#include "mifhost/charset.h"

#include <cstddef>
#include <cstring>

#include "system.h"

namespace mifhost
{

namespace
{

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
    const auto characters = system::upperHalfOfWindows1252();
    for (std::size_t i = 0; i < upperHalf_.size(); ++i) {
        Encoded &encoded = upperHalf_[i];
        if (characters[i].empty()) {
            encoded = {{'\xEF', '\xBF', '\xBD'}, 3, true};
            continue;
        }
        encoded.size = static_cast<std::uint8_t>(characters[i].copy(encoded.bytes.data(), encoded.bytes.size()));
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
