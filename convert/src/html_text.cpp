#include "mifconvert/html_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include <fmt/format.h>

namespace mifconvert
{

namespace
{

constexpr unsigned firstPicture = 0x2400; // of the control character 0
constexpr unsigned deletePicture = 0x2421;
constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD

constexpr bool isControl(unsigned char byte)
{
    return byte < 0x20 || byte == 0x7F;
}

constexpr std::array<bool, 256> specialBytes = [] {
    std::array<bool, 256> special{};
    for (std::size_t byte = 0; byte < special.size(); ++byte) {
        special[byte] = isControl(static_cast<unsigned char>(byte)) || byte == '&' || byte == '<' || byte == '>';
    }
    return special;
}();

bool isSpecial(char byte)
{
    return specialBytes[static_cast<unsigned char>(byte)];
}

unsigned pictureOf(unsigned char control)
{
    return control == 0x7F ? deletePicture : firstPicture + control;
}

void appendSpecial(char byte, std::string &out)
{
    switch (byte) {
    case '&':
        out += "&amp;";
        return;
    case '<':
        out += "&lt;";
        return;
    case '>':
        out += "&gt;";
        return;
    default:
        break;
    }
    // Of U+2400 to U+2421 in UTF-8 the last byte alone differs.
    out += "\xE2\x90";
    out += static_cast<char>(0x80U + (pictureOf(static_cast<unsigned char>(byte)) - firstPicture));
}

// Appends text of which only the special bytes need a hand; the others go to appendRun in runs.
template <typename AppendRun>
void appendEscaped(std::string_view bytes, std::string &out, const AppendRun &appendRun)
{
    while (!bytes.empty()) {
        const auto *const runEnd = std::find_if(bytes.begin(), bytes.end(), isSpecial);
        const auto run = static_cast<std::size_t>(runEnd - bytes.begin());
        appendRun(bytes.substr(0, run));
        bytes.remove_prefix(run);
        while (!bytes.empty() && isSpecial(bytes.front())) {
            appendSpecial(bytes.front(), out);
            bytes.remove_prefix(1);
        }
    }
}

// Returns the length of the UTF-8 character that text begins with, 0 when it begins with none.
std::size_t characterLength(std::string_view text)
{
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80) {
        return 1;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) {
        return 0;
    }
    const auto isTrail = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; };
    if (!std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length), isTrail)) {
        return 0;
    }
    // Behind some first bytes there are forms that are too long, surrogates, or what lies beyond U+10FFFF.
    const auto second = static_cast<unsigned char>(text[1]);
    const bool isTooLow = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool isTooHigh = (lead == 0xED && second > 0x9F) || (lead == 0xF4 && second > 0x8F);
    return isTooLow || isTooHigh ? 0 : length;
}

// Returns text with every byte replaced that is not part of a UTF-8 character.
std::string validUtf8(std::string_view text)
{
    std::string valid;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        valid += length > 0 ? text.substr(0, length) : replacement;
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return valid;
}

bool isPlainInCss(char byte)
{
    const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
    return isLetter || (byte >= '0' && byte <= '9') || byte == ' ' || byte == '-';
}

} // namespace

void appendHtmlText(std::string_view bytes, mifhost::Windows1252 &charset, std::string &out)
{
    appendEscaped(bytes, out, [&charset, &out](std::string_view run) { charset.append(run, out); });
}

void appendHtmlName(std::string_view name, std::string &out)
{
    const std::string valid = validUtf8(name);
    appendEscaped(valid, out, [&out](std::string_view run) { out += run; });
}

void appendCssString(std::string_view bytes, mifhost::Windows1252 &charset, std::string &out)
{
    out += '\'';
    for (const char &byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (isPlainInCss(byte)) {
            out += byte;
        } else if (code >= 0x80) {
            charset.append({&byte, 1}, out);
        } else {
            fmt::format_to(std::back_inserter(out), "\\{:x} ", isControl(code) ? pictureOf(code) : code);
        }
    }
    out += '\'';
}

void appendPoints(std::int64_t twips, std::string &out, std::string_view unit)
{
    constexpr double twipsToThePoint = 20.0;
    fmt::format_to(std::back_inserter(out), "{}{}", static_cast<double>(twips) / twipsToThePoint, unit);
}

} // namespace mifconvert
