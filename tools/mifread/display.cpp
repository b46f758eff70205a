#include "display.h"

#include <cstdint>
#include <iterator>

#include <fmt/format.h>
#include <utf8cpp/utf8.h>

namespace mifread
{

namespace
{

bool isControl(std::uint32_t character)
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

bool setsDirection(std::uint32_t character)
{
    return character == 0x061C || character == 0x200E || character == 0x200F ||
           (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

void appendEscape(std::uint32_t character, std::string &out)
{
    switch (character) {
    case '\t':
        out += "\\t";
        return;
    case '\n':
        out += "\\n";
        return;
    case '\r':
        out += "\\r";
        return;
    default:
        break;
    }
    if (character < 0x80) {
        fmt::format_to(std::back_inserter(out), "\\x{:02x}", character);
    } else {
        fmt::format_to(std::back_inserter(out), "\\u{:04x}", character);
    }
}

// Escapes the characters that mustEscape tells, and bytes that are no UTF-8.
template <typename MustEscape>
void appendEscaped(std::string_view text, std::string &out, const MustEscape &mustEscape)
{
    const char *next = text.data();
    const char *const end = next + text.size();
    while (next != end) {
        const char *const start = next;
        try {
            const std::uint32_t character = utf8::next(next, end);
            if (mustEscape(character)) {
                appendEscape(character, out);
            } else {
                out.append(start, next);
            }
        } catch (const utf8::exception &) {
            fmt::format_to(std::back_inserter(out), "\\x{:02x}", static_cast<unsigned char>(*start));
            next = start + 1;
        }
    }
}

} // namespace

std::string shown(std::string_view text)
{
    std::string out;
    appendEscaped(text, out, [](std::uint32_t character) { return isControl(character) || setsDirection(character); });
    return out;
}

void appendShownLines(std::string_view text, std::string &out)
{
    appendEscaped(text, out, [](std::uint32_t character) {
        return isControl(character) && character != '\t' && character != '\n';
    });
}

} // namespace mifread
