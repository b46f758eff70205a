#include "text/conversion.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "reader/tokens.h"

namespace
{

struct CharCode {
    uint8_t first;
    uint8_t second;
    uint8_t byte;

    constexpr uint32_t order() const
    {
        return first * 256U + second;
    }
};

constexpr bool codePrecedes(const CharCode &left, const CharCode &right)
{
    return left.order() < right.order();
}

// In the order of the codes, for the search. Upper-case and lower-case digits are different codes.
constexpr std::array<CharCode, 87> MifCharCodeTable = {{
    {'0', '5', 0x20}, {'1', '5', 0xAE},

    {'8', '0', 0xC4}, {'8', '1', 0xC5}, {'8', '2', 0xC7}, {'8', '3', 0xC9}, {'8', '4', 0xD1}, {'8', '5', 0xD6},
    {'8', '6', 0xDC}, {'8', '7', 0xE1}, {'8', '8', 0xE0}, {'8', '9', 0xE2}, {'8', 'D', 0xED}, {'8', 'E', 0xE9},
    {'8', 'F', 0xE8}, {'8', 'a', 0xE4}, {'8', 'b', 0xE3}, {'8', 'c', 0xE5}, {'8', 'd', 0xE7}, {'8', 'e', 0xE9},
    {'8', 'f', 0xE8},

    {'9', '0', 0xEA}, {'9', '1', 0xEB}, {'9', '2', 0xED}, {'9', '3', 0xEC}, {'9', '4', 0xEE}, {'9', '5', 0xEF},
    {'9', '6', 0xF1}, {'9', '7', 0xF3}, {'9', '8', 0xF2}, {'9', '9', 0xF4}, {'9', 'D', 0xFD}, {'9', 'E', 0xFE},
    {'9', 'a', 0xF6}, {'9', 'b', 0xF5}, {'9', 'c', 0xFA}, {'9', 'd', 0xF9}, {'9', 'e', 0xFB}, {'9', 'f', 0xFC},

    {'D', '2', 0x93}, {'D', '3', 0x94}, {'D', '5', 0x92},

    {'a', '1', 0xB0}, {'a', '4', 0xA7}, {'a', '6', 0xB6}, {'a', '7', 0xDF}, {'a', '8', 0xAE}, {'a', 'c', 0xA8},
    {'a', 'e', 0xC6}, {'a', 'f', 0xD8},

    {'b', '9', 0xBC}, {'b', 'a', 0xBD}, {'b', 'b', 0xAA}, {'b', 'c', 0xBA}, {'b', 'd', 0xBE}, {'b', 'e', 0xE6},
    {'b', 'f', 0xF8},

    {'c', '0', 0xBF}, {'c', '2', 0xAC}, {'c', '3', 0xD0}, {'c', '4', 0x83}, {'c', '5', 0xDD}, {'c', '6', 0xFD},
    {'c', '7', 0xAB}, {'c', '8', 0xBB}, {'c', '9', 0x85}, {'c', 'c', 0xC3}, {'c', 'd', 0xD5},

    {'d', '2', 0x93}, {'d', '3', 0x94}, {'d', '4', 0x99}, {'d', '5', 0x92}, {'d', 'b', 0xA4},

    {'e', '2', 0xB8}, {'e', '5', 0xC2}, {'e', '6', 0xCA}, {'e', '7', 0xC1}, {'e', '8', 0xCB}, {'e', '9', 0xC8},
    {'e', 'a', 0xCD}, {'e', 'd', 0xCC}, {'e', 'e', 0xD3}, {'e', 'f', 0xD4},

    {'f', '1', 0xD2}, {'f', '2', 0xDA}, {'f', '3', 0xDB}, {'f', '4', 0xD9},
}};

static_assert(std::is_sorted(MifCharCodeTable.begin(), MifCharCodeTable.end(), codePrecedes));

// Converts the escape whose backslash is at `read`, writing its byte at `write`. Returns the first character after it.
char *convertEscape(MifContext *context, char *read, char *&write)
{
    char byte = '\0';
    switch (read[1]) {
    case '>':
    case '\\':
        byte = read[1];
        break;
    case 'Q':
        byte = '`';
        break;
    case 'q':
        byte = '\'';
        break;
    case 't':
        byte = ' ';
        if (context->pages.inBodyText != 0) {
            mifWriteTab(context);
        }
        break;
    case 'x':
        // Two code characters and the blank after them, whatever it is. Without both characters there is no code, and
        // nothing is left of the text.
        if (read[2] == '\0' || read[3] == '\0') {
            return read + strlen(read);
        }
        *write++ =
            static_cast<char>(mifConvertASCIIToHex(static_cast<uint8_t>(read[2]), static_cast<uint8_t>(read[3]), 1));
        return read[4] != '\0' ? read + 5 : read + 4;
    default:
        *write++ = '\\';
        return read + 1;
    }
    *write++ = byte;
    return read + 2;
}

} // namespace

void mifConvertString(MifContext *context, char *text)
{
    char *end = text + strlen(text);
    char *read = text;
    char *write = text;
    while (read < end) {
        auto *escape = static_cast<char *>(memchr(read, '\\', static_cast<size_t>(end - read)));
        char *runEnd = escape != nullptr ? escape : end;
        const auto run = static_cast<size_t>(runEnd - read);
        if (write != read) {
            memmove(write, read, run);
        }
        write += run;
        read = escape != nullptr ? convertEscape(context, escape, write) : end;
    }
    *write = '\0';
}

uint8_t mifConvertASCIIToHex(uint8_t first, uint8_t second, int useTable)
{
    if (useTable != 0) {
        const CharCode wanted = {first, second, 0};
        const auto *code = std::lower_bound(MifCharCodeTable.begin(), MifCharCodeTable.end(), wanted, codePrecedes);
        if (code != MifCharCodeTable.end() && code->order() == wanted.order()) {
            return code->byte;
        }
    }
    return mifHexByte(first, second);
}
