#include "mifhost/charset.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <optional>
#include <type_traits>

#include <iconv.h>

#include "mifhost/error.h"

namespace mifhost
{

namespace
{

struct CloseConverter {
    void operator()(iconv_t converter) const noexcept
    {
        iconv_close(converter);
    }
};
static_assert(std::is_pointer_v<iconv_t>);
using Converter = std::unique_ptr<std::remove_pointer_t<iconv_t>, CloseConverter>;

Converter openConverter()
{
    const iconv_t converter = iconv_open("UTF-8", "WINDOWS-1252");
    // The error value is (iconv_t)-1, which the C interface leaves to a cast.
    if (reinterpret_cast<std::intptr_t>(converter) == -1) {
        throw Error("", std::nullopt, "the C library cannot convert Windows-1252 to UTF-8");
    }
    return Converter(converter);
}

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
    const Converter converter = openConverter();
    for (std::size_t i = 0; i < upperHalf_.size(); ++i) {
        char byte = static_cast<char>(0x80 + i);
        char *source = &byte;
        std::size_t sourceLeft = 1;
        Encoded &encoded = upperHalf_[i];
        char *target = encoded.bytes.data();
        std::size_t targetLeft = encoded.bytes.size();
        if (iconv(converter.get(), &source, &sourceLeft, &target, &targetLeft) == 0) {
            encoded.size = static_cast<std::uint8_t>(encoded.bytes.size() - targetLeft);
            continue;
        }
        encoded = {{'\xEF', '\xBF', '\xBD'}, 3, true};
        iconv(converter.get(), nullptr, nullptr, nullptr, nullptr);
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
