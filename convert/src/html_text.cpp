#include "mifconvert/html_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include <fmt/format.h>
#include <utf8cpp/utf8.h>

namespace mifconvert
{

namespace
{

constexpr unsigned firstPicture = 0x2400; // of the control character 0
constexpr unsigned deletePicture = 0x2421;

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

bool isPlainInCss(char byte)
{
    const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
    return isLetter || (byte >= '0' && byte <= '9') || byte == ' ' || byte == '-';
}

} // namespace

void appendHtmlText(std::string_view bytes, std::string &out)
{
    appendEscaped(bytes, out, [&out](std::string_view run) { out += run; });
}

void appendHtmlName(std::string_view name, std::string &out)
{
    std::string valid;
    utf8::replace_invalid(name.begin(), name.end(), std::back_inserter(valid));
    appendEscaped(valid, out, [&out](std::string_view run) { out += run; });
}

void appendHtmlAttribute(std::string_view text, std::string &out)
{
    std::string escaped;
    appendHtmlName(text, escaped);
    for (const char byte : escaped) {
        if (byte == '"') {
            out += "&quot;";
        } else {
            out += byte;
        }
    }
}

void appendCssString(std::string_view bytes, std::string &out)
{
    out += '\'';
    for (const char &byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (isPlainInCss(byte) || code >= 0x80) {
            out += byte;
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
